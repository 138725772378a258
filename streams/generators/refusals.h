// How initStream answers to a method that its generator does not offer.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

constexpr int32_t refusal_of(int32_t method) {
  switch (method) {
    case QOR_BRNG_LEAPFROG:
      return QOR_STREAM_NO_LEAPFROG;
    case QOR_BRNG_SKIP_AHEAD:
      return QOR_STREAM_NO_SKIP_AHEAD;
    case QOR_BRNG_SKIP_AHEAD_EX:
      return QOR_STREAM_NO_SKIP_AHEAD_EX;
    default:
      return QOR_STREAM_BAD_METHOD;
  }
}

}  // namespace qor::streams
