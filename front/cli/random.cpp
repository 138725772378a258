// qor random: variates from a random stream, as CSV, .npy or raw bytes.

#include <unistd.h>

#include <algorithm>
#include <limits>
#include <new>
#include <optional>

#include "front/cli/commands.h"
#include "front/cli/generators.h"
#include "front/cli/histogram.h"
#include "front/cli/input_error.h"
#include "front/cli/numbers_given.h"
#include "front/cli/output_file.h"
#include "front/cli/progress.h"
#include "front/cli/text.h"
#include "front/cli/variates.h"
#include "qor/distributions.h"

namespace qor::cli {
namespace {

constexpr size_t kBlock = 16384;  // rows drawn at a time

Format format_of(const Arguments& arguments) {
  const std::string format = arguments.option("--format", "csv");
  if (format == "npy") return Format::npy;
  return format == "raw" ? Format::raw : Format::csv;
}

// The stream that is asked for, where the drawing is to start.
Stream stream_of(const Arguments& arguments) {
  const bool loads = arguments.has("--load-stream");
  for (const char* option : {"--generator", "--seed"}) {
    if (loads && arguments.has(option)) {
      refuse_value(option, arguments.option(option, ""),
                   "--load-stream, which has the generator and its state,");
    }
    if (!loads && !arguments.has(option)) {
      throw InputError(std::string(option) + " is missing; with --generator NAME one of " +
                       names_of_generators() +
                       " is accepted, with --seed N[,N...] whole numbers below 2^32, or both with"
                       " --load-stream FILE");
    }
  }
  Stream stream =
      loads ? load_stream(arguments.option("--load-stream", ""))
            : new_stream(arguments.option("--generator", ""), arguments.option("--seed", ""));
  if (arguments.has("--leapfrog")) leapfrog(stream, arguments.option("--leapfrog", ""));
  if (arguments.has("--skip")) skip_ahead(stream, arguments.option("--skip", ""));
  return stream;
}

// What the run is to do, checked as far as it can be before anything is written.
struct Task {
  const Distribution& distribution;
  Parameters parameters;
  int32_t method;
  uint64_t rows;
  Format format;
  Stream stream;
  Layout layout;

  explicit Task(const Arguments& arguments)
      : distribution(find_distribution(arguments)),
        parameters(parameters_of(distribution, arguments)),
        method(arguments.has("--accurate") ? QOR_RNG_ACCURATE : 0),
        rows(
            whole_number("-n", arguments.option("-n", ""), 0, std::numeric_limits<int64_t>::max())),
        format(format_of(arguments)),
        stream(stream_of(arguments)),
        layout(layout_of(distribution, stream)) {}

  void draw(const Stream& from, size_t count, void* values) const {
    const int32_t status =
        distribution.draw(method, from.get(), static_cast<int32_t>(count), values, parameters);
    if (status == QOR_STREAM_NO_MEMORY) throw std::bad_alloc();
    if (status == QOR_STREAM_NO_FULL_WORDS) {
      refuse_value("--distribution", distribution.name,
                   "uniformbits with " + name_of(stream) + ", whose words are not all uniform,");
    }
    if (status < 0) {
      throw std::runtime_error(name_of(stream) + ": drawing failed with status " +
                               std::to_string(status));
    }
  }
};

// Draws a value from a copy of the stream: what its generator does not give is known before
// anything is written.
void try_out(const Task& task) {
  StreamState* raw = nullptr;
  if (__ostCopyStream(&raw, task.stream.get()) != QOR_STREAM_OK) throw std::bad_alloc();
  const Stream copy(raw);
  std::vector<uint64_t> row(task.layout.row_bytes());
  task.draw(copy, 1, row.data());
}

// Draws all, to `file` and into the histogram where there are such.
void draw_all(const Task& task, OutputFile* file, Histogram* histogram, bool shows_progress) {
  Progress progress(task.rows, shows_progress);
  std::vector<uint64_t> values(kBlock * std::max<size_t>(task.layout.row_bytes(), 8) / 8);
  std::string text = head_of(task.format, task.layout, task.distribution.name, task.rows);
  for (uint64_t done = 0; done < task.rows;) {
    const auto count = static_cast<size_t>(std::min<uint64_t>(kBlock, task.rows - done));
    task.draw(task.stream, count, values.data());
    if (histogram != nullptr) histogram->add(values.data(), count);
    if (file != nullptr) {
      append_rows(task.format, task.layout, values.data(), count, text);
      file->write(text);
      text.clear();
    }
    progress.update(done += count);
  }
  if (file != nullptr) file->write(text);
}

void run(const Arguments& arguments, Output& output) {
  const Task task(arguments);
  const bool plots = arguments.has("--plot"), to_file = arguments.has("-o");
  const bool to_terminal = !to_file && !plots && isatty(STDOUT_FILENO) != 0;
  if (to_terminal && task.format != Format::csv) {
    refuse_value("--format", arguments.option("--format", ""),
                 "csv on a terminal; for bytes, -o FILE or a pipe");
  }
  try_out(task);
  std::optional<OutputFile> values, image;
  if (arguments.has("--save-stream")) {
    image.emplace("--save-stream", arguments.option("--save-stream", ""));
  }
  if (to_file) {
    values.emplace("-o", arguments.option("-o", ""));
  } else if (!plots) {
    values.emplace();
  }
  Histogram histogram(task.layout);
  draw_all(task, values ? &*values : nullptr, plots ? &histogram : nullptr, !to_terminal);
  if (image) image->write(image_of(task.stream));
  if (values) values->commit();
  if (image) image->commit();
  if (plots) output.out = histogram.text();
}

std::string more_help() {
  return "Generators: " + names_of_generators() +
         ".\n"
         "After --leapfrog, --skip counts what the stream still delivers.\n"
         "Distributions, by name and type:\n" +
         describe_distributions() +
         "Files get their names when all is written; until then what was there stays, so that\n"
         "--save-stream may name the file of --load-stream.\n";
}

}  // namespace

const Command random_command = {
    .name = "random",
    .summary = "draws random numbers from a stream and writes them",
    .operands = {},
    .options =
        {{"--generator", "NAME", "the generator of the stream"},
         {"--seed", "N[,N...]", "its initial values"},
         {.name = "--distribution", .value = "NAME", .help = "what to draw", .required = true},
         {"--type", "TYPE", "double, single, int or word, where there is a choice"},
         {"--a", "A", "lower bound"},
         {"--b", "B", "upper bound"},
         {"--p", "P", "probability"},
         {"--accurate", "", "values that stay within the bounds against rounding"},
         {.name = "-n", .value = "COUNT", .help = "how many", .required = true},
         {"--skip", "N", "moves the stream on by N values first"},
         {"--leapfrog", "K/N", "takes every N-th value, from the one with offset K on"},
         {"--format",
          "csv|npy|raw",
          "csv when not given; raw: the bytes of the values, little-endian",
          {"csv", "npy", "raw"}},
         {.name = "-o",
          .value = "FILE",
          .help = "where the values go; standard output when not given",
          .use = FileUse::written},
         {"--plot", "", "prints a histogram; the values then go to -o only"},
         {.name = "--save-stream",
          .value = "FILE",
          .help = "writes the stream as it is after the drawing",
          .use = FileUse::written,
          .replaces = "--load-stream"},
         {.name = "--load-stream",
          .value = "FILE",
          .help = "goes on with a stream that was saved",
          .use = FileUse::read}},
    .run = run,
    .more_help = more_help,
};

}  // namespace qor::cli
