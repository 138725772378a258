// Random streams as the command line names them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "front/cli/command.h"
#include "qor/streams.h"

namespace qor::cli {

struct DeleteStream {
  void operator()(StreamState* stream) const { __ostDeleteStream(&stream); }
};
using Stream = std::unique_ptr<StreamState, DeleteStream>;

// The names of the generators that the library has, families as NAME:0-LAST.
std::string names_of_generators();

// The name of a stream's generator, as WH:17.
std::string name_of(const Stream& stream);

// A new stream from what --generator (a name, upper and lower case alike) and --seed (whole numbers
// below 2^32, with commas between) say.
Stream new_stream(const std::string& generator, const std::string& seed);

// The stream that --load-stream names.
Stream load_stream(const std::string& file);

// What a stream's image holds.
std::string image_of(const Stream& stream);

// Moves a stream as --leapfrog K/N and --skip N say; an InputError where its generator does not.
void leapfrog(const Stream& stream, const std::string& stride);
void skip_ahead(const Stream& stream, const std::string& count);

}  // namespace qor::cli
