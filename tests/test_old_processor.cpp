// Run by old_processor.sh: on its processor the instructions that came after SSE2 are illegal indeed.

#include <csignal>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace {

TEST(OldProcessor, HasNothingNewerThanSSE2) {
  const std::pair<const char*, void (*)()> newer[] = {
      {"SSE3", [] { __asm__ volatile("haddps %xmm0, %xmm0"); }},
      {"SSSE3", [] { __asm__ volatile("pabsd %xmm0, %xmm0"); }},
      {"SSE4.1", [] { __asm__ volatile("pmulld %xmm0, %xmm0"); }},
      {"SSE4.2", [] { __asm__ volatile("pcmpgtq %xmm0, %xmm0"); }},
      {"POPCNT", [] { __asm__ volatile("popcnt %eax, %eax"); }},
      {"BMI", [] { __asm__ volatile("blsr %eax, %eax"); }},
      {"AVX2", [] { __asm__ volatile("vpaddd %ymm0, %ymm0, %ymm0"); }},
  };
  for (const auto& [name, execute] : newer)
    EXPECT_EXIT(execute(), testing::KilledBySignal(SIGILL), "") << name;
  __asm__ volatile("paddq %xmm0, %xmm0");
  EXPECT_EQ(kernels::supported().count, 1);
}

}  // namespace
