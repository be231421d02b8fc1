#include "tests/governed_plugin.h"

#include <stddef.h>

#include "kernels/kernels.h"

// The linker's names for what the plug-in calls and for what the C library has.
extern "C" {
void* __real_calloc(size_t count, size_t size);
void __real_free(void* pointer);
void* __wrap_calloc(size_t count, size_t size);
void __wrap_free(void* pointer);
const void* __wrap__ZN7kernels4bestEv();  // a reference, which C knows as an address
bool __wrap__ZN7kernels12shouldStreamEx(int64_t pixels);
}

static const kernels::Tables gSets = kernels::supported();
GovernedPlugin governedPlugin = {0, 0, 0, gSets.count, gSets.count - 1, false};

void* __wrap_calloc(size_t count, size_t size) {
  const bool isRefused = ++governedPlugin.uses == governedPlugin.failAt;
  void* block = isRefused ? nullptr : __real_calloc(count, size);
  if (block) ++governedPlugin.live;
  return block;
}

void __wrap_free(void* pointer) {
  if (pointer) --governedPlugin.live;
  __real_free(pointer);
}

const void* __wrap__ZN7kernels4bestEv() { return gSets.table[governedPlugin.set]; }
bool __wrap__ZN7kernels12shouldStreamEx(int64_t) { return governedPlugin.streams; }
