// Streaming quantiles: the estimator over the blocks of a stream, and the end of its state.

#include <algorithm>
#include <atomic>

#include "statistics/estimators.h"
#include "statistics/items.h"
#include "statistics/stream_state.h"

namespace qor::statistics {
namespace {

// Threads left to the hook.
constexpr int64_t kAnyThreads = 0;

// The state is of this precision and p. The variables of this call are those that its indices name,
// which must all be active.
int check_state(const StreamState* state, int32_t precision, int64_t p, const Integers& indices) {
  if (state != nullptr && state->precision != precision) return QOR_SS_BAD_METHOD;
  if (state != nullptr && state->p != p) return QOR_SS_BAD_P;
  if (!indices.given()) return QOR_SS_OK;
  bool any = false;
  for (int64_t j = 0; j < p; ++j) {
    if (indices[j] == 0) continue;
    if (state != nullptr && state->variable[j].active == 0) return QOR_SS_BAD_INDICES;
    any = true;
  }
  return any ? QOR_SS_OK : QOR_SS_BAD_INDICES;
}

// The task's state, made at the first call; null without memory.
template <class Real>
StreamState* stream_state(SsTask& task, int64_t p, const Integers& indices) {
  if (task.stream_state == nullptr) {
    task.stream_state = new_stream_state(p, precision_of<Real>, indices);
    if (task.stream_state != nullptr) {
      task.cleanup[0] = __ostSQuantilesFreeBuffers;
      task.cleanup_count = 1;
    }
  }
  return static_cast<StreamState*>(task.stream_state);
}

// Takes the block in pieces for which all variables' stages have room.
template <class Real>
int update(SsTask& task, StreamState& state, const SelectedVariables& variables,
           const ThreadHook* hook) {
  const int64_t n = integer(task, task.n);
  if (n == 0) return QOR_SS_OK;
  const Observations<Real> data = observations<Real>(task);
  const double epsilon = static_cast<double>(*reals<Real>(task.stream_parameters));
  for (int64_t first = 0; first < n;) {
    int64_t piece = n - first;
    for (int64_t item = 0; item < variables.count(); ++item) {
      StreamVariable& variable = state.variable[variables[item]];
      if (variable.room() == 0 && !add_stage<Key<Real>>(variable, epsilon)) {
        return QOR_SS_NO_MEMORY;
      }
      piece = std::min(piece, variable.room());
    }
    auto take = [&](int64_t item, int64_t) {
      StreamVariable& variable = state.variable[variables[item]];
      Column<Real> values = column(data, variables[item]);
      values.x += first * values.stride;
      values.n = piece;
      take_observations(variable.stage[variable.current], values);
    };
    run_items(hook, variables.count(), kAnyThreads, take);
    first += piece;
  }
  return QOR_SS_OK;
}

template <class Real>
int answer_all(const SsTask& task, const StreamState& state, const SelectedVariables& variables,
               const ThreadHook* hook) {
  const Real* order = reals<Real>(task.stream_quantile_orders);
  Real* quantiles = reals<Real>(task.stream_quantiles);
  const int64_t orders = integer(task, task.stream_quantile_count);
  std::atomic<int> status = QOR_SS_OK;
  auto answer_one = [&](int64_t item, int64_t) {
    const StreamVariable& variable = state.variable[variables[item]];
    if (!answer(variable, order, orders, quantiles + item * orders)) status = QOR_SS_NO_MEMORY;
  };
  run_items(hook, variables.count(), kAnyThreads, answer_one);
  return status;
}

}  // namespace

template <class Real>
int compute_stream_quantiles(SsTask& task, uint64_t method, const ThreadHook* hook) {
  const int64_t p = integer(task, task.p);
  const Integers indices = integers(task, task.indices);
  int status = check_state(static_cast<const StreamState*>(task.stream_state), precision_of<Real>,
                           p, indices);
  if (status != QOR_SS_OK) return status;
  StreamState* state = stream_state<Real>(task, p, indices);
  if (state == nullptr) return QOR_SS_NO_MEMORY;
  const SelectedVariables variables(p, [&](int64_t j) {
    return state->variable[j].active != 0 && (!indices.given() || indices[j] != 0);
  });
  if (!variables.allocated()) return QOR_SS_NO_MEMORY;
  status = update<Real>(task, *state, variables, hook);
  if (status != QOR_SS_OK || (method & QOR_SS_METHOD_STREAM_ANSWER) == 0) return status;
  return answer_all<Real>(task, *state, variables, hook);
}

template int compute_stream_quantiles<double>(SsTask&, uint64_t, const ThreadHook*);
template int compute_stream_quantiles<float>(SsTask&, uint64_t, const ThreadHook*);

}  // namespace qor::statistics

using namespace qor::statistics;

int32_t __ostSQuantilesFreeBuffers(SsTask* task) {
  if (task == nullptr) return QOR_SS_NULL_TASK;
  if (task->stream_state != nullptr) {
    free_stream_state(static_cast<StreamState*>(task->stream_state));
  }
  task->stream_state = nullptr;
  return QOR_SS_OK;
}
