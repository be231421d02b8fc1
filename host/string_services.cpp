#include "host/strings.h"

#include <algorithm>
#include <cstring>

#include "host/encodings.h"
#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

String* wanted(const REALstringStruct* string, const char* purpose) { return find<String>(string, purpose); }

// ---- Services ----

void lockString(REALstringStruct* string) { retain(string); }
void unlockString(REALstringStruct* string) { release(string); }

REALstringStruct* buildString(const char* bytes, int32_t length) {
  if (length < 0 || (!bytes && length > 0)) return nullptr;
  return newString(bytes ? std::string(bytes, static_cast<size_t>(length)) : std::string(), kEncodingNone)
      .leak();
}

uint32_t encodingOf(REALstringStruct* string) { return stringEncoding(string); }

void setEncoding(REALstringStruct* string, uint32_t encoding) {
  if (auto* s = wanted(string, "set encoding")) s->encoding = encoding;
}

REALstringStruct* convertString(REALstringStruct* string, uint32_t encoding) {
  const auto* s = wanted(string, "convert");
  const auto converted = s ? convertText(s->bytes(), s->encoding, encoding) : std::nullopt;
  if (!converted) return nullptr;
  return newString(*converted, encoding == kEncodingNone ? s->encoding : encoding, s->terminated).leak();
}

RBBoolean stringData(REALstringStruct* string, uint32_t encoding, REALstringData* record) {
  const auto* s = wanted(string, "get string data");
  const auto converted = s && record ? convertText(s->bytes(), s->encoding, encoding) : std::nullopt;
  if (!converted) return 0;
  *record = giveStringData(*converted, encoding, s->terminated);
  return record->data != nullptr;
}

void disposeStringData(REALstringData* record) { takeStringDataBack(record); }

const char* cString(REALstringStruct* string) {
  const auto* s = wanted(string, "get bytes");
  return s ? reinterpret_cast<const char*>(s->buffer.data()) + 1 : nullptr;
}

int32_t lengthInBytes(REALstringStruct* string) {
  const auto* s = wanted(string, "LenB");
  return s ? static_cast<int32_t>(s->length) : 0;
}

// The bytes of the second in the encoding of the first, when they differ and can be converted.
std::string inEncodingOf(const String& first, const String& second) {
  return convertText(second.bytes(), second.encoding, first.encoding).value_or(second.bytes());
}

REALstringStruct* addStrings(REALstringStruct* first, REALstringStruct* second) {
  const auto* a = wanted(first, "add");
  const auto* b = wanted(second, "add");
  if (!a || !b) {
    const auto* only = a ? a : b;
    return only ? newString(only->bytes(), only->encoding).leak() : nullptr;
  }
  return newString(a->bytes() + inEncodingOf(*a, *b), a->encoding).leak();
}

// -1, 0 or 1 by the bytes; a null string is an empty one.
int32_t compareStrings(REALstringStruct* first, REALstringStruct* second) {
  const auto* a = wanted(first, "compare");
  const auto* b = wanted(second, "compare");
  const std::string right = a && b ? inEncodingOf(*a, *b) : stringBytes(second);
  const int order = stringBytes(first).compare(right);
  return (order > 0) - (order < 0);
}

// Every font shows UTF-8.
uint32_t fontEncoding(REALstringStruct*) { return kEncodingUTF8; }

}  // namespace

std::string String::describe() const {
  return "string of " + std::to_string(length) + " bytes \"" + bytes().substr(0, 40) + "\"";
}

Buffer textBuffer(size_t before, const std::string& bytes, uint32_t encoding, bool terminated) {
  const size_t terminator = encoding == kEncodingUTF32 ? 4 : encoding == kEncodingUTF16 ? 2 : 1;
  Buffer buffer(uint64_t{before} + bytes.size() + terminator);
  if (!buffer.data()) return buffer;
  uint8_t* end = std::copy(bytes.begin(), bytes.end(), buffer.data() + before);
  if (!terminated) std::fill_n(end, terminator, uint8_t{0x5A});
  return buffer;
}

StringRef newString(const std::string& bytes, uint32_t encoding, bool terminated) {
  auto string = std::make_unique<String>();
  string->buffer = textBuffer(1, bytes, encoding, terminated);
  if (!string->buffer.data()) return {};
  string->length = bytes.size();
  string->encoding = encoding;
  string->terminated = terminated;
  String* enrolled = enrollNew(std::move(string));
  enrolled->words->beforeBytes = enrolled->buffer.data();
  enrolled->words->count = static_cast<int32_t>(bytes.size());
  return StringRef::adopt(handleOf<REALstringStruct>(enrolled));
}

std::string stringBytes(const REALstringStruct* string) {
  const auto* s = wanted(string, "read");
  return s ? s->bytes() : std::string();
}

uint32_t stringEncoding(const REALstringStruct* string) {
  const auto* s = wanted(string, "get encoding");
  return s ? s->encoding : 0;
}

void addStringServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<buildString>("REALBuildString"),
                            entry<lockString>("REALLockString"),
                            entry<unlockString>("REALUnlockString"),
                            entry<addStrings>("RuntimeAddString"),
                            entry<compareStrings>("RuntimeStringCompare"),
                            entry<encodingOf>("REALGetStringEncoding"),
                            entry<setEncoding>("REALSetStringEncoding"),
                            entry<convertString>("REALConvertString"),
                            entry<stringData>("PluginGetStringData"),
                            entry<disposeStringData>("PluginDisposeStringData"),
                            entry<cString>("StringGetCString"),
                            entry<fontEncoding>("REALGetFontEncoding"),
                            entry<lengthInBytes>("LenB( s as string ) as integer", Giver::globalMethod),
                        });
}

}  // namespace host
