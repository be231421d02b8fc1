// Selects the instruction set by CPU features.

#include "kernels/kernels.h"

namespace kernels {
namespace sse2 {
extern const Table table;
}
namespace avx2 {
extern const Table table;
}
namespace avx512 {
extern const Table table;
}

Tables supported() {
  __builtin_cpu_init();
  Tables tables{};
  tables.table[tables.count++] = &sse2::table;
  if (__builtin_cpu_supports("avx2")) tables.table[tables.count++] = &avx2::table;
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("avx512bw") &&
      __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi")) {
    tables.table[tables.count++] = &avx512::table;
  }
  return tables;
}

const Table& best() {
  static const Table* chosen;
  if (!chosen) {
    const Tables tables = supported();
    chosen = tables.table[tables.count - 1];
  }
  return *chosen;
}

}  // namespace kernels
