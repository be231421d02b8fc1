// Access to host strings and memory blocks as bytes, and strings built from bytes.
#pragma once

#include "frame/entry_points.h"
#include "frame/held.h"
#include "frame/memory.h"

// The bytes of a host string, released at the end of the scope.
class StringBytes {
 public:
  StringBytes() = default;
  ~StringBytes() noexcept(false) { dispose(); }
  StringBytes(const StringBytes&) = delete;
  StringBytes& operator=(const StringBytes&) = delete;

  // Call once per object. False if the host has no bytes for that string in that encoding.
  bool get(REALstringStruct* string, uint32_t encoding) {
    isTaken_ = REALGetStringData(string, encoding, &record_);
    return isTaken_;
  }
  void dispose() {
    const bool wasTaken = isTaken_;
    isTaken_ = false;
    if (wasTaken) REALDisposeStringData(&record_);
  }
  void forget() { isTaken_ = false; }
  void* data() const { return record_.data; }
  int32_t length() const { return record_.length; }

 private:
  REALstringData record_ = {};
  bool isTaken_ = false;
};

// One host string in any of six encodings. Each is converted on first use and cached; returned text is
// null-terminated and valid as long as the object lives. A null string, or a failed conversion, gives empty
// text. A string without an encoding is read as Windows Latin-1.
class rbText {
 public:
  explicit rbText(REALstringStruct* string);
  rbText(const rbText& other);  // wraps the same string; conversions are not shared
  rbText& operator=(const rbText& other);

  // Never null.
  const char* GetUTF8() { return bytes(kUTF8); }
  const char* GetASCII() { return bytes(kASCII); }
  const char* GetWindows() { return bytes(kWindows); }
  const char* GetMacRoman() { return bytes(kMacRoman); }
  const uint16_t* GetUTF16() { return static_cast<const uint16_t*>(converted(kUTF16).data); }
  // Surrogate pairs are not combined, on purpose: each half is a unit of its own.
  const uint32_t* GetUTF32() { return static_cast<const uint32_t*>(converted(kUTF32).data); }
  const char* GetNative() { return GetUTF8(); }
  const char* GetPassword() { return GetWindows(); }
  const wchar_t* GetWChar() { return static_cast<const wchar_t*>(converted(kUTF32).data); }

  // Null for an empty text.
  const char* GetUTF8Nil() { return LengthUTF8() < 1 ? nullptr : GetUTF8(); }
  const char* GetASCIINil() { return LengthASCII() < 1 ? nullptr : GetASCII(); }
  const char* GetWindowsNil() { return LengthWindows() < 1 ? nullptr : GetWindows(); }
  const char* GetMacRomanNil() { return LengthMacRoman() < 1 ? nullptr : GetMacRoman(); }
  const uint16_t* GetUTF16Nil() { return LengthUTF16() < 1 ? nullptr : GetUTF16(); }
  const uint32_t* GetUTF32Nil() { return LengthUTF32() < 1 ? nullptr : GetUTF32(); }
  const wchar_t* GetWCharNil() { return LengthWChar() < 1 ? nullptr : GetWChar(); }

  // In bytes for the 8-bit encodings, 16-bit units for UTF-16, 32-bit units for UTF-32; without terminator.
  int32_t LengthUTF8() { return converted(kUTF8).length; }
  int32_t LengthASCII() { return converted(kASCII).length; }
  int32_t LengthWindows() { return converted(kWindows).length; }
  int32_t LengthMacRoman() { return converted(kMacRoman).length; }
  int32_t LengthUTF16() { return converted(kUTF16).length; }
  int32_t LengthUTF32() { return converted(kUTF32).length; }
  int32_t LengthWChar() { return LengthUTF32(); }

  // Null if memory runs out.
  static void* operator new(size_t size) noexcept { return AllocateClearMemory(static_cast<int64_t>(size)); }
  static void operator delete(void* pointer) { FreeMemoryNow(pointer); }

 private:
  friend void AddTextChain(rbText*& head, rbText* item);
  friend void FreeTextChain(rbText*& head);

  enum Encoding { kUTF8, kASCII, kWindows, kMacRoman, kUTF16, kUTF32, kEncodings };

  // The text in one encoding and the owner of its memory.
  struct Conversion {
    int32_t length = -1;  // -1: not yet converted
    const void* data = nullptr;
    Held<REALstringStruct> string;  // hosts before 2012: the converted string
    StringBytes bytes;              // later hosts
    Scratch buffer;                 // the plug-in's own terminated copy

    void reset();
  };

  void wrap(REALstringStruct* string);
  const char* bytes(Encoding encoding) { return static_cast<const char*>(converted(encoding).data); }
  const Conversion& converted(Encoding encoding);
  void convert(Encoding encoding, Conversion& to);
  void widen(Conversion& to);

  Held<REALstringStruct> string_;
  Conversion conversions_[kEncodings];
  rbText* next_ = nullptr;
};

inline const char* GetUTF8(rbText& text) { return text.GetUTF8(); }
inline const char* GetASCII(rbText& text) { return text.GetASCII(); }
inline const char* GetWindows(rbText& text) { return text.GetWindows(); }
inline const char* GetMacRoman(rbText& text) { return text.GetMacRoman(); }
inline const uint16_t* GetUTF16(rbText& text) { return text.GetUTF16(); }
inline const uint32_t* GetUTF32(rbText& text) { return text.GetUTF32(); }

// Linked lists, so that a function can free several texts at once. Create items with `new`.
void AddTextChain(rbText*& head, rbText* item);  // at the front
void FreeTextChain(rbText*& head);               // deletes every element; head is null afterwards

// The raw bytes of a host string or memory block; holds a reference as long as the object lives.
class rbData {
 public:
  // The block's bytes from an offset (not checked against its size). A length of 0 means its whole size.
  explicit rbData(REALmemoryBlockStruct* block, int32_t offset = 0, int32_t length = 0);
  // The string's own bytes; empty for a null string and on failure.
  explicit rbData(REALstringStruct* string);
  rbData(const rbData&) = delete;
  rbData& operator=(const rbData&) = delete;

  uint8_t* data() const { return data_; }  // null when there is none
  int32_t length() const { return length_; }
  // Drops what it holds without releasing it.
  void leak();

  static void* operator new(size_t size) noexcept { return AllocateClearMemory(static_cast<int64_t>(size)); }
  static void operator delete(void* pointer) { FreeMemoryNow(pointer); }

 private:
  friend void AddDataChain(rbData*& head, rbData* item);
  friend rbData* RecylceData(rbData* head, REALstringStruct* string);
  friend rbData* RecylceData(rbData* head, REALmemoryBlockStruct* block);
  friend void FreeDataChain(rbData*& head);

  Held<REALstringStruct> string_;
  Held<REALmemoryBlockStruct> block_;
  StringBytes bytes_;
  uint8_t* data_ = nullptr;
  int32_t length_ = 0;
  rbData* next_ = nullptr;
};

void AddDataChain(rbData*& head, rbData* item);  // at the front
// The first element that wraps exactly this string or block, or null.
rbData* RecylceData(rbData* head, REALstringStruct* string);
rbData* RecylceData(rbData* head, REALmemoryBlockStruct* block);
void FreeDataChain(rbData*& head);

// A new host string from bytes in an encoding. Null for null bytes and for a length of 0, below 0 or above
// 0x7FFFFFFE. UTF-32 is passed to the host as UTF-16, each unit truncated to its low 16 bits on purpose.
REALstringStruct* REALBuildUnicodeString(const void* bytes, int64_t length, uint32_t encoding);
// From null-terminated text: at most `maximum` bytes of it, or all of it. Null for null or empty text.
REALstringStruct* CString2RBmax(const char* text, int32_t maximum, uint32_t encoding);
REALstringStruct* UnicodeCString2RB(const uint16_t* text);
REALstringStruct* UnicodeCString2RB(const wchar_t* text);

// Four-character codes with the first character in the highest byte. Shorter text is padded with spaces.
uint32_t REALstringToOSType(REALstringStruct* string);
REALstringStruct* REALBuildOSTypeString(uint32_t code);
