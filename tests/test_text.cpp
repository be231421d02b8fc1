// Texts and data views over host strings, and strings built from bytes, on hosts of every age.

#include "frame/text.h"

#include <malloc.h>

#include "tests/linked.h"

namespace {

using namespace std::string_literals;

// A text in each encoding.
struct TextCase {
  std::string text;
  uint32_t encoding;
  std::string utf8, ascii, windows, macRoman, utf16;
};
const TextCase kTexts[] = {
    {"Hello", kEncodingASCII, "Hello", "Hello", "Hello", "Hello", "H\0e\0l\0l\0o\0"s},
    {"\xC3\xA9t", kEncodingUTF8, "\xC3\xA9t", "?t", "\xE9t", "\x8Et", "\xE9\0t\0"s},
    {"\x80 1", kEncodingWindows, "\xE2\x82\xAC 1", "? 1", "\x80 1", "\xDB 1", "\xAC\x20 \0001\0"s},
    {"\xDB", kEncodingMacRoman, "\xE2\x82\xAC", "?", "\x80", "\xDB", "\xAC\x20"},
    {"a\0\xE9\0"s, kEncodingUTF16, "a\xC3\xA9", "a?", "a\xE9", "a\x8E", "a\0\xE9\0"s},
    {"a\0\0\0\xE9\0\0\0"s, kEncodingUTF32, "a\xC3\xA9", "a?", "a\xE9", "a\x8E", "a\0\xE9\0"s},
    {"a\xE9", kEncodingNone, "a\xC3\xA9", "a?", "a\xE9", "a\x8E", "a\0\xE9\0"s},
    {"a\0b"s, kEncodingUTF8, "a\0b"s, "a\0b"s, "a\0b"s, "a\0b"s, "a\0\0\0b\0"s},
    {"\xF0\x9D\x84\x9E", kEncodingUTF8, "\xF0\x9D\x84\x9E", "?", "?", "?", "\x34\xD8\x1E\xDD"},
    {"", kEncodingUTF8, "", "", "", "", ""},
};

// Units of two bytes as words: surrogates stay two units each.
std::string widened(const std::string& units) {
  std::string words;
  for (size_t i = 0; i < units.size(); i += 2) words += units.substr(i, 2) + "\0\0"s;
  return words;
}

// Each form of a text, with its terminator.
void expectForms(rbText& text, const TextCase& c) {
  const auto expect = [&](auto get, auto getNil, auto length, const std::string& bytes) {
    const auto* units = (text.*get)();
    ASSERT_EQ(static_cast<size_t>((text.*length)()) * sizeof *units, bytes.size());
    EXPECT_EQ(bytesAt(units, bytes.size() + sizeof *units), bytes + std::string(sizeof *units, '\0'));
    EXPECT_EQ((text.*getNil)(), bytes.empty() ? nullptr : units);
  };
  using T = rbText;
  expect(&T::GetUTF8, &T::GetUTF8Nil, &T::LengthUTF8, c.utf8);
  expect(&T::GetNative, &T::GetUTF8Nil, &T::LengthUTF8, c.utf8);
  expect(&T::GetASCII, &T::GetASCIINil, &T::LengthASCII, c.ascii);
  expect(&T::GetWindows, &T::GetWindowsNil, &T::LengthWindows, c.windows);
  expect(&T::GetPassword, &T::GetWindowsNil, &T::LengthWindows, c.windows);
  expect(&T::GetMacRoman, &T::GetMacRomanNil, &T::LengthMacRoman, c.macRoman);
  expect(&T::GetUTF16, &T::GetUTF16Nil, &T::LengthUTF16, c.utf16);
  expect(&T::GetUTF32, &T::GetUTF32Nil, &T::LengthUTF32, widened(c.utf16));
  expect(&T::GetWChar, &T::GetWCharNil, &T::LengthWChar, widened(c.utf16));
}

const char kData[] = "PluginGetStringData", kBytes[] = "StringGetCString",
           kLength[] = "LenB( s as string ) as integer";

class Text : public LinkedTest {
 protected:
  // On hosts around the versions that change how strings are read, with the service for data or without.
  void expectEveryEncoding(bool hasService) {
    for (double version : {0.0, 2011.99, 2012.0, 2012.99, 2013.0, 2013.03}) {
      for (const TextCase& c : kTexts) {
        for (bool isTerminated : {true, false}) {
          SCOPED_TRACE(c.utf8 + " at " + std::to_string(version) + (isTerminated ? "" : ", not terminated"));
          beginAt(version);
          if (!hasService) host::removeEntryPoint(kData);
          auto string = host::newString(c.text, c.encoding, isTerminated);
          {
            const rbData data(string.get());
            EXPECT_EQ(bytesAt(data.data(), static_cast<size_t>(data.length())), c.text);
            EXPECT_EQ(host::uses(hasService ? kData : kBytes) > 0, version >= 2013.0);
          }
          rbText text(string.get());
          string = {};
          expectForms(text, c);
          EXPECT_EQ(host::uses("REALConvertString") > 0, version < 2012.0 || !hasService);
          const int uses = host::uses();
          expectForms(text, c);
          EXPECT_EQ(host::uses(), uses) << "each conversion is made once";
        }
      }
    }
  }
};

TEST_F(Text, EveryEncodingOnEveryHost) {
  expectEveryEncoding(true);
  rbText none(nullptr);
  host::clearFaults();
  expectForms(none, {});
  EXPECT_EQ(rbData(static_cast<REALstringStruct*>(nullptr)).length(), 0);
  EXPECT_EQ(host::uses(), 0);
}

TEST_F(Text, EveryEncodingWithoutTheServiceForData) {
  inFreshProcess([this] { expectEveryEncoding(false); });
}

// Without the service data is copied by the plug-in itself, with four zeros behind.
TEST_F(Text, DataWithoutTheService) {
  inFreshProcess([this] {
    const auto string = host::newString("caf\xE9", kEncodingWindows);
    REALstringData record = {};
    const auto expectNone = [&](REALstringStruct* of, std::initializer_list<const char*> missing) {
      for (uint32_t encoding : {+kEncodingNone, +kEncodingWindows, +kEncodingUTF8}) {
        host::clearFaults();
        for (const char* service : missing) host::removeEntryPoint(service);
        if (missing.size() == 1) host::failAt(kBytes, 1);
        EXPECT_FALSE(REALGetStringData(of, encoding, &record)) << encoding;
      }
    };
    expectNone(string.get(), {kData, kLength, kBytes});
    expectNone(string.get(), {kData, kLength});
    expectNone(nullptr, {kData});
    expectNone(string.get(), {kData});
    EXPECT_FALSE(REALGetStringData(string.get(), 0x7777, &record)) << "the host can't make that";
    EXPECT_EQ(record.data, nullptr);

    // The length that stands in the record before enlarges a copy of unconverted bytes, and only that.
    for (auto [wanted, standing, room] : {std::tuple(+kEncodingNone, 5000, 5004u),
                                          {+kEncodingNone, 2, 8u},
                                          {+kEncodingNone, INT32_MIN, 8u},
                                          {+kEncodingWindows, 5000, 8u},
                                          {+kEncodingUTF8, 5000, 9u}}) {
      record = {nullptr, standing, 0};
      ASSERT_TRUE(REALGetStringData(string.get(), wanted, &record));
      EXPECT_EQ(record.encoding, wanted);
      EXPECT_EQ(bytesAt(record.data, static_cast<size_t>(record.length) + 4),
                (wanted == kEncodingUTF8 ? "caf\xC3\xA9" : "caf\xE9") + "\0\0\0\0"s);
      EXPECT_GE(malloc_usable_size(record.data), room);
      EXPECT_LT(malloc_usable_size(record.data), room + 900);
      REALDisposeStringData(&record);
    }
    EXPECT_EQ(host::uses("PluginDisposeStringData"), 0) << "the host never gave these";

    // Once offered, the service is used, and releases what it gave.
    host::clearFaults();
    ASSERT_TRUE(REALGetStringData(string.get(), kEncodingNone, &record));
    EXPECT_EQ(host::held().stringData, 1);
    REALDisposeStringData(&record);
  });
}

TEST_F(Text, AFailedConversionIsAnEmptyText) {
  const auto string = host::newString("text");
  for (auto [version, service] : {std::pair(2011.0, "REALConvertString"), {2013.03, kData}}) {
    rbversion_rbversion = version;
    rbText text(string.get());
    host::failAt(service, 1);
    EXPECT_EQ(text.LengthUTF32(), 0) << service;
    EXPECT_FALSE(text.GetUTF16Nil()) << service;
    EXPECT_STREQ(text.GetUTF8(), "text") << "another encoding still converts";
  }
  host::failAt(kData, 1);
  EXPECT_EQ(rbData(string.get()).length(), 0);
}

TEST_F(Text, CopiesWrapTheSameString) {
  const auto first = host::newString("first"), second = host::newString("second");
  rbText text(first.get());
  text.GetUTF8();
  rbText copy(text);
  text = rbText(second.get());
  auto& same = text;
  text = same;
  EXPECT_STREQ(text.GetUTF8(), "second");
  EXPECT_STREQ(copy.GetUTF8(), "first");
  EXPECT_EQ(host::references(first.get()), 2);
}

TEST_F(Text, DataOfABlock) {
  const auto block = host::newMemoryBlock("0123456789", 10);
  const rbData whole(block.get()), part(block.get(), 3, 4), rest(block.get(), 3, 0);
  EXPECT_EQ(host::references(block.get()), 4);
  EXPECT_EQ(bytesAt(whole.data(), 10), "0123456789");
  EXPECT_EQ(whole.length(), 10);
  EXPECT_EQ(part.data(), whole.data() + 3);
  EXPECT_EQ(part.length(), 4);
  EXPECT_EQ(rest.length(), 10) << "a length of 0 is the whole size whatever the offset";
  EXPECT_EQ(rbData(static_cast<REALmemoryBlockStruct*>(nullptr)).length(), 0);
  host::failAt("memoryBlockGetPtr", 1);
  EXPECT_EQ(rbData(block.get(), 0, 4).length(), 0) << "no bytes, no length";
}

TEST_F(Text, LeakedDataReleasesNothing) {
  const auto block = host::newMemoryBlock("x", 1);
  const auto string = host::newString("x");
  rbData ofBlock(block.get()), ofString(string.get());
  REALstringData given = {ofString.data(), ofString.length(), kEncodingNone};
  ofBlock.leak();
  ofString.leak();
  host::release(block.get());
  REALDisposeStringData(&given);
}

TEST_F(Text, ChainsFindWhatTheyWrapAndAreFreedAtOnce) {
  rbversion_rbversion = 2012.0;  // where data holds the string itself
  const auto string = host::newString("a"), other = host::newString("a");
  const auto block = host::newMemoryBlock("b", 1);
  auto *ofString = new rbData(string.get()), *ofBlock = new rbData(block.get());
  rbData* data = nullptr;
  rbText* texts = nullptr;
  for (rbData* item : {ofString, ofBlock, static_cast<rbData*>(nullptr)}) AddDataChain(data, item);
  for (int items = 0; items < 2; ++items) AddTextChain(texts, new rbText(string.get()));
  AddTextChain(texts, nullptr);
  EXPECT_EQ(RecylceData(data, string.get()), ofString);
  EXPECT_EQ(RecylceData(data, block.get()), ofBlock);
  EXPECT_EQ(RecylceData(data, other.get()), nullptr);
  EXPECT_EQ(host::references(string.get()), 4);
  FreeTextChain(texts);
  FreeDataChain(data);
  EXPECT_TRUE(!texts && !data);
}

// ---- Builders ----

// The bytes of a string that was built, of which this is the only reference.
std::string built(REALstringStruct* string) {
  return host::stringBytes(host::StringRef::adopt(string).get());
}

TEST_F(Text, StringsAreBuiltInTheirEncoding) {
  for (const auto& [bytes, encoding, expected, builtEncoding] :
       {std::tuple("\xC3\xA9"s, +kEncodingUTF8, "\xC3\xA9"s, +kEncodingUTF8),
        {"\0\xFF"s, +kEncodingNone, "\0\xFF"s, +kEncodingNone},
        {"a\0\xAC\x20"s, +kEncodingUTF16, "a\0\xAC\x20"s, +kEncodingUTF16},
        {"a\0\0\0\xAC\x20\0\0"s, +kEncodingUTF32, "a\0\xAC\x20"s, +kEncodingUTF16},
        // Upper bits go, and so does an unfinished unit.
        {"\x1E\xD1\1\0xyz"s, +kEncodingUTF32, "\x1E\xD1"s, +kEncodingUTF16}}) {
    const auto string = host::StringRef::adopt(
        REALBuildUnicodeString(bytes.data(), static_cast<int64_t>(bytes.size()), encoding));
    EXPECT_EQ(host::stringBytes(string.get()), expected);
    EXPECT_EQ(host::stringEncoding(string.get()), builtEncoding) << expected;
  }
  // Short texts are narrowed on the stack, longer ones on the heap.
  for (int units : {1, 198, 199, 200, 201, 5000}) {
    std::string narrow;
    for (int i = 0; i < 2 * units; ++i) narrow += static_cast<char>(77 * i + 1);
    EXPECT_EQ(built(REALBuildUnicodeString(widened(narrow).data(), 4 * units, kEncodingUTF32)), narrow);
  }
  EXPECT_EQ(built(CString2RBmax("text", 100, kEncodingASCII)), "text");
  EXPECT_EQ(built(CString2RBmax("text", 2, kEncodingASCII)), "te");
  const uint16_t units[] = {'a', 0x20AC, 0};
  EXPECT_EQ(built(UnicodeCString2RB(units)), "a\0\xAC\x20"s);
  EXPECT_EQ(built(UnicodeCString2RB(L"a\u20AC")), "a\0\xAC\x20"s);
}

TEST_F(Text, NothingIsBuiltOfNothing) {
  for (uint32_t encoding : {+kEncodingASCII, +kEncodingUTF16, +kEncodingUTF32}) {
    EXPECT_EQ(REALBuildUnicodeString(nullptr, 4, encoding), nullptr);
    for (int64_t length : {int64_t{0}, int64_t{-1}, int64_t{0x7FFFFFFF}, int64_t{1} << 32, INT64_MIN})
      EXPECT_EQ(REALBuildUnicodeString("text", length, encoding), nullptr) << length;
  }
  EXPECT_EQ(CString2RBmax(nullptr, 5, kEncodingASCII), nullptr);
  EXPECT_EQ(CString2RBmax("text", 0, kEncodingASCII), nullptr);
  EXPECT_EQ(UnicodeCString2RB(static_cast<const uint16_t*>(nullptr)), nullptr);
  EXPECT_EQ(UnicodeCString2RB(static_cast<const wchar_t*>(nullptr)), nullptr);
  EXPECT_EQ(host::uses(), 0);
  host::failAt("REALBuildString", 1);
  EXPECT_EQ(REALBuildUnicodeString("text", 4, kEncodingASCII), nullptr);
}

TEST_F(Text, FourCharacterCodes) {
  EXPECT_EQ(built(REALBuildOSTypeString(0x50504943)), "PPIC");
  for (auto [text, code] : {std::pair("PPIC", 0x50504943u), {"PPICTURE", 0x50504943u}, {"PP", 0x50502020u}})
    EXPECT_EQ(REALstringToOSType(host::newString(text).get()), code) << text;
  EXPECT_EQ(REALstringToOSType(nullptr), 0x20202020u);
}

}  // namespace
