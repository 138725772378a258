// The platform behind services.h: what the processor and the file system tell.

#include <cpuid.h>
#include <sys/stat.h>

#include "services/file.h"
#include "services/services.h"

namespace qor::services {

FeatureWords processor_features() {
  FeatureWords words;
  uint32_t eax = 0, ebx = 0;
  __get_cpuid(1, &eax, &ebx, &words.ecx, &words.edx);
  return words;
}

uint64_t time_stamp() { return __builtin_ia32_rdtsc(); }

uint64_t known_file_bytes(FILE* file) {
  struct stat known;
  // Files that the system makes up as they are read tell 0.
  const bool is_known =
      fstat(fileno(file), &known) == 0 && S_ISREG(known.st_mode) && known.st_size > 0;
  return is_known ? static_cast<uint64_t>(known.st_size) : unknown_file_bytes;
}

}  // namespace qor::services
