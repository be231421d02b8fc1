// Exceptions and memory-block builders.

#include "frame/errors.h"

#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include "frame/held.h"
#include "frame/memory.h"
#include "frame/text.h"

namespace {

constexpr int64_t kLargestMemoryBlock = 0x7FFFFFFE;

REALstringStruct* buildMessage(const char* text, uint32_t encoding) {
  return text ? REALBuildUnicodeString(text, static_cast<int64_t>(strlen(text)), encoding) : nullptr;
}

}  // namespace

void RaiseException(const char* exceptionClass, REALstringStruct* message) {
  Held<REALobjectStruct> exception(REALnewInstance(exceptionClass));
  if (!exception) exception = Held<REALobjectStruct>(REALnewInstance("RuntimeException"));
  if (!exception) return;
  REALSetPropValueString(exception.get(), "Message", message);
  REALRaiseException(exception.get());
}

void RaiseException(const char* exceptionClass, const char* message, uint32_t encoding) {
  Held<REALstringStruct> text(buildMessage(message, encoding));
  RaiseException(exceptionClass, text.get());
}

void RaiseException(const char* exceptionClass, REALstringStruct* first, REALstringStruct* second,
                    REALstringStruct* third) {
  Held<REALstringStruct> start(REALAddStrings(first, second));
  Held<REALstringStruct> whole(REALAddStrings(start.get(), third));
  RaiseException(exceptionClass, whole.get());
}

void RaiseException(const char* exceptionClass, const char* first, const char* second, const char* third,
                    uint32_t encoding) {
  Held<REALstringStruct> one(buildMessage(first, encoding));
  Held<REALstringStruct> two(buildMessage(second, encoding));
  Held<REALstringStruct> three(buildMessage(third, encoding));
  RaiseException(exceptionClass, one.get(), two.get(), three.get());
}

void RaiseOutOfBoundsException(int64_t value, int64_t minimum, int64_t limit, const char* parameter,
                               const char* method) {
  if (!parameter) parameter = "?";
  if (!method) method = "?";
  const size_t size = strlen(parameter) + strlen(method) + 200;
  Scratch message(static_cast<int64_t>(size));
  if (!message) {
    RaiseException(kOutOfBoundsException, "Out of Bounds", kEncodingASCII);
    return;
  }
  char* text = reinterpret_cast<char*>(message.get());
  // The limit is exclusive. Unsigned arithmetic: the smallest limit wraps instead of overflowing.
  const auto last = static_cast<int64_t>(static_cast<uint64_t>(limit) - 1);
  snprintf(text, size,
           "Parameter %s to method %s is too %s. Range is %" PRId64 " to %" PRId64 ", but value is %" PRId64
           ".",
           parameter, method, value < minimum ? "small" : "big", minimum, last, value);
  RaiseException(kOutOfBoundsException, text, kEncodingASCII);
}

REALmemoryBlockStruct* REALNewMemoryBlock(int64_t size) {
  if (size < 0 || size > kLargestMemoryBlock) return nullptr;
  return REALNewMemoryBlockOriginal(static_cast<int32_t>(size));
}

REALmemoryBlockStruct* REALBuildMemoryblock(const void* bytes, int32_t length) {
  if (!bytes || length < 1) return nullptr;
  Held<REALmemoryBlockStruct> block(REALNewMemoryBlock(length));
  if (!block) {
    char message[200] = {};
    snprintf(message, sizeof message, "Failed to allocate a memoryblock with %" PRId64 " bytes in size.",
             int64_t{length});
    RaiseException(kOutOfMemoryException, message, kEncodingASCII);
    return nullptr;
  }
  void* target = REALMemoryBlockGetPtr(block.get());
  if (!target) return nullptr;
  memcpy(target, bytes, static_cast<size_t>(length));
  return block.release();
}

void DebugLog(REALstringStruct* text) {
  rbText line(text);
  fprintf(stderr, "%s\n", line.GetUTF8());
  fflush(stderr);
}
