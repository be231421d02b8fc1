// Run by old_processor.sh: on its processor the instructions that came after SSE2 are illegal indeed.

#include <csignal>
#include <cstdio>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace {

struct Instruction {
  const char* name;
  void (*execute)();
};

class TooNew : public testing::TestWithParam<Instruction> {};

TEST_P(TooNew, IsIllegal) { EXPECT_EXIT(GetParam().execute(), testing::KilledBySignal(SIGILL), ""); }

INSTANTIATE_TEST_SUITE_P(
    Instructions, TooNew,
    testing::Values(Instruction{"SSE3", [] { __asm__ volatile("haddps %xmm0, %xmm0"); }},
                    Instruction{"SSSE3", [] { __asm__ volatile("pabsd %xmm0, %xmm0"); }},
                    Instruction{"SSE41", [] { __asm__ volatile("pmulld %xmm0, %xmm0"); }},
                    Instruction{"SSE42", [] { __asm__ volatile("pcmpgtq %xmm0, %xmm0"); }},
                    Instruction{"POPCNT",
                                [] {
                                  __asm__ volatile("popcnt %%eax, %%eax" ::: "eax");
                                }},
                    Instruction{"BMI",
                                [] {
                                  __asm__ volatile("blsr %%eax, %%eax" ::: "eax");
                                }},
                    Instruction{"AVX2", [] { __asm__ volatile("vpaddd %ymm0, %ymm0, %ymm0"); }}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(OldProcessor, GetsTheKernelsOfSSE2) {
  __asm__ volatile("paddq %xmm0, %xmm0");
  EXPECT_EQ(kernels::supported().count, 1U);
}

}  // namespace
