#include "tests/plugin_memory.h"

#include <stddef.h>

// The linker's names for what the plug-in calls and for what the C library has.
extern "C" {
void* __real_calloc(size_t count, size_t size);
void __real_free(void* pointer);
void* __wrap_calloc(size_t count, size_t size);
void __wrap_free(void* pointer);
}

PluginMemory pluginMemory;

void* __wrap_calloc(size_t count, size_t size) {
  const bool isRefused = ++pluginMemory.uses == pluginMemory.failAt;
  void* block = isRefused ? nullptr : __real_calloc(count, size);
  if (block) ++pluginMemory.live;
  return block;
}

void __wrap_free(void* pointer) {
  if (pointer) --pluginMemory.live;
  __real_free(pointer);
}
