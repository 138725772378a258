// States from outside. An image, or another generator's stream, may bring words that no seed leads
// to; generators count on theirs being possible, and look at no state of their own.
#pragma once

#include "qor/streams.h"

namespace qor::streams {

// Each in its generator's file: words beyond a modulus stand for their residues, and 0 for what
// creation puts in its place.
void repair_mcg31m1(StreamState* stream);
void repair_r250(StreamState* stream);
void repair_mrg32k3a(StreamState* stream);
void repair_mcg59(StreamState* stream);
void repair_wh(StreamState* stream);

// That of the stream's generator, if it is one of these.
void repair_state(StreamState* stream);

}  // namespace qor::streams
