// Text in the host's encodings, and raw data.

#include "frame/text.h"

#include <string.h>
#include <wchar.h>

#include "frame/host_state.h"

namespace {

// Before these host versions strings are read in place, whatever services the host offers.
constexpr double kTextDataVersion = 2012.0;
constexpr double kRawDataVersion = 2013.0;
constexpr int64_t kLongestString = 0x7FFFFFFE;

// Every empty text points here; wide enough as terminator for any encoding.
constexpr uint32_t kEmptyText[2] = {};

// The string object of old hosts: the second word is the address one byte before the bytes, the fourth is the
// length.
struct OldString {
  uint32_t word0;
  const uint8_t* beforeBytes;
  uint32_t word2;
  int32_t length;
};

const OldString* asOldString(REALstringStruct* string) { return reinterpret_cast<const OldString*>(string); }

}  // namespace

// ---- rbText ----

rbText::rbText(REALstringStruct* string) { wrap(string); }

rbText::rbText(const rbText& other) { wrap(other.string_.get()); }

rbText& rbText::operator=(const rbText& other) {
  if (this != &other) {
    for (Conversion& conversion : conversions_) conversion.reset();
    string_ = Held<REALstringStruct>();
    wrap(other.string_.get());
  }
  return *this;
}

void rbText::wrap(REALstringStruct* string) {
  if (!string) return;
  if (REALGetStringEncoding(string) == kEncodingNone) {
    rbData raw(string);
    string_ = Held<REALstringStruct>(REALBuildUnicodeString(raw.data(), raw.length(), kEncodingWindows));
  } else {
    string_ = Held<REALstringStruct>::share(string);
  }
}

void rbText::Conversion::reset() {
  length = -1;
  data = nullptr;
  buffer.release();
  string = Held<REALstringStruct>();
  bytes.dispose();
}

const rbText::Conversion& rbText::converted(Encoding encoding) {
  Conversion& conversion = conversions_[encoding];
  if (conversion.length < 0) {
    conversion.length = 0;
    conversion.data = kEmptyText;
    if (string_) encoding == kUTF32 ? widen(conversion) : convert(encoding, conversion);
  }
  return conversion;
}

void rbText::convert(Encoding encoding, Conversion& to) {
  static constexpr uint32_t kHostCodes[] = {kEncodingUTF8, kEncodingASCII, kEncodingWindows,
                                            kEncodingMacRoman, kEncodingUTF16};
  const void* data;
  int32_t length;
  if (rbversion_rbversion < kTextDataVersion) {
    to.string = Held<REALstringStruct>(REALConvertString(string_.get(), kHostCodes[encoding]));
    if (!to.string) return;
    data = asOldString(to.string.get())->beforeBytes + 1;
    length = asOldString(to.string.get())->length;
  } else {
    if (!to.bytes.get(string_.get(), kHostCodes[encoding])) return;
    data = to.bytes.data();
    length = to.bytes.length();
  }
  if (!data || length <= 0) return;
  // The byte after the data shows whether the host terminated it. 16-bit text would need a second such byte,
  // which may not be readable, so it is always copied.
  const auto size = static_cast<size_t>(length);
  if (encoding == kUTF16 || static_cast<const uint8_t*>(data)[size] != 0) {
    if (!to.buffer.allocate(int64_t{length} + 4)) return;
    memcpy(to.buffer.get(), data, size);
    data = to.buffer.get();
  }
  to.data = data;
  to.length = encoding == kUTF16 ? length / 2 : length;
}

void rbText::widen(Conversion& to) {
  const Conversion& narrow = converted(kUTF16);
  if (narrow.length < 1) return;
  if (!to.buffer.allocate(int64_t{4} * narrow.length + 16)) return;
  const auto* units = static_cast<const uint16_t*>(narrow.data);
  auto* wide = reinterpret_cast<uint32_t*>(to.buffer.get());
  for (int32_t i = 0; i < narrow.length; ++i) wide[i] = units[i];
  to.data = wide;
  to.length = narrow.length;
}

void AddTextChain(rbText*& head, rbText* item) {
  if (!item) return;
  item->next_ = head;
  head = item;
}

void FreeTextChain(rbText*& head) {
  while (head) {
    rbText* item = head;
    head = item->next_;
    delete item;
  }
}

// ---- rbData ----

rbData::rbData(REALmemoryBlockStruct* block, int32_t offset, int32_t length) {
  if (!block) return;
  block_ = Held<REALmemoryBlockStruct>::share(block);
  auto* bytes = static_cast<uint8_t*>(REALMemoryBlockGetPtr(block));
  if (!bytes) return;
  data_ = bytes + offset;
  length_ = length == 0 ? REALMemoryBlockGetSize(block) : length;
}

rbData::rbData(REALstringStruct* string) {
  if (!string) return;
  if (rbversion_rbversion < kRawDataVersion) {
    string_ = Held<REALstringStruct>::share(string);
    data_ = const_cast<uint8_t*>(asOldString(string)->beforeBytes) + 1;
    length_ = asOldString(string)->length;
  } else if (bytes_.get(string, kEncodingNone)) {
    data_ = static_cast<uint8_t*>(bytes_.data());
    length_ = bytes_.length();
  }
}

void rbData::leak() {
  string_.forget();
  block_.forget();
  bytes_.forget();
}

void AddDataChain(rbData*& head, rbData* item) {
  if (!item) return;
  item->next_ = head;
  head = item;
}

rbData* RecylceData(rbData* head, REALstringStruct* string) {
  while (head && head->string_.get() != string) head = head->next_;
  return head;
}

rbData* RecylceData(rbData* head, REALmemoryBlockStruct* block) {
  while (head && head->block_.get() != block) head = head->next_;
  return head;
}

void FreeDataChain(rbData*& head) {
  while (head) {
    rbData* item = head;
    head = item->next_;
    delete item;
  }
}

// ---- Builders ----

namespace {

REALstringStruct* buildEncoded(const void* bytes, int64_t length, uint32_t encoding) {
  Held<REALstringStruct> string(originalREALBuildString(bytes, static_cast<int32_t>(length)));
  if (string) REALSetStringEncoding(string.get(), encoding);
  return string.release();
}

// Passes the host UTF-16 instead: characters above U+FFFF lose their upper bits, on purpose.
REALstringStruct* buildFromUTF32(const void* bytes, int64_t length) {
  constexpr int64_t kStackUnits = 200;
  const int64_t units = length / 4;
  uint16_t onStack[kStackUnits];
  Scratch onHeap;
  uint16_t* narrow = onStack;
  if (units >= kStackUnits) {
    if (!onHeap.allocate(2 * units + 4)) return nullptr;
    narrow = reinterpret_cast<uint16_t*>(onHeap.get());
  }
  for (int64_t i = 0; i < units; ++i) memcpy(narrow + i, static_cast<const uint8_t*>(bytes) + 4 * i, 2);
  return buildEncoded(narrow, 2 * units, kEncodingUTF16);
}

}  // namespace

REALstringStruct* REALBuildUnicodeString(const void* bytes, int64_t length, uint32_t encoding) {
  if (!bytes || length <= 0 || length > kLongestString) return nullptr;
  return encoding == kEncodingUTF32 ? buildFromUTF32(bytes, length) : buildEncoded(bytes, length, encoding);
}

REALstringStruct* CString2RBmax(const char* text, int32_t maximum, uint32_t encoding) {
  if (!text || maximum < 1) return nullptr;
  return REALBuildUnicodeString(text, static_cast<int64_t>(strnlen(text, static_cast<size_t>(maximum))),
                                encoding);
}

REALstringStruct* UnicodeCString2RB(const uint16_t* text) {
  int64_t units = 0;
  while (text && text[units]) ++units;
  return REALBuildUnicodeString(text, 2 * units, kEncodingUTF16);
}

REALstringStruct* UnicodeCString2RB(const wchar_t* text) {
  const int64_t units = text ? static_cast<int64_t>(wcslen(text)) : 0;
  return REALBuildUnicodeString(text, 4 * units, kEncodingUTF32);
}

uint32_t REALstringToOSType(REALstringStruct* string) {
  rbText text(string);
  const char* characters = text.GetMacRoman();
  const int32_t length = text.LengthMacRoman();
  uint32_t code = 0;
  for (int32_t i = 0; i < 4; ++i) code = code << 8 | static_cast<uint8_t>(i < length ? characters[i] : ' ');
  return code;
}

REALstringStruct* REALBuildOSTypeString(uint32_t code) {
  char characters[4];
  for (int i = 0; i < 4; ++i) characters[i] = static_cast<char>(code >> (24 - 8 * i));
  return REALBuildUnicodeString(characters, 4, kEncodingMacRoman);
}
