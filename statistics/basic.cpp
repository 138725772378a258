// Basic: one block of data into moments, sums and matrices, on the threads that the caller lends.

#include <algorithm>

#include "statistics/cross_product.h"
#include "statistics/estimators.h"
#include "statistics/run.h"
#include "statistics/slots.h"
#include "statistics/work_memory.h"

namespace qor::statistics {
namespace {

// A thread pays for itself from this much work on.
constexpr int64_t kElementsPerThread = 8192;
constexpr int64_t kObservationsPerThread = 16;

int64_t threads_for(const ThreadHook* hook, int64_t n, int64_t p, bool matrix) {
  if (hook == nullptr || hook->run_team == nullptr || hook->thread_count == nullptr) return 1;
  const int64_t work = matrix ? n : services::counted_product(n, p);
  const int64_t most = std::min(work / kElementsPerThread, n / kObservationsPerThread);
  return std::max<int64_t>(1, std::min(hook->thread_count(), most));
}

template <class Real>
Kernel<Real> kernel_of(const Request& request, bool by_variable, bool weighted, int row) {
  switch (request.method) {
    case Method::one_pass:
      return one_pass_kernel<Real>(by_variable, weighted, row, request.has_matrix());
    case Method::fast:
      return fast_kernel<Real>(by_variable, weighted, row);
    default:
      return given_means_kernel<Real>(by_variable, weighted, row);
  }
}

template <class Real>
int64_t member_work(const Run<Real>& run) {
  if (!run.matrix) return 0;
  if (run.request.method == Method::one_pass) return one_pass_work<Real>(run.data.p);
  return product_work(run.data, std::min(run.data.n, product_block(run.data.p)));
}

// Whether a run may gather in the caller's arrays: where it can begin again from nothing, and all
// variables take part.
template <class Real>
bool gathers_in_place(const Run<Real>& run) {
  return run.is_fresh() && !run.data.indices.given();
}

// Reals of a variable each in the units of the run: where they stand, or as a copy.
template <class Real>
Real* in_units_of(const Run<Real>& run, Real* values, WorkMemory& memory) {
  if (values == nullptr || run.units.exponents == nullptr) return values;
  Real* copy = memory.take<Real>(run.data.p);
  for (int64_t j = 0; copy != nullptr && j < run.data.p; ++j) {
    copy[j] = times_two_to(values[j], -run.units.of(j));
  }
  return copy;
}

// The slots of the first thread: the caller's arrays or temporaries. A given mean is read where it
// stands.
template <class Real>
void place_slots(const Run<Real>& run, WorkMemory& memory, Moments<Real>& moments) {
  const int64_t p = run.data.p;
  const bool given = run.request.method == Method::given_means;
  Real* given_mean = given ? in_units_of(run, reals<Real>(run.task.mean), memory) : nullptr;
  const auto array_in_place = [&](int s) -> Real* {
    if (given && s == 0) return given_mean;
    return gathers_in_place(run) ? slot_array<Real>(run.task, run.request, s) : nullptr;
  };
  int64_t missing = 0;
  for (int s = 0; s < slot_count; ++s) {
    missing += in_use(run.order, s) && array_in_place(s) == nullptr;
  }
  Real* next = memory.take<Real>(services::counted_product(missing, p));
  if (memory.failed()) return;
  for (int s = 0; s < slot_count; ++s) {
    if (!in_use(run.order, s)) continue;
    slot(moments, s) = array_in_place(s);
    if (slot(moments, s) != nullptr) continue;
    slot(moments, s) = next;
    if (given && s == 0) std::fill_n(next, p, Real{0});  // no mean is given: it is 0
    next += p;
  }
}

// The matrix of the first thread: the holder itself where it is full and whole.
template <class Real>
Real* place_cross(const Run<Real>& run, WorkMemory& memory) {
  if (!run.matrix) return nullptr;
  const auto holder = matrix_of<Real>(run.task, holder_field(run.request));
  if (holder.form == MatrixForm::full && gathers_in_place(run)) return holder.data;
  return memory.take<Real>(services::counted_product(run.data.p, run.data.p));
}

// The slabs of the threads after the first, zeroed, and everybody's work.
template <class Real>
void place_members(Run<Real>& run, WorkMemory& memory) {
  const int64_t p = run.data.p, others = run.threads - 1;
  const bool given = run.request.method == Method::given_means;
  const int64_t rows = services::counted_sum(
      run.matrix ? p : 0, int64_t{run.order.raw} + run.order.central - (given ? 1 : 0));
  const int64_t slab = services::counted_product(rows, p);
  const int64_t work = member_work(run);
  Real* slabs = memory.take<Real>(services::counted_product(others, slab));
  Real* works = memory.take<Real>(services::counted_product(run.threads, work));
  if (memory.failed()) return;
  if (others > 0) std::fill_n(slabs, others * slab, Real{0});
  for (int64_t t = 0; t < run.threads; ++t) {
    Accumulator<Real>& a = run.members[t].gathered;
    a.work = works == nullptr ? nullptr : works + t * work;
    if (t == 0) continue;
    Real* next = slabs + (t - 1) * slab;
    for (int s = 0; s < slot_count; ++s) {
      if (!in_use(run.order, s)) continue;
      const bool shared = given && s == 0;
      slot(a.moments, s) = shared ? run.members[0].gathered.moments.mean : next;
      if (!shared) next += p;
    }
    if (run.matrix) a.cross = next;
  }
}

template <class Real>
Weight registered_weight(const SsTask& task) {
  const Real* weight = reals<Real>(task.accumulated_weights);
  return weight == nullptr ? Weight{} : Weight{weight[0], weight[1]};
}

// Room for the given means, kept by the task; the old ones go with a change of p or of precision.
template <class Real>
int reserve_saved_means(SsTask& task, int64_t p) {
  if (saved_means<Real>(task, p) != nullptr) return QOR_SS_OK;
  Real* room = services::allocate_values<Real>(p);
  if (room == nullptr) return QOR_SS_NO_MEMORY;
  std::copy_n(reals<Real>(task.mean), p, room);
  qor_serv_deallocate(task.saved_means);
  task.saved_means = room;
  task.saved_mean_count = p;
  task.saved_mean_precision = precision_of<Real>;
  return QOR_SS_OK;
}

template <class Real>
void finish(const Run<Real>& run) {
  const Accumulator<Real>& a = run.gathered();
  const int64_t p = run.data.p;
  if (run.request.method == Method::given_means && run.task.mean != nullptr) {
    std::copy_n(reals<Real>(run.task.mean), p, saved_means<Real>(run.task, p));
  }
  if (Real* weight = reals<Real>(run.task.accumulated_weights)) {
    const Weight all = in_units(a.weight, -run.units.weight);
    weight[0] = static_cast<Real>(all.sum);
    weight[1] = static_cast<Real>(all.squares);
  }
  finish_slots(run.task, run.request, a.weight, run.units, p, a.moments);
  if (run.matrix) {
    write_matrices(run.task, run.request, a.cross, a.weight, run.units, run.inverse_roots);
  }
}

// Takes the data into the members' memory, from the state in the caller's arrays on.
template <class Real>
int gather(Run<Real>& run, WorkMemory& memory, const ThreadHook* hook) {
  const int64_t p = run.data.p;
  run.members = memory.take<Member<Real>>(run.threads);
  if (memory.failed()) return QOR_SS_NO_MEMORY;
  std::fill_n(run.members, run.threads, Member<Real>{});
  Accumulator<Real>& first = run.members[0].gathered;
  first.weight = in_units(run.before, run.units.weight);
  place_slots(run, memory, first.moments);
  first.cross = place_cross(run, memory);
  run.inverse_roots = memory.take<Real>(run.request.has(field_cor) ? p : 0);
  place_members(run, memory);
  const bool saves = run.request.method == Method::given_means && run.task.mean != nullptr;
  if (memory.failed()) return QOR_SS_NO_MEMORY;
  if (saves && reserve_saved_means<Real>(run.task, p) != QOR_SS_OK) return QOR_SS_NO_MEMORY;
  run.start_means =
      saves ? in_units_of(run, saved_means<Real>(run.task, p), memory) : first.moments.mean;
  if (memory.failed()) return QOR_SS_NO_MEMORY;
  start_slots(run.task, run.request, run.order, first.weight, run.units, p, first.moments);
  if (run.matrix) {
    const int holder = holder_field(run.request);
    read_cross_product(matrix_of<Real>(run.task, holder), holder, p, first.weight, run.units,
                       first.cross);
  }
  run_members(run, hook);
  return QOR_SS_OK;
}

template <class Real>
int compute_from_data(SsTask& task, const Request& asked, const ThreadHook* hook) {
  const auto data = observations<Real>(task);
  const int row = order_row(asked);
  const Request request = with_carriers(task, asked, order_of(asked.method, row));
  const Weight before = registered_weight<Real>(task);
  if (const int status = check_state(request, before.sum)) return status;
  const bool matrix = request.has_matrix();
  const bool weighted = data.weights != nullptr;
  Run<Real> run = {task,
                   request,
                   data,
                   order_of(request.method, row),
                   matrix,
                   before,
                   threads_for(hook, data.n, data.p, matrix),
                   kernel_of<Real>(request, data.by_variable, weighted, row),
                   kernel_of<Real>(request, false, false, row)};
  WorkMemory memory;
  choose_units(run, memory);
  int status = gather(run, memory, hook);
  if (status == QOR_SS_OK && change_units(run, memory)) status = gather(run, memory, hook);
  if (status != QOR_SS_OK) return status;
  finish(run);
  return QOR_SS_OK;
}

template <class Real>
int compute_from_sums(const SsTask& task, const Request& request) {
  const int64_t p = integer(task, task.p);
  Weight weight = registered_weight<Real>(task);
  if (task.accumulated_weights == nullptr) {
    const double n = static_cast<double>(integer(task, task.n));
    weight = {n, n};
  }
  WorkMemory memory;
  const Units units{nullptr, weight_unit(weight.sum)};
  const Weight near_one = in_units(weight, units.weight);
  Real *cross = nullptr, *inverse_roots = nullptr;
  if (request.has_matrix()) {
    inverse_roots = memory.take<Real>(request.has(field_cor) ? p : 0);
    cross = memory.take<Real>(services::counted_product(p, p));
    if (memory.failed()) return QOR_SS_NO_MEMORY;
    const auto cp = matrix_of<Real>(task, field_cp);
    read_matrix(cp.data, cp.form, p, cross);
    change_units(field_cp, units, p, cross);
  }
  finish_from_sums<Real>(task, request, near_one, units, p);
  if (cross != nullptr) write_matrices(task, request, cross, near_one, units, inverse_roots);
  return QOR_SS_OK;
}

}  // namespace

template <class Real>
int compute_basic(SsTask& task, const Request& request, const ThreadHook* hook) {
  return request.method == Method::from_sums ? compute_from_sums<Real>(task, request)
                                             : compute_from_data<Real>(task, request, hook);
}

template int compute_basic<double>(SsTask&, const Request&, const ThreadHook*);
template int compute_basic<float>(SsTask&, const Request&, const ThreadHook*);

}  // namespace qor::statistics
