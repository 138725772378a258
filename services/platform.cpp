// The platform behind services.h: what the processor tells.

#include <cpuid.h>

#include "services/services.h"

namespace qor::services {

FeatureWords processor_features() {
  FeatureWords words;
  uint32_t eax = 0, ebx = 0;
  __get_cpuid(1, &eax, &ebx, &words.ecx, &words.edx);
  return words;
}

uint64_t time_stamp() { return __builtin_ia32_rdtsc(); }

}  // namespace qor::services
