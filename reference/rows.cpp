#include "reference/rows.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "qor/vector_math.h"
#include "reference/signature.h"

namespace qor::reference {
namespace {

template <class T>
constexpr double bound_of(const Reference& reference) {
  return sizeof(T) == sizeof(float) ? reference.bound_s : reference.bound_d;
}

// What the other two accuracies promise, in ulp: LA below 4, EP half of the digits.
constexpr double kBoundLA = 4.0;
template <class T>
constexpr double bound_EP = static_cast<double>(uint64_t{1} << (format_of<T>.digits / 2 + 1));

template <auto& table, auto& strided_table, class T>
Row<T> make_row(char letter, std::string_view base, std::array<char, slots> kernels,
                const Reference& reference, const float* costs) {
  using Kernel = std::remove_cvref_t<decltype(table[0])>;
  using S = Signature<Kernel, T>;
  return {letter,
          base,
          S::shape,
          kernels,
          &reference,
          [](int slot, const Call<T>& call) { S::run(table[slot], call); },
          [](int slot, const Call<T>& call) { S::run_strided(strided_table[slot], call); },
          [](void* kernel, const Call<T>& call) { S::run(reinterpret_cast<Kernel>(kernel), call); },
          costs};
}

}  // namespace

const std::vector<AnyRow>& rows() {
#define QOR_TEST_ROW(t, base, shape, la, ha, ep, ...)                                        \
  make_row<qor_ark_kernel_##t##base##_ttab, qor_ark_kernel_##t##base##I_ttab, QOR_REAL_##t>( \
      #t[0], #base, {#la[0], #ha[0], #ep[0]}, references::base, qor_ark_kernel_##t##base##_ctab),
  static const std::vector<AnyRow> list{QOR_FUNCTION_ROWS(QOR_TEST_ROW)};
#undef QOR_TEST_ROW
  return list;
}

template <class T>
std::vector<int> Row<T>::distinct_slots() const {
  std::vector<int> distinct;
  for (int slot = 0; slot < slots; ++slot) {
    if (std::find(kernels.begin(), kernels.begin() + slot, kernels[slot]) ==
        kernels.begin() + slot) {
      distinct.push_back(slot);
    }
  }
  return distinct;
}

template <class T>
std::string Row<T>::sharing(int slot) const {
  constexpr std::string_view kNames[slots] = {"LA", "HA", "EP"};
  std::string text;
  for (int other = 0; other < slots; ++other) {
    if (kernels[other] != kernels[slot]) continue;
    if (!text.empty()) text += ' ';
    text += kNames[other];
  }
  return text;
}

template <class T>
double Row<T>::bound(int slot) const {
  if (kernels[slot] == kernels[HA]) return bound_of<T>(*reference);
  return kernels[slot] == kernels[LA] ? kBoundLA : bound_EP<T>;
}

template struct Row<float>;
template struct Row<double>;

std::string reported_name(std::string_view row, bool strided) {
  constexpr std::string_view kStridedOnes[] = {
      "cDiv",     "cLn",  "cMulByConj", "cMul",  "cSqrt", "dCdfNormInv", "dDiv",  "dErfcInv",
      "dExpm1",   "dInv", "dTanh",      "sAtan", "sCbrt", "sCdfNormInv", "sCosh", "sDiv",
      "sInvCbrt", "sInv", "sSinh",      "sTan",  "zExp",  "zLn",         "zSqrt"};
  const bool carries =
      std::find(std::begin(kStridedOnes), std::end(kStridedOnes), row) != std::end(kStridedOnes);
  return std::string("v").append(row).append(strided && carries ? "I" : "");
}

}  // namespace qor::reference
