#include "front/cli/generators.h"

#include <cerrno>
#include <limits>
#include <new>
#include <system_error>
#include <vector>

#include "front/cli/input_error.h"
#include "front/cli/numbers_given.h"
#include "front/cli/text.h"

namespace qor::cli {
namespace {

struct Generator {
  std::string_view name;
  int32_t brng;
  uint64_t last_member = 0;  // of a family
};

constexpr Generator kGenerators[] = {
    {"MCG31M1", QOR_BRNG_MCG31M1},
    {"R250", QOR_BRNG_R250},
    {"MRG32K3A", QOR_BRNG_MRG32K3A},
    {"MCG59", QOR_BRNG_MCG59},
    {"WH", QOR_BRNG_WH, 272},
    {"SOBOL", QOR_BRNG_SOBOL},
    {"NIEDERR", QOR_BRNG_NIEDERR},
    {"MT19937", QOR_BRNG_MT19937},
    {"MT2203", QOR_BRNG_MT2203, 6023},
    {"SFMT19937", QOR_BRNG_SFMT19937},
    {"TRNG", QOR_BRNG_TRNG},
    {"ARS5", QOR_BRNG_ARS5},
    {"PHILOX4X32X10", QOR_BRNG_PHILOX4X32X10},
};

// Whether the library has the generator's functions.
bool is_there(const Generator& generator) {
  BrngProperties row{};
  return __ostGetBrngProperties(generator.brng, &row) == 0 && row.initStream != nullptr;
}

Stream created(int32_t brng, const std::vector<uint32_t>& seed) {
  StreamState* raw = nullptr;
  const int32_t status =
      __ostNewStreamEx(&raw, brng, static_cast<int32_t>(seed.size()), seed.data());
  Stream stream(raw);
  if (status == QOR_STREAM_NO_MEMORY) throw std::bad_alloc();
  if (status < 0) {
    throw InputError("--generator: " + name_of(stream) +
                     " cannot be started from this --seed: " + "status " + std::to_string(status));
  }
  return stream;
}

// The names of the generators that do not refuse a request.
template <class Request>
std::string names_offering(const Request& request) {
  std::vector<std::string> names;
  for (const Generator& generator : kGenerators) {
    if (!is_there(generator)) continue;
    if (request(created(generator.brng, {1})) == QOR_STREAM_OK) names.emplace_back(generator.name);
  }
  return names.empty() ? "none" : joined(names);
}

// What a request of the stream came to; refused ones name the generators that offer it.
template <class Request>
void require(const Stream& stream, std::string_view option, const std::string& text,
             const Request& request) {
  const int32_t status = request(stream);
  if (status == QOR_STREAM_NO_MEMORY) throw std::bad_alloc();
  if (status < 0) {
    throw InputError(std::string(option) + ": " + quoted(text) + " is not offered by " +
                     name_of(stream) +
                     "; the generators that accept it: " + names_offering(request));
  }
}

}  // namespace

std::string names_of_generators() {
  std::vector<std::string> names;
  for (const Generator& generator : kGenerators) {
    if (!is_there(generator)) continue;
    names.emplace_back(generator.name);
    if (generator.last_member != 0) names.back() += ":0-" + std::to_string(generator.last_member);
  }
  return joined(names);
}

std::string name_of(const Stream& stream) {
  const int32_t brng = __ostGetStreamStateBrng(stream.get());
  int32_t row = 0, member = 0;
  __ostGetBrngBaseOffset(brng, &row, &member);
  for (const Generator& generator : kGenerators) {
    if (generator.brng >> 20 != row + 1) continue;
    const std::string name(generator.name);
    return generator.last_member != 0 ? name + ":" + std::to_string(member) : name;
  }
  return std::to_string(brng);
}

Stream new_stream(const std::string& generator, const std::string& seed) {
  const size_t colon = generator.find(':');
  const std::string name = lower_case(generator.substr(0, colon));
  for (const Generator& known : kGenerators) {
    if (lower_case(known.name) != name || !is_there(known)) continue;
    if (colon != std::string::npos && known.last_member == 0) break;
    const uint64_t member =
        colon == std::string::npos
            ? 0
            : whole_number("--generator", generator.substr(colon + 1), 0, known.last_member);
    std::vector<uint32_t> words;
    for (const std::string& word : split(seed, ',')) {
      words.push_back(static_cast<uint32_t>(
          whole_number("--seed", trimmed(word), 0, std::numeric_limits<uint32_t>::max())));
    }
    return created(known.brng + static_cast<int32_t>(member), words);
  }
  refuse_value("--generator", generator, "one of " + names_of_generators());
}

Stream load_stream(const std::string& file) {
  StreamState* raw = nullptr;
  errno = 0;
  const int32_t status = __ostLoadStreamF(&raw, file.c_str(), -1);
  const int reason = errno;
  Stream stream(raw);
  if (status == QOR_STREAM_NO_MEMORY) throw std::bad_alloc();
  std::string what;
  if (status == QOR_STREAM_FILE_OPEN) {
    what = std::generic_category().message(reason);
  } else if (status == QOR_STREAM_FILE_READ) {
    what = "ends early, or cannot be read";
  } else if (status < 0) {
    what = "is no image of a stream that this machine can run";
  } else if (stream->brng >= QOR_BRNG_IABSTRACT && stream->brng <= QOR_BRNG_SABSTRACT) {
    what = "is of an abstract stream, whose numbers come from the program that saved it";
  }
  if (!what.empty()) {
    throw InputError("--load-stream: " + quoted(file) + ": " + what +
                     "; a file that --save-stream wrote is accepted");
  }
  return stream;
}

std::string image_of(const Stream& stream) {
  std::string image(static_cast<size_t>(__ostGetStreamSize(stream.get())), '\0');
  __ostSaveStreamM(stream.get(), image.data());
  return image;
}

void leapfrog(const Stream& stream, const std::string& stride) {
  constexpr uint64_t most = std::numeric_limits<int32_t>::max();
  const std::vector<std::string> parts = split(stride, '/');
  if (parts.size() != 2) {
    refuse_value("--leapfrog", stride, "K/N, with K below N, as 0/4 (every fourth value)");
  }
  const uint64_t n = whole_number("--leapfrog", parts[1], 1, most);
  const uint64_t k = whole_number("--leapfrog", parts[0], 0, n - 1);
  require(stream, "--leapfrog", stride, [&](const Stream& s) {
    return __ostLeapfrogStream(s.get(), static_cast<int32_t>(k), static_cast<int32_t>(n));
  });
}

void skip_ahead(const Stream& stream, const std::string& count) {
  const std::vector<uint64_t> words = long_count("--skip", count);
  require(stream, "--skip", count, [&](const Stream& s) {
    if (words.size() <= 1) return __ostSkipAheadStream(s.get(), words.empty() ? 0 : words[0]);
    return __ostSkipAheadStreamEx(s.get(), static_cast<int32_t>(words.size()), words.data());
  });
}

}  // namespace qor::cli
