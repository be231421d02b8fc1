#include "host/buffers.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "host/host.h"

namespace host {
namespace {

constexpr size_t kSmallestSpare = size_t{1} << 16;
constexpr size_t kMostSpareBytes = size_t{1} << 29;

// The bytes of dead buffers, the latest first.
struct Spare {
  uint8_t* bytes;
  size_t size;
};
std::vector<Spare>& spares() {
  static auto& all = *new std::vector<Spare>;  // buffers may die while the program ends
  return all;
}

bool isSpared(size_t size) { return settings().recyclesBuffers && size >= kSmallestSpare; }

uint8_t* takeSpare(size_t size) {
  auto& all = spares();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Spare& spare) { return spare.size == size; });
  if (!isSpared(size) || found == all.end()) return nullptr;
  uint8_t* bytes = found->bytes;
  all.erase(found);
  return bytes;
}

void leaveSpare(uint8_t* bytes, size_t size) {
  auto& all = spares();
  all.insert(all.begin(), {bytes, size});
  size_t sum = 0;
  const auto tooMuch = std::find_if(all.begin(), all.end(), [&](const Spare& spare) {
    sum += spare.size;
    return sum > kMostSpareBytes;
  });
  std::for_each(tooMuch, all.end(), [](const Spare& spare) { std::free(spare.bytes); });
  all.erase(tooMuch, all.end());
}

}  // namespace

Buffer::Buffer(uint64_t size) {
  if (size == 0 || size > 0x7FFFFFFF) return;
  if (settings().guardPages) {
    mapGuarded(static_cast<size_t>(size));
  } else {
    bytes_ = takeSpare(static_cast<size_t>(size));
    isUsed_ = bytes_ != nullptr;
    if (!bytes_) bytes_ = static_cast<uint8_t*>(std::calloc(static_cast<size_t>(size), 1));
  }
  if (bytes_) size_ = static_cast<size_t>(size);
}

Buffer::~Buffer() {
  if (mapping_) {
    munmap(mapping_, mappingSize_);
  } else if (isSpared(size_)) {
    leaveSpare(bytes_, size_);
  } else {
    std::free(bytes_);
  }
}

void Buffer::dropSpares() {
  for (const Spare& spare : spares()) std::free(spare.bytes);
  spares().clear();
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
