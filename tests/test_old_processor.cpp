// Run by old_processor.sh: on its processor the first instructions that came after SSE2 are illegal indeed.

#include <csignal>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace {

TEST(OldProcessor, HasNothingNewerThanSSE2) {
  EXPECT_EXIT(__asm__ volatile("haddps %xmm0, %xmm0"), testing::KilledBySignal(SIGILL), "");
  EXPECT_EQ(kernels::supported().count, 1);
}

}  // namespace
