#include "front/cli/variates.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "front/cli/input_error.h"
#include "front/cli/numbers_given.h"
#include "front/cli/text.h"
#include "qor/distributions.h"

namespace qor::cli {
namespace {

constexpr double kMost = std::numeric_limits<double>::max();
constexpr double kMostSingle = std::numeric_limits<float>::max();
constexpr double kMostInt = std::numeric_limits<int32_t>::max();
constexpr double kLeastInt = std::numeric_limits<int32_t>::min();

// a below b by a distance that the type holds.
template <class Real>
std::string_view wrong_interval(const Parameters& p) {
  const auto a = static_cast<Real>(p[0]), b = static_cast<Real>(p[1]);
  return a < b && std::isfinite(p[1] - p[0]) ? "" : "--a below --b, in this type,";
}

int32_t draw_double(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters& p) {
  return _ostdRngUniform(method, stream, n, static_cast<double*>(r), p[0], p[1]);
}
int32_t draw_single(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters& p) {
  return _ostsRngUniform(method, stream, n, static_cast<float*>(r), static_cast<float>(p[0]),
                         static_cast<float>(p[1]));
}
int32_t draw_integer(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters& p) {
  return _ostiRngUniform(method, stream, n, static_cast<int32_t*>(r), static_cast<int32_t>(p[0]),
                         static_cast<int32_t>(p[1]));
}
int32_t draw_words(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters&) {
  return _ostiRngUniformBits(method, stream, n, r);
}
int32_t draw_words32(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters&) {
  return _ostiRngUniformBits32(method, stream, n, static_cast<uint32_t*>(r));
}
int32_t draw_words64(int32_t method, StreamState* stream, int32_t n, void* r, const Parameters&) {
  return _ostiRngUniformBits64(method, stream, n, static_cast<uint64_t*>(r));
}
int32_t draw_bernoulli(int32_t method, StreamState* stream, int32_t n, void* r,
                       const Parameters& p) {
  return _ostiRngBernoulli(method, stream, n, static_cast<int32_t*>(r), p[0]);
}

const std::vector<Distribution>& list() {
  static const std::vector<Distribution> all = {
      {"uniform",
       "double",
       Element::real64,
       {{"--a", "0", -kMost, kMost}, {"--b", "1", -kMost, kMost}},
       "reals between A and B (0 and 1 when not given)",
       draw_double,
       wrong_interval<double>,
       true},
      {"uniform",
       "single",
       Element::real32,
       {{"--a", "0", -kMostSingle, kMostSingle}, {"--b", "1", -kMostSingle, kMostSingle}},
       "the same in single precision",
       draw_single,
       wrong_interval<float>,
       true},
      {"uniform",
       "int",
       Element::int32,
       {{"--a", "", kLeastInt, kMostInt, true}, {"--b", "", kLeastInt, kMostInt, true}},
       "whole numbers from A to B - 1",
       draw_integer,
       wrong_interval<double>},
      {"uniformbits",
       "word",
       Element::uint32,
       {},
       "the generator's words as they are; four numbers each from WH",
       draw_words},
      {"uniformbits32",
       "word",
       Element::uint32,
       {},
       "words of 32 bits that are all uniform, where the generator has them",
       draw_words32},
      {"uniformbits64", "word", Element::uint64, {}, "likewise, of 64 bits", draw_words64},
      {"bernoulli",
       "int",
       Element::int32,
       {{"--p", "", 0, 1}},
       "1 with probability P, else 0",
       draw_bernoulli},
  };
  return all;
}

// The values of `key` among the distributions that pass, each once.
template <class Passes>
std::string names(std::string_view Distribution::*key, const Passes& passes) {
  std::vector<std::string> found;
  for (const Distribution& d : list()) {
    const std::string name(d.*key);
    if (passes(d) && std::ranges::find(found, name) == found.end()) found.push_back(name);
  }
  return joined(found);
}

bool takes(const Distribution& distribution, std::string_view option) {
  return std::ranges::any_of(distribution.parameters,
                             [&](const Parameter& p) { return p.option == option; });
}

// The options that the distribution takes, as a text.
std::string options_of(const Distribution& distribution) {
  std::string text;
  for (const Parameter& p : distribution.parameters) {
    text += (text.empty() ? "" : ", ") + std::string(p.option);
  }
  return text.empty() ? "no parameters" : text;
}

}  // namespace

const Distribution& find_distribution(const Arguments& arguments) {
  const std::string name = arguments.option("--distribution", "");
  const std::string type = arguments.option("--type", "");
  const auto has_name = [&](const Distribution& d) { return d.name == lower_case(name); };
  const auto fits = [&](const Distribution& d) {
    return has_name(d) && (type.empty() || d.type == type);
  };
  if (std::ranges::none_of(list(), has_name)) {
    refuse_value("--distribution", name,
                 "one of " + names(&Distribution::name, [](const auto&) { return true; }));
  }
  const auto found = std::ranges::find_if(list(), fits);
  if (found == list().end()) {
    refuse_value("--type", type,
                 "with " + name + ", one of " + names(&Distribution::type, has_name));
  }
  return *found;
}

Parameters parameters_of(const Distribution& distribution, const Arguments& arguments) {
  for (const Distribution& other : list()) {
    for (const Parameter& p : other.parameters) {
      if (!arguments.has(p.option) || takes(distribution, p.option)) continue;
      refuse_value(p.option, arguments.option(p.option, ""),
                   "with " + std::string(distribution.name) + ", " + options_of(distribution));
    }
  }
  Parameters values{};
  std::string given;
  for (size_t k = 0; k < distribution.parameters.size(); ++k) {
    const Parameter& p = distribution.parameters[k];
    const std::string text = arguments.option(p.option, p.otherwise);
    if (text.empty()) {
      throw InputError(std::string(p.option) + " is missing; " + std::string(distribution.name) +
                       " as " + std::string(distribution.type) + " takes " +
                       options_of(distribution));
    }
    values[k] = number_between(p.option, text, p.low, p.high, p.whole);
    given += (k == 0 ? "" : ", ") + std::string(p.option) + " " + text;
  }
  if (arguments.has("--accurate") && !distribution.has_accuracy) {
    throw InputError("--accurate: " + std::string(distribution.name) + " as " +
                     std::string(distribution.type) + " has no such form; the uniform reals have");
  }
  const std::string_view wrong = distribution.wrong != nullptr ? distribution.wrong(values) : "";
  if (!wrong.empty()) refuse_value(options_of(distribution), given, wrong);
  return values;
}

Layout layout_of(const Distribution& distribution, const Stream& stream) {
  if (distribution.draw != draw_words) return {distribution.element, 1};
  BrngProperties row{};
  __ostGetBrngProperties(stream->brng, &row);
  if (row.wordBytes == 8) return {Element::uint64, 1};
  return {Element::uint32, static_cast<size_t>(row.wordBytes) / sizeof(uint32_t)};
}

std::string describe_distributions() {
  std::string text;
  for (const Distribution& d : list()) {
    text += format("  %-14s %-7s %s\n", std::string(d.name).c_str(), std::string(d.type).c_str(),
                   std::string(d.summary).c_str());
  }
  return text;
}

}  // namespace qor::cli
