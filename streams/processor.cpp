// What the processor offers to generators.

#include <cpuid.h>

#include "qor/streams.h"
#include "services/services.h"

namespace {

// The two feature words of identification leaf 1; zero when there is no such leaf.
struct Features {
  unsigned ecx = 0, edx = 0;
  Features() {
    unsigned eax = 0, ebx = 0;
    __get_cpuid(1, &eax, &ebx, &ecx, &edx);
  }
};

constexpr int kVectorAesFeature = 4;  // its number in qor_serv_cpu_feature_test

}  // namespace

int32_t __ostCPUisAES() {
  const Features features;
  return (features.edx & bit_SSE2) != 0 && (features.ecx & bit_AES) != 0;
}

int32_t __ostCPUisRDRAND() { return (Features().ecx & bit_RDRND) != 0; }

int32_t __ostCPUisVAES() { return qor_serv_cpu_feature_test(kVectorAesFeature); }
