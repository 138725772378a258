// The installed C++ header, in a program that also throws and catches.
#include <cstdio>
#include <qor/qor.hpp>

int main() {
  const std::vector<double> x{0.0, 1.0};
  const std::vector<double> y = qor::apply(qor_ark_kernel_dExp_ttab, x);
  try {
    std::vector<double> short_one(1);
    qor::apply_to(qor_ark_kernel_dExp_ttab, x, short_one);
  } catch (const std::invalid_argument& error) {
    std::printf("%.3f, refused: %s\n", y[1], error.what());
    return 0;
  }
  return 1;
}
