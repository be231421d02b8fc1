#include "zvr/language/arguments.h"

#include <new>

#include "zvr/files/files.h"
#include "zvr/language/original.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {

Bytes readBytes(const std::string& path) {
  Bytes bytes = readFile(path);
  if (bytes.empty()) throw Failure(path + ": the file is empty");
  return bytes;
}

host::Value valueOfBytes(const Bytes& bytes, host::Type type) {
  if (type == host::Type::string) {
    host::StringRef string = host::newString(std::string(bytes.begin(), bytes.end()), kEncodingNone);
    if (!string) throw std::bad_alloc();
    return string;
  }
  host::MemoryBlockRef block = host::newMemoryBlock(bytes.data(), bytes.size());
  if (!block) throw std::bad_alloc();
  return block;
}

host::Value valueOfFile(const std::string& path, host::Type type, const PictureOptions& options,
                        bool asOnHost) {
  if (type != host::Type::picture) return valueOfBytes(readBytes(path), type);
  const Image image = loadImage(path, options.upright);
  const Transparent road = roadOf(options, asOnHost);
  if (image.hasAlpha && road == Transparent::beside && options.alpha == Alpha::keep)
    terminal::note(path +
                   ": its transparency plays no part; --alpha premultiplied sends it through the library");
  return toPicture(image, road);
}

Bytes bytesOf(const host::Value& value) {
  const auto* block = std::get_if<host::MemoryBlockRef>(&value);
  if (!block || !*block) return {};
  const uint8_t* bytes = host::memoryBlockBytes(block->get());
  return {bytes, bytes + host::memoryBlockSize(block->get())};
}

}  // namespace zvr
