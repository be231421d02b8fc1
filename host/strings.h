// Host strings: bytes with an encoding code, counted references, conversion.
#pragma once

#include <string>
#include <utility>

#include "frame/host_interface.h"

namespace host {

void retain(REALstringStruct* string);
void release(REALstringStruct* string);
int references(const REALstringStruct* string);

// An owning reference to a host string.
class StringRef {
 public:
  StringRef() = default;
  static StringRef adopt(REALstringStruct* handle) {
    StringRef ref;
    ref.handle_ = handle;
    return ref;
  }
  StringRef(const StringRef& other) : handle_(other.handle_) {
    if (handle_) retain(handle_);
  }
  StringRef(StringRef&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  StringRef& operator=(StringRef other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~StringRef() {
    if (handle_) release(handle_);
  }
  REALstringStruct* get() const { return handle_; }
  REALstringStruct* leak() { return std::exchange(handle_, nullptr); }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  REALstringStruct* handle_ = nullptr;
};

// A new string with one reference. In memory its second word points one byte before its bytes and its fourth
// word is the byte length, as the plug-in expects of old hosts; a zero character follows the bytes unless
// `terminated` is false (then other bytes follow).
StringRef newString(const std::string& bytes, uint32_t encoding = kEncodingUTF8, bool terminated = true);
std::string stringBytes(const REALstringStruct* string);  // empty for null
uint32_t stringEncoding(const REALstringStruct* string);

}  // namespace host
