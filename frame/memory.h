// The plug-in's own memory: every heap block of the plug-in comes from and goes back through here.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The largest block that can be asked for, in bytes.
constexpr int64_t kLargestAllocation = 0x7FFFFFFF;

// A zero-filled block, to be released with FreeMemoryNow. Null for a size of 0, below 0 or above
// kLargestAllocation, and when memory is lacking.
void* AllocateClearMemory(int64_t size);
// Resizes a block; null (and the old block stays) when memory is lacking.
void* ReallocateMemory(void* pointer, size_t size);
void FreeMemoryNow(void* pointer);  // null is allowed
void MoveMemory(void* to, const void* from, size_t size);
void FillMemory(void* pointer, size_t size, uint8_t value);
void ClearMemory(void* pointer, size_t size);

// Handles: blocks with a 32-bit size word in front of the data.
using MemoryHandle = void*;
// Data zero-filled; the size word stays 0 until the first resizeHandle. Null for a size below 0 or too large.
MemoryHandle allocateHandle(int64_t size);
// The handle at its new size; null when that can't be had (a size below 0 or from 0x7FFFFFF1 on also frees
// it).
MemoryHandle resizeHandle(MemoryHandle handle, int64_t size);
uint32_t getHandleSize(MemoryHandle handle);  // 0 for null
void* lockHandle(MemoryHandle handle);        // the data
void unlockHandle(MemoryHandle handle);       // nothing to do
void freeHandle(MemoryHandle handle);

// A heap block that is freed at the end of its scope; zero-filled. Empty when it can't be had.
class Scratch {
 public:
  Scratch() = default;
  explicit Scratch(int64_t size) : pointer_(static_cast<uint8_t*>(AllocateClearMemory(size))) {}
  ~Scratch() { FreeMemoryNow(pointer_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  // Releases the block held before and takes a new one; false (and empty) when it can't be had.
  bool allocate(int64_t size) {
    release();
    pointer_ = static_cast<uint8_t*>(AllocateClearMemory(size));
    return pointer_ != nullptr;
  }
  void release() {
    FreeMemoryNow(pointer_);
    pointer_ = nullptr;
  }
  uint8_t* get() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  uint8_t* pointer_ = nullptr;
};
