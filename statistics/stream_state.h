// The state of streaming quantiles: for each variable its stages, each of which holds a number of
// consecutive observations in levels of summaries.
#pragma once

#include <cstdint>

#include "statistics/columns.h"
#include "statistics/stream_summary.h"
#include "statistics/task.h"

namespace qor::statistics {

// Observations collect in a buffer (level 0). A full buffer becomes a summary of level 1; where a
// level is occupied, the two merge into one of the next level.
struct Stage {
  int64_t taken;       // observations in the stage
  int64_t capacity;    // the most of them
  int64_t block;       // observations of the buffer when full
  int64_t levels;      // levels 1 to `levels` hold summaries
  int64_t row_length;  // room of a level, in entries
  int64_t fill;        // observations in the buffer
  int64_t* length;     // entries of level i in length[i]; 0 when it is free
  void* keys;          // the buffer, and behind it the work for sorting it
  void* rows;          // the levels from 1 on, and two more for merging
};

struct StreamVariable {
  int64_t stages;
  int64_t current;  // the stage that takes observations; -1 before the first
  int64_t active;   // 0: left out from the first call on
  Stage* stage;

  int64_t room() const { return current < 0 ? 0 : stage[current].capacity - stage[current].taken; }
};

struct StreamState {
  int64_t p;
  int32_t precision;           // of the entry that made it
  StreamVariable variable[1];  // p of them
};

struct StageSize {
  int64_t capacity, block, levels;
};

// Stage k of a stream with error epsilon.
StageSize stage_size(double epsilon, int64_t k);

// A state of p variables without stages, those without a flag inactive; null without memory.
StreamState* new_stream_state(int64_t p, int32_t precision, const Integers& indices);
void free_stream_state(StreamState* state);

// Gives the variable its next stage; false without memory.
template <class Key>
bool add_stage(StreamVariable& variable, double epsilon);

// Adds observations, for which the current stage has room.
template <class Real>
void take_observations(Stage& stage, const Column<Real>& observations);

// Writes the quantiles of all observations so far, nothing when there are none; false without
// memory.
template <class Real>
bool answer(const StreamVariable& variable, const Real* order, int64_t orders, Real* quantile);

}  // namespace qor::statistics
