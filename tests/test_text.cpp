// Texts and data views over host strings, and strings built from bytes, on hosts of every age.

#include "frame/text.h"

#include <malloc.h>

#include "tests/linked.h"

namespace {

using namespace std::string_literals;

// ---- Texts ----

// A text in each encoding.
struct TextCase {
  std::string text;
  uint32_t encoding;
  std::string utf8, ascii, windows, macRoman, utf16;
};
const TextCase kTexts[] = {
    {"\xC3\xA9\xE2\x82\xACt", kEncodingUTF8, "\xC3\xA9\xE2\x82\xACt", "??t", "\xE9\x80t", "\x8E\xDBt",
     "\xE9\0\xAC\x20t\0"s},
    {"\x80 1", kEncodingWindows, "\xE2\x82\xAC 1", "? 1", "\x80 1", "\xDB 1", "\xAC\x20 \0001\0"s},
    {"\x7F\x80", kEncodingMacRoman, "\x7F\xC3\x84", "\x7F?", "\x7F\xC4", "\x7F\x80", "\x7F\0\xC4\0"s},
    {"a\0\xE9\0"s, kEncodingUTF16, "a\xC3\xA9", "a?", "a\xE9", "a\x8E", "a\0\xE9\0"s},
    {"a\xE9", kEncodingNone, "a\xC3\xA9", "a?", "a\xE9", "a\x8E", "a\0\xE9\0"s},
    {"a\0b"s, kEncodingUTF8, "a\0b"s, "a\0b"s, "a\0b"s, "a\0b"s, "a\0\0\0b\0"s},
    {"\xF0\x9D\x84\x9E", kEncodingUTF8, "\xF0\x9D\x84\x9E", "?", "?", "?", "\x34\xD8\x1E\xDD"},
    {"", kEncodingUTF8, "", "", "", "", ""},
};

// Units of two bytes as words: surrogates stay two units each.
std::string widened(const std::string& units, const std::string& upper = "\0\0"s) {
  std::string words;
  for (size_t i = 0; i < units.size(); i += 2) words += units.substr(i, 2) + upper;
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

using Text = LinkedTest;

// Each text with the service for data or without, and with a terminator of the host's or without.
void expectEveryEncoding(double version, bool hasService) {
  for (size_t i = 0; i < 2 * std::size(kTexts); ++i) {
    const TextCase& c = kTexts[i / 2];
    const bool isTerminated = i % 2 == 0;
    SCOPED_TRACE(c.utf8 + " at " + std::to_string(version) + (isTerminated ? "" : ", not terminated"));
    host::clearFaults();
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

// Around the versions that change how strings are read.
TEST_F(Text, EveryEncodingOnEveryHost) {
  for (bool hasService : {true, false}) {
    inFreshProcess([&] {
      for (double version : {0.0, 2011.99, 2012.0, 2012.99, 2013.0, 2013.03}) {
        beginAt(version);
        expectEveryEncoding(version, hasService);
      }
    });
  }
  rbText none(nullptr);
  expectForms(none, {});
}

TEST_F(Text, AFailedConversionIsAnEmptyText) {
  for (auto [version, service] : {std::pair(2011.0, "REALConvertString"), {2013.03, kData}}) {
    rbversion_rbversion = version;
    rbText text(host::newString("text").get());
    host::failAt(service, 1);
    EXPECT_EQ(text.LengthUTF32(), 0) << service;
    EXPECT_STREQ(text.GetUTF8(), "text") << "another encoding still converts";
  }
}

TEST_F(Text, CopiesWrapTheSameString) {
  rbText text(host::newString("first").get()), copy(text), &same = text;
  text = rbText(host::newString("second").get());
  text = same;
  EXPECT_EQ(text.GetUTF8() + " and "s + copy.GetUTF8(), "second and first");
}

TEST_F(Text, FourCharacterCodes) {
  const auto built = host::StringRef::adopt(REALBuildOSTypeString(0x50504943));
  EXPECT_EQ(host::stringBytes(built.get()), "PPIC");
  for (auto [text, code] : {std::pair("PPIC", 0x50504943u), {"PPICTURE", 0x50504943u}, {"PP", 0x50502020u}})
    EXPECT_EQ(REALstringToOSType(host::newString(text).get()), code) << text;
  EXPECT_EQ(REALstringToOSType(nullptr), 0x20202020u);
}

// ---- Data ----

// Without the service data is copied by the plug-in itself, with four zeros behind.
TEST_F(Text, DataWithoutTheService) {
  inFreshProcess([] {
    const auto string = host::newString("caf\xE9", kEncodingWindows);
    REALstringData record = {};
    for (const char* missing : {kLength, kData}) {
      host::clearFaults();
      host::removeEntryPoint(kData);
      host::removeEntryPoint(missing);
      if (missing == kData) host::failAt(kBytes, 1);
      EXPECT_FALSE(REALGetStringData(string.get(), kEncodingNone, &record)) << missing;
    }
    EXPECT_FALSE(REALGetStringData(nullptr, kEncodingNone, &record));
    EXPECT_FALSE(REALGetStringData(string.get(), 0x7777, &record)) << "the host can't make that";

    // The length that stands in the record before enlarges a copy of unconverted bytes, and only that.
    for (uint32_t wanted : {+kEncodingNone, +kEncodingWindows, +kEncodingMacRoman}) {
      record = {nullptr, 5000, 0};
      ASSERT_TRUE(REALGetStringData(string.get(), wanted, &record));
      EXPECT_EQ(record.encoding, wanted);
      EXPECT_EQ(record.length, 4);
      EXPECT_EQ(bytesAt(record.data, 8), (wanted == kEncodingMacRoman ? "caf\x8E" : "caf\xE9") + "\0\0\0\0"s);
      EXPECT_EQ(malloc_usable_size(record.data) >= 5004, wanted == kEncodingNone);
      REALDisposeStringData(&record);
    }
  });
}

TEST_F(Text, DataOfABlock) {
  const auto block = host::newMemoryBlock("0123456789", 10);
  const rbData part(block.get(), 3, 4), rest(block.get(), 3, 0);
  EXPECT_EQ(host::references(block.get()), 3);
  EXPECT_EQ(bytesAt(part.data(), 4), "3456");
  EXPECT_EQ(part.length(), 4);
  EXPECT_EQ(rest.length(), 10) << "a length of 0 is the whole size whatever the offset";
  host::failAt("memoryBlockGetPtr", 1);
  rbData unaddressed(block.get(), 0, 4);
  EXPECT_EQ(unaddressed.length(), 0) << "no bytes, no length";
  unaddressed.leak();
  host::release(block.get());  // as it no longer does
  EXPECT_EQ(rbData(static_cast<REALmemoryBlockStruct*>(nullptr)).length(), 0);
  EXPECT_EQ(rbData(static_cast<REALstringStruct*>(nullptr)).length(), 0);
}

TEST_F(Text, ChainsFindWhatTheyWrapAndAreFreedAtOnce) {
  rbversion_rbversion = 2012.0;  // where data holds the string itself
  const auto string = host::newString("a"), other = host::newString("a");
  const auto block = host::newMemoryBlock("b", 1);
  rbData *ofString = new rbData(string.get()), *ofBlock = new rbData(block.get()), *none = nullptr;
  rbData* data = nullptr;
  for (rbData* item : {ofString, ofBlock, none}) AddDataChain(data, item);
  EXPECT_EQ(RecylceData(data, string.get()), ofString);
  EXPECT_EQ(RecylceData(data, block.get()), ofBlock);
  EXPECT_EQ(RecylceData(data, other.get()), nullptr);
  FreeDataChain(data);
  rbText* texts = nullptr;
  for (rbText* item : {new rbText(string.get()), new rbText(string.get()), static_cast<rbText*>(nullptr)})
    AddTextChain(texts, item);
  FreeTextChain(texts);
  EXPECT_TRUE(!texts && !data);
}

// ---- Builders ----

// A string that was built, of which this is the only reference.
void expectBuilt(REALstringStruct* built, const std::string& bytes, uint32_t encoding) {
  const auto string = host::StringRef::adopt(built);
  EXPECT_EQ(host::stringBytes(string.get()), bytes);
  EXPECT_EQ(host::stringEncoding(string.get()), encoding) << bytes;
}

TEST_F(Text, StringsAreBuiltInTheirEncodingAndNoneOfNothing) {
  expectBuilt(REALBuildUnicodeString("\0\xFF", 2, kEncodingUTF8), "\0\xFF"s, kEncodingUTF8);
  // Upper halves go, and so does an unfinished unit. Short texts are narrowed on the stack, longer ones on
  // the heap.
  for (int units : {1, 198, 199, 200, 201, 5000}) {
    std::string narrow;
    for (int i = 0; i < 2 * units; ++i) narrow += static_cast<char>(77 * i + 1);
    expectBuilt(
        REALBuildUnicodeString((widened(narrow, "\1\0"s) + "xyz").data(), 4 * units + 3, kEncodingUTF32),
        narrow, kEncodingUTF16);
  }
  expectBuilt(CString2RBmax("text", 100, kEncodingASCII), "text", kEncodingASCII);
  expectBuilt(CString2RBmax("text", 2, kEncodingMacRoman), "te", kEncodingMacRoman);
  const uint16_t units[] = {'a', 0x20AC, 0};
  expectBuilt(UnicodeCString2RB(units), "a\0\xAC\x20"s, kEncodingUTF16);
  expectBuilt(UnicodeCString2RB(L"a\u20AC"), "a\0\xAC\x20"s, kEncodingUTF16);
  for (auto* nothing :
       {REALBuildUnicodeString("text", 0, kEncodingUTF32),
        REALBuildUnicodeString("text", 0x7FFFFFFF, kEncodingUTF32),
        REALBuildUnicodeString(nullptr, 4, kEncodingASCII), CString2RBmax(nullptr, 5, kEncodingASCII),
        CString2RBmax("text", 0, kEncodingASCII), UnicodeCString2RB(static_cast<const uint16_t*>(nullptr)),
        UnicodeCString2RB(static_cast<const wchar_t*>(nullptr))})
    EXPECT_EQ(nothing, nullptr);
  // To nothing the host adds in the encoding of the other string.
  const auto wide = host::newString("a\0\xE9\0"s, kEncodingUTF16),
             narrow = host::newString("b", kEncodingUTF8);
  expectBuilt(REALAddStrings(wide.get(), narrow.get()), "a\0\xE9\0b\0"s, kEncodingUTF16);
  expectBuilt(REALAddStrings(nullptr, wide.get()), "a\0\xE9\0"s, kEncodingUTF16);
  expectBuilt(REALAddStrings(narrow.get(), nullptr), "b", kEncodingUTF8);
  EXPECT_EQ(REALAddStrings(nullptr, nullptr), nullptr);
}

}  // namespace
