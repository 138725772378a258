// The forms of functions: a function derives from its form, and the rows check that it has what the
// form asks for, and nothing of another form.
//
//   Everywhere  core(x...)                        valid for every input
//   Guarded     core, special(x...), scalar(x...) special lanes go to the scalar routine one by one
//   Tiered      the same and wide(x..., special)  special lanes stay in registers, as far as `wide`
//                                                 does them; no `scalar` where it does all
//   Walked      evaluate(x, y)                    element by element
//   Chosen      choose(run)                       one of several functions, by the state it holds
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "kernels/frame/function.h"

namespace qor::kernels {

enum class Form { everywhere, guarded, tiered, walked, chosen };

template <class Signature>
struct Everywhere : Function<Signature> {
  static constexpr Form form = Form::everywhere;
};
template <class Signature>
struct Guarded : Function<Signature> {
  static constexpr Form form = Form::guarded;
};
template <class Signature>
struct Tiered : Function<Signature> {
  static constexpr Form form = Form::tiered;
};
template <class Signature>
struct Walked : Function<Signature> {
  static constexpr Form form = Form::walked;
};
template <class Signature>
struct Chosen : Function<Signature> {
  static constexpr Form form = Form::chosen;
};

// ---- Inputs in registers --------------------------------------------------------------------

template <class F>
struct Inputs {
  typename F::X at[F::inputs == 0 ? 1 : F::inputs];
};

// work(x...) with the inputs of a block.
template <class F, class Work>
inline decltype(auto) with_inputs(const Inputs<F>& x, Work work) {
  return [&]<int... k>(std::integer_sequence<int, k...>)->decltype(auto) {
    return work(x.at[k]...);
  }
  (std::make_integer_sequence<int, F::inputs>{});
}

// ---- What members there are -----------------------------------------------------------------

template <class F>
concept HasCore = requires {
  &F::core;
};
template <class F>
concept HasSpecial = requires {
  &F::special;
};
template <class F>
concept HasWide = requires {
  &F::wide;
};
template <class F>
concept HasScalar = requires {
  &F::scalar;
};
template <class F>
concept HasEvaluate = requires {
  &F::evaluate;
};
template <class F>
concept HasChoose = requires(const F& f) {
  f.choose([](const auto&...) {});
};

template <class F>
inline constexpr bool has_special_lanes = F::form == Form::guarded || F::form == Form::tiered;

template <class F>
inline auto call_core(const F& f, const Inputs<F>& x) {
  return with_inputs<F>(x, [&](const auto&... at) { return f.core(at...); });
}
template <class F>
inline auto call_wide(const F& f, const Inputs<F>& x, typename F::LaneSet special) {
  return with_inputs<F>(x, [&](const auto&... at) { return f.wide(at..., special); });
}
template <class F>
using CoreAnswer = decltype(call_core(std::declval<const F&>(), std::declval<Inputs<F>>()));
template <class F>
using WideAnswer = decltype(call_wide(std::declval<const F&>(), std::declval<Inputs<F>>(),
                                      std::declval<typename F::LaneSet>()));

template <class F>
inline constexpr bool core_checks = std::is_same_v<CoreAnswer<F>, Checked<typename F::Value>>;
template <class F>
inline constexpr bool wide_leaves_lanes = std::is_same_v<WideAnswer<F>, Wide<typename F::Value>>;

// ---- Checks ---------------------------------------------------------------------------------

template <class F>
consteval bool check_registers() {
  static_assert(HasCore<F>, "the function lacks core(x...)");
  constexpr bool plain = std::is_same_v<CoreAnswer<F>, Registers<typename F::Value>>;
  if constexpr (has_special_lanes<F>) {
    static_assert(plain || core_checks<F>, "core answers the result's registers, or Checked");
    static_assert(HasSpecial<F> != F::traits.found_by_core,
                  "the function lacks special(x...), or has it though its core finds all");
    static_assert(!F::traits.found_by_core || core_checks<F>,
                  "a core that finds the special lanes answers Checked");
  } else {
    static_assert(plain, "core answers the result's registers");
    static_assert(!HasSpecial<F>, "special belongs to the forms Guarded and Tiered");
    static_assert(!F::traits.found_by_core, "no lane is special in this form");
  }
  return true;
}

template <class F>
consteval bool check_scalar_side() {
  if constexpr (F::form == Form::tiered) {
    static_assert(HasWide<F>, "the function lacks wide(x..., special)");
    static_assert(!F::traits.nan_passes || std::is_same_v<typename F::X, typename F::V>,
                  "that NaN passes is for real inputs");
    static_assert(
        wide_leaves_lanes<F> || std::is_same_v<WideAnswer<F>, Complete<typename F::Value>>,
        "wide answers Wide or Complete");
    static_assert(HasScalar<F> == wide_leaves_lanes<F>,
                  "the function lacks scalar(x...), or has it though wide leaves no lane");
  } else {
    static_assert(!HasWide<F>, "wide belongs to the form Tiered");
    static_assert(!F::traits.nan_passes, "nan_passes belongs to the form Tiered");
    static_assert(HasScalar<F> == (F::form == Form::guarded),
                  "the function lacks scalar(x...), or has it though no lane is special");
  }
  return true;
}

// Whether the function is what its form says. A failure names what is wrong.
template <class F>
consteval bool check_form() {
  static_assert(std::is_same_v<decltype(F::traits), const Traits>, "traits are of type Traits");
  static_assert(HasEvaluate<F> == (F::form == Form::walked),
                "evaluate(x, y) is what the form Walked has, and no other");
  static_assert(HasChoose<F> == (F::form == Form::chosen),
                "choose(run) is what the form Chosen has, and no other");
  if constexpr (F::form == Form::walked || F::form == Form::chosen) {
    static_assert(!HasCore<F> && !HasSpecial<F> && !HasWide<F> && !HasScalar<F>,
                  "core, special, wide and scalar belong to other forms");
  } else {
    check_registers<F>();
    check_scalar_side<F>();
  }
  return true;
}

}  // namespace qor::kernels
