// The plug-in's heap: all of its allocations and releases go through these functions.
#pragma once

#include <stddef.h>
#include <stdint.h>

// The largest allowed allocation, in bytes.
constexpr int64_t kLargestAllocation = 0x7FFFFFFF;

// A zero-filled block; release it with FreeMemoryNow. Null for a size of 0, below 0 or above
// kLargestAllocation, and if memory runs out.
void* AllocateClearMemory(int64_t size);
// Resizes a block; null if memory runs out, and then the old block stays valid.
void* ReallocateMemory(void* pointer, size_t size);
void FreeMemoryNow(void* pointer);  // null is allowed
void MoveMemory(void* to, const void* from, size_t size);
void FillMemory(void* pointer, size_t size, uint8_t value);
void ClearMemory(void* pointer, size_t size);

// Handles: blocks with a 32-bit size word before the data.
using MemoryHandle = void*;
// Zero-filled data; the size word stays 0 until the first resizeHandle. Null for a size below 0 or too large.
MemoryHandle allocateHandle(int64_t size);
// Returns the resized handle, or null on failure. A size below 0 or from 0x7FFFFFF1 on also frees the old
// handle.
MemoryHandle resizeHandle(MemoryHandle handle, int64_t size);
uint32_t getHandleSize(MemoryHandle handle);  // 0 for null
void* lockHandle(MemoryHandle handle);        // the data
void unlockHandle(MemoryHandle handle);       // a no-op
void freeHandle(MemoryHandle handle);

// A zero-filled heap block that frees itself at the end of its scope. Empty if the allocation fails.
class Scratch {
 public:
  Scratch() = default;
  explicit Scratch(int64_t size) : pointer_(static_cast<uint8_t*>(AllocateClearMemory(size))) {}
  ~Scratch() { FreeMemoryNow(pointer_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  // Frees the previous block and allocates a new one; false (and empty) on failure.
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
