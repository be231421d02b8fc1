#include "tests/plugin_memory.h"

#include <stddef.h>

// The linker's names for what the plug-in calls and for what the C library has.
extern "C" {
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* pointer, size_t size);
void __real_free(void* pointer);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* pointer, size_t size);
void __wrap_free(void* pointer);
}

namespace {

PluginMemory memory;
bool isRefused() { return ++memory.uses == memory.failAt; }

}  // namespace

__attribute__((visibility("default"))) PluginMemory* pluginMemory() { return &memory; }

void* __wrap_calloc(size_t count, size_t size) {
  void* block = isRefused() ? nullptr : __real_calloc(count, size);
  if (block) ++memory.live;
  return block;
}

void* __wrap_realloc(void* pointer, size_t size) {
  void* block = isRefused() ? nullptr : __real_realloc(pointer, size);
  if (block && !pointer) ++memory.live;
  return block;
}

void __wrap_free(void* pointer) {
  if (pointer) --memory.live;
  __real_free(pointer);
}
