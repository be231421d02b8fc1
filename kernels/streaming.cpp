// When to write past the caches.

#include "kernels/kernels.h"

namespace kernels {

// 12 MiB: smaller results are faster in the caches.
bool shouldStream(int64_t pixels) { return pixels >= 3 << 20; }

}  // namespace kernels
