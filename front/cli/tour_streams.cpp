#include "front/cli/tour_streams.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "front/cli/generators.h"
#include "front/cli/text.h"
#include "qor/distributions.h"

namespace qor::cli {
namespace {

constexpr int32_t kMany = 1'000'000;

// A file in memory, of which nothing is left however the run ends.
class ScratchFile {
 public:
  ScratchFile() : descriptor_(memfd_create("stream", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "memfd_create");
  }
  ~ScratchFile() { close(descriptor_); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

void require(int32_t status, const char* what) {
  if (status < 0) throw std::runtime_error(format("%s: status %d", what, status));
}

std::vector<double> drawn(const Stream& stream, int32_t n) {
  std::vector<double> values(static_cast<size_t>(n));
  require(_ostdRngUniform(0, stream.get(), n, values.data(), 0, 1), "drawing");
  return values;
}

std::string listed(const std::vector<double>& values) {
  std::string text;
  for (const double value : values) text += format("  %.6f", value);
  return text;
}

// The line of a generator: its values before the stream is saved and after, from the stream itself
// and from the one that was loaded.
std::vector<std::string> generator_line(const char* generator, const std::string& file) {
  const Stream stream = new_stream(generator, "7777777");
  const std::vector<double> first = drawn(stream, 2);
  drawn(stream, kMany);
  require(__ostSaveStreamF(stream.get(), file.c_str(), -1), "saving a stream");
  const Stream loaded = load_stream(file);
  const std::vector<double> next = drawn(stream, 2), next_of_loaded = drawn(loaded, 2);
  if (drawn(stream, kMany) != drawn(loaded, kMany)) {
    throw std::runtime_error("a loaded stream of " + name_of(stream) + " gives other values");
  }
  return {name_of(stream), listed(first), format("%d", __ostGetStreamSize(stream.get())),
          listed(next), listed(next_of_loaded)};
}

}  // namespace

std::string tour_of_streams() {
  const ScratchFile file;
  TextTable table({"stream", "first values", "bytes saved", "a million later", "when loaded"});
  for (const char* generator : {"MCG31M1", "R250", "MRG32K3A", "MCG59", "WH:100"}) {
    table.add(generator_line(generator, file.path()));
  }
  return "Random streams, drawn from, saved to a file, loaded again, and drawn from on both "
         "sides\n\n" +
         table.text() +
         "\n  The loaded stream and the one that went on agree in the next million values too.\n\n";
}

}  // namespace qor::cli
