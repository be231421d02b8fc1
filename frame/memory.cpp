// Heap blocks and handles.

#include "frame/memory.h"

#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t kHandleHeader = 4;
constexpr int64_t kHandleLimit = 0x7FFFFFF1;

uint32_t& sizeWord(MemoryHandle handle) { return *static_cast<uint32_t*>(handle); }

}  // namespace

void* AllocateClearMemory(int64_t size) {
  if (size <= 0 || size > kLargestAllocation) return nullptr;
  return calloc(1, static_cast<size_t>(size));
}

void* ReallocateMemory(void* pointer, size_t size) { return realloc(pointer, size); }

void FreeMemoryNow(void* pointer) { free(pointer); }

void MoveMemory(void* to, const void* from, size_t size) { memmove(to, from, size); }

void FillMemory(void* pointer, size_t size, uint8_t value) { memset(pointer, value, size); }

void ClearMemory(void* pointer, size_t size) { memset(pointer, 0, size); }

MemoryHandle allocateHandle(int64_t size) {
  if (size < 0 || size > kLargestAllocation) return nullptr;
  // The size word stays 0, on purpose: only resizeHandle writes it.
  return calloc(1, static_cast<size_t>(size) + kHandleHeader);
}

MemoryHandle resizeHandle(MemoryHandle handle, int64_t size) {
  if (size < 0 || size >= kHandleLimit) {
    freeHandle(handle);
    return nullptr;
  }
  MemoryHandle resized = ReallocateMemory(handle, static_cast<size_t>(size) + kHandleHeader);
  if (resized) sizeWord(resized) = static_cast<uint32_t>(size);
  return resized;
}

uint32_t getHandleSize(MemoryHandle handle) { return handle ? sizeWord(handle) : 0; }

void* lockHandle(MemoryHandle handle) { return static_cast<uint8_t*>(handle) + kHandleHeader; }

void unlockHandle(MemoryHandle) {}

void freeHandle(MemoryHandle handle) { FreeMemoryNow(handle); }
