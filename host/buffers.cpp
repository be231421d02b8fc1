#include "host/buffers.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "host/host.h"

namespace host {

Buffer::Buffer(uint64_t size) {
  if (size == 0 || size > 0x7FFFFFFF) return;
  if (settings().guardPages) {
    mapGuarded(static_cast<size_t>(size));
  } else {
    bytes_ = static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size), 1));
  }
  if (bytes_) size_ = static_cast<size_t>(size);
}

Buffer::~Buffer() {
  if (mapping_) {
    munmap(mapping_, mappingSize_);
  } else {
    std::free(bytes_);
  }
}

void Buffer::mapGuarded(size_t size) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t usable = (size + page - 1) / page * page;
  void* mapping = mmap(nullptr, usable + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) return;
  auto* guard = static_cast<uint8_t*>(mapping) + usable;
  if (mprotect(guard, page, PROT_NONE) != 0) {
    munmap(mapping, usable + page);
    return;
  }
  mapping_ = mapping;
  mappingSize_ = usable + page;
  bytes_ = guard - size;
}

}  // namespace host
