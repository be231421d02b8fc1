// Memory that the plug-in may touch through the host: plain, or ending at a page that may not be touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

namespace host {

class Buffer {
 public:
  Buffer() = default;
  // Zero-filled bytes (with Settings::recyclesBuffers perhaps used ones); without any (data() null) when
  // memory runs out or the size is 0 or past 31 bits. With Settings::guardPages the last byte lies right
  // before a page that may not be touched.
  explicit Buffer(uint64_t size);
  Buffer(Buffer&& other) noexcept { *this = std::move(other); }
  Buffer& operator=(Buffer&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    std::swap(isUsed_, other.isUsed_);
    std::swap(mapping_, other.mapping_);
    std::swap(mappingSize_, other.mappingSize_);
    return *this;
  }
  ~Buffer();

  uint8_t* data() const { return bytes_; }
  size_t size() const { return size_; }
  // Whether the bytes are those of an earlier buffer, contents included.
  bool isUsed() const { return isUsed_; }
  // Frees what dead buffers left for others.
  static void dropSpares();

 private:
  void mapGuarded(size_t size);

  uint8_t* bytes_ = nullptr;
  size_t size_ = 0;
  bool isUsed_ = false;
  void* mapping_ = nullptr;  // null when the bytes come from the heap
  size_t mappingSize_ = 0;
};

}  // namespace host
