// Which generator repairs its states how.

#include "streams/generators/repair.h"

#include "streams/registry.h"

namespace qor::streams {

namespace {

// A registered generator may have the functions of one of these.
constexpr struct {
  int32_t (*generator)(int32_t method, StreamState* stream, int32_t n, const void* params);
  void (*repair)(StreamState* stream);
} kRepairs[] = {{__ostBRngMCG31M1InitStream, repair_mcg31m1},
                {__ostBRngR250InitStream, repair_r250},
                {__ostBRngMRG32K3AInitStream, repair_mrg32k3a},
                {__ostBRngMCG59InitStream, repair_mcg59},
                {__ostBRngWHInitStream, repair_wh}};

}  // namespace

void repair_state(StreamState* stream) {
  const auto generator = row_of(stream).initStream;
  for (const auto& each : kRepairs) {
    if (each.generator == generator) each.repair(stream);
  }
}

}  // namespace qor::streams
