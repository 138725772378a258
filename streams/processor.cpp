// What the processor offers to generators.

#include "qor/streams.h"
#include "services/services.h"

namespace {

// Bits of identification leaf 1.
constexpr uint32_t kEdxSse2 = uint32_t{1} << 26;
constexpr uint32_t kEcxAes = uint32_t{1} << 25;
constexpr uint32_t kEcxRdrand = uint32_t{1} << 30;

constexpr int kVectorAesFeature = 4;  // its number in qor_serv_cpu_feature_test

}  // namespace

int32_t __ostCPUisAES() {
  const qor::services::FeatureWords words = qor::services::processor_features();
  return (words.edx & kEdxSse2) != 0 && (words.ecx & kEcxAes) != 0;
}

int32_t __ostCPUisRDRAND() { return (qor::services::processor_features().ecx & kEcxRdrand) != 0; }

int32_t __ostCPUisVAES() { return qor_serv_cpu_feature_test(kVectorAesFeature); }
