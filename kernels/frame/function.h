// What a function is made of: its signature, its traits, the answers of its parts.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>

#include "kernels/frame/elements.h"
#include "kernels/frame/environment.h"
#include "kernels/lanes.h"
#include "qor/vector_math.h"

namespace qor::kernels {

using lanes::Two;

// ---- Answers --------------------------------------------------------------------------------

// The registers of a result: one for an element type, Two of them for Two of it.
template <class Result>
struct ResultOf {
  using Output = Result;
  using Registers = Register<Result>;
  static constexpr int outputs = 1;
};
template <class E>
struct ResultOf<Two<E>> {
  using Output = E;
  using Registers = Two<Register<E>>;
  static constexpr int outputs = 2;
};
template <class Result>
using Registers = typename ResultOf<Result>::Registers;
template <class Result>
using LaneSetOf = lanes::LaneSet<typename Element<typename ResultOf<Result>::Output>::Real>;

// What a scalar routine answers: the value and an error code, 0 for none.
template <class Result>
struct Outcome {
  Result value;
  int32_t code = QOR_ERROR_NONE;
};

// What a core answers that finds special lanes on its way, from an intermediate value that the
// input decides. Such lanes must raise no flag but those that are due.
template <class Result>
struct Checked {
  Registers<Result> value;
  LaneSetOf<Result> special;
};

// What a wide form answers: values, and the lanes that have a code. Of a lane in `left` nothing
// counts, the scalar routine does it.
template <class Result>
struct Complete {
  Registers<Result> value;
  LaneSetOf<Result> domain{}, pole{}, overflow{}, underflow{};
};
template <class Result>
struct Wide {
  Registers<Result> value;
  LaneSetOf<Result> left{}, domain{}, pole{}, overflow{}, underflow{};
};

// ---- Traits ---------------------------------------------------------------------------------

enum class CodeFlags { of_codes, of_heard_codes, by_wide };

// What functions may have otherwise than most, for a constant `traits` of their own.
struct Traits {
  // The name reported, where it is not "v" and that of the row; and whether the strided kernel's
  // report has the I of its row.
  const char* name = nullptr;
  bool strided_name = false;
  Environment environment{};
  Environment strided_environment{};
  // Registers a step, with one test for all: for functions of a few instructions, where the test
  // weighs, and for those whose chain of operations is too long for the processor to see the next
  // block.
  int group = 1;
  // Stores to the alignment of a register, for functions that memory bounds. Peeling changes no
  // result: an element's value depends on its operands only.
  bool aligned_stores = false;
  // There is no test of the input: the core finds all special lanes itself.
  bool found_by_core = false;
  // In the form Tiered: NaN is special, and the result of a NaN is that NaN made quiet. The frame
  // sees to it; no NaN comes to `wide`.
  bool nan_passes = false;
  // The flags of lanes that `wide` names with a code: those of the code; none when nobody is to
  // hear of errors (the error field is NOERR alone); or `wide` raises them itself.
  CodeFlags code_flags = CodeFlags::of_codes;
  // An argument of the core (both parts of a complex one) for lanes that are not in use or special.
  double stand_in = 0.75;
};

// ---- Signature ------------------------------------------------------------------------------

template <class Signature>
struct Function;
template <class Result, class... Arguments>
struct Function<Result(Arguments...)> {
  using Value = Result;
  using Output = typename ResultOf<Result>::Output;
  // (Of a function without inputs the output's.)
  using Input = std::tuple_element_t<0, std::tuple<Arguments..., Output>>;
  using Real = typename Element<Output>::Real;
  using X = Register<Input>;
  using Y = Register<Output>;
  using V = typename lanes::Lanes<Real>::V;
  using I = typename lanes::Lanes<Real>::I;
  using M = typename lanes::Lanes<Real>::M;
  using LaneSet = lanes::LaneSet<Real>;
  static constexpr int inputs = sizeof...(Arguments);
  static constexpr int outputs = ResultOf<Result>::outputs;
  static constexpr Traits traits{};
  static_assert((std::is_same_v<Arguments, Input> && ...), "inputs are of one type");
  static_assert(std::is_same_v<typename Element<Input>::Real, Real>,
                "inputs and outputs are of one precision");
};

}  // namespace qor::kernels
