// Texts and data views over host strings, and strings built from bytes, on hosts of every age.

#include "frame/text.h"

#include <cstring>

#include "tests/linked.h"

namespace {

// Little-endian units as bytes.
template <typename Unit>
std::string bytesOf(const std::basic_string<Unit>& units) {
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(Unit)};
}

// Hosts around the versions that change how strings are read.
const double kVersions[] = {0, 2011.99, 2012.0, 2012.99, 2013.0, 2013.03};

using Text = LinkedTest;

// ---- rbText ----

struct TextCase {
  const char* name;
  std::string bytes;
  uint32_t encoding;
  std::string utf8, ascii, windows, macRoman;
  std::u16string utf16;
};

const TextCase kTexts[] = {
    {"plain", "Hello", kEncodingASCII, "Hello", "Hello", "Hello", "Hello", u"Hello"},
    {"accent", "\xC3\xA9t\xC3\xA9", kEncodingUTF8, "\xC3\xA9t\xC3\xA9", "?t?", "\xE9t\xE9", "\x8Et\x8E",
     u"\u00E9t\u00E9"},
    {"Windows", "\x80 1", kEncodingWindows, "\xE2\x82\xAC 1", "? 1", "\x80 1", "\xDB 1", u"\u20AC 1"},
    {"Mac", "\xDB", kEncodingMacRoman, "\xE2\x82\xAC", "?", "\x80", "\xDB", u"\u20AC"},
    {"UTF-16", bytesOf(std::u16string(u"a\u00E9")), kEncodingUTF16, "a\xC3\xA9", "a?", "a\xE9", "a\x8E",
     u"a\u00E9"},
    {"UTF-32", bytesOf(std::u32string(U"a\u00E9")), kEncodingUTF32, "a\xC3\xA9", "a?", "a\xE9", "a\x8E",
     u"a\u00E9"},
    {"no encoding: Latin-1", "caf\xE9", kEncodingNone, "caf\xC3\xA9", "caf?", "caf\xE9", "caf\x8E",
     u"caf\u00E9"},
    {"zeros inside", std::string("a\0b", 3), kEncodingUTF8, std::string("a\0b", 3), std::string("a\0b", 3),
     std::string("a\0b", 3), std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    {"above U+FFFF", "\xF0\x9D\x84\x9E", kEncodingUTF8, "\xF0\x9D\x84\x9E", "?", "?", "?", u"\xD834\xDD1E"},
    {"empty", "", kEncodingUTF8, "", "", "", "", u""},
};

// The forms of bytes; the others are looked at one by one.
const struct Form {
  const char* (rbText::*get)();
  const char* (rbText::*getNil)();
  int32_t (rbText::*length)();
  std::string TextCase::*expected;
} kForms[] = {
    {&rbText::GetUTF8, &rbText::GetUTF8Nil, &rbText::LengthUTF8, &TextCase::utf8},
    {&rbText::GetASCII, &rbText::GetASCIINil, &rbText::LengthASCII, &TextCase::ascii},
    {&rbText::GetWindows, &rbText::GetWindowsNil, &rbText::LengthWindows, &TextCase::windows},
    {&rbText::GetMacRoman, &rbText::GetMacRomanNil, &rbText::LengthMacRoman, &TextCase::macRoman},
};

TEST_F(Text, EveryEncodingOnEveryHost) {
  for (double version : kVersions) {
    for (bool hostTerminates : {true, false}) {
      for (const TextCase& c : kTexts) {
        SCOPED_TRACE(std::string(c.name) + " at " + std::to_string(version) +
                     (hostTerminates ? "" : ", not terminated"));
        beginAt(version);
        const auto string = host::newString(c.bytes, c.encoding, hostTerminates);
        rbText text(string.get());
        for (const Form& form : kForms) {
          EXPECT_EQ(std::string((text.*form.get)(), static_cast<size_t>((text.*form.length)()) + 1),
                    c.*form.expected + '\0');
          EXPECT_EQ((text.*form.getNil)(), c.bytes.empty() ? nullptr : (text.*form.get)());
        }
        ASSERT_EQ(text.LengthUTF16(), static_cast<int32_t>(c.utf16.size()));
        EXPECT_EQ(std::memcmp(text.GetUTF16(), c.utf16.c_str(), 2 * c.utf16.size() + 2), 0);
        // Surrogates stay two units each.
        ASSERT_EQ(text.LengthUTF32(), static_cast<int32_t>(c.utf16.size()));
        const std::u32string wide(c.utf16.begin(), c.utf16.end());
        EXPECT_EQ(std::memcmp(text.GetUTF32(), wide.c_str(), 4 * wide.size() + 4), 0);
        EXPECT_EQ(text.LengthWChar(), text.LengthUTF32());
        EXPECT_EQ(static_cast<const void*>(text.GetWChar()), text.GetUTF32());
        EXPECT_EQ(text.GetNative(), text.GetUTF8());
        EXPECT_EQ(text.GetPassword(), text.GetWindows());

        EXPECT_EQ(text.GetUTF16Nil(), c.bytes.empty() ? nullptr : text.GetUTF16());
        EXPECT_EQ(text.GetUTF32Nil(), c.bytes.empty() ? nullptr : text.GetUTF32());
        EXPECT_EQ(text.GetWCharNil(), c.bytes.empty() ? nullptr : text.GetWChar());
      }
      EXPECT_EQ(host::held(), host::Ledger()) << version << "\n" << host::describeHeld();
    }
  }
}

TEST_F(Text, NullIsEmptyAndAsksNobody) {
  rbText text(nullptr);
  for (const Form& form : kForms) {
    EXPECT_STREQ((text.*form.get)(), "");
    EXPECT_EQ((text.*form.getNil)(), nullptr);
    EXPECT_EQ((text.*form.length)(), 0);
  }
  EXPECT_EQ(text.GetUTF16()[0], 0);
  EXPECT_EQ(text.GetUTF32()[0], 0u);
  EXPECT_EQ(text.LengthUTF16() + text.LengthUTF32(), 0);
  EXPECT_EQ(host::uses(), 0);
}

TEST_F(Text, ConvertsOnceAndKeepsTheStringAlive) {
  for (double version : kVersions) {
    beginAt(version);
    auto string = host::newString("caf\xC3\xA9");
    REALstringStruct* handle = string.get();
    rbText text(handle);
    string = {};
    EXPECT_EQ(host::references(handle), 1);
    const char* first = text.GetWindows();
    EXPECT_STREQ(first, "caf\xE9");
    const int uses = host::uses();
    EXPECT_EQ(text.GetWindows(), first);
    EXPECT_EQ(text.LengthWindows(), 4);
    EXPECT_EQ(host::uses(), uses) << version;
  }
}

TEST_F(Text, AFailedConversionIsAnEmptyText) {
  for (auto [version, service] :
       {std::pair(2011.0, "REALConvertString"), std::pair(2013.03, "PluginGetStringData")}) {
    beginAt(version);
    const auto string = host::newString("text");
    rbText text(string.get());
    host::failAt(service, 1);
    EXPECT_FALSE(text.GetUTF16Nil()) << service;
    EXPECT_EQ(text.LengthUTF32(), 0) << service;
    EXPECT_STREQ(text.GetUTF8(), "text") << "another encoding still converts";
  }
}

TEST_F(Text, CopiesWrapTheSameString) {
  const auto first = host::newString("first"), second = host::newString("second");
  rbText text(first.get());
  text.GetUTF8();
  rbText copy(text);
  EXPECT_EQ(host::references(first.get()), 3);
  EXPECT_NE(copy.GetUTF16(), text.GetUTF16());
  text = rbText(second.get());
  EXPECT_STREQ(text.GetUTF8(), "second");
  EXPECT_STREQ(copy.GetUTF8(), "first");
  EXPECT_EQ(host::references(first.get()), 2);
  auto& same = text;
  text = same;
  EXPECT_STREQ(text.GetUTF8(), "second");
}

TEST_F(Text, ChainsAreFreedAtOnce) {
  const auto string = host::newString("link");
  rbText* head = nullptr;
  for (int i = 0; i < 3; ++i) {
    AddTextChain(head, new rbText(string.get()));
    EXPECT_STREQ(GetUTF8(*head), "link");
  }
  AddTextChain(head, nullptr);
  EXPECT_EQ(host::references(string.get()), 4);
  FreeTextChain(head);
  EXPECT_EQ(head, nullptr);
  EXPECT_EQ(host::references(string.get()), 1);
}

// ---- rbData ----

TEST_F(Text, DataOfAStringIsItsOwnBytes) {
  for (double version : kVersions) {
    SCOPED_TRACE(version);
    beginAt(version);
    const std::string bytes("\0raw\xFF", 5);
    for (uint32_t encoding : {+kEncodingNone, +kEncodingUTF8, +kEncodingWindows}) {
      const auto string = host::newString(bytes, encoding, false);
      const rbData data(string.get());
      ASSERT_EQ(data.length(), 5);
      EXPECT_EQ(std::memcmp(data.data(), bytes.data(), 5), 0);
    }
    EXPECT_EQ(host::uses("PluginGetStringData") > 0, version >= 2013.0);
    const rbData none(static_cast<REALstringStruct*>(nullptr));
    EXPECT_EQ(none.length(), 0);
    EXPECT_EQ(none.data(), nullptr);
  }
  const auto string = host::newString("text");
  host::failAt("PluginGetStringData", 1);
  EXPECT_EQ(rbData(string.get()).length(), 0);
}

TEST_F(Text, DataOfABlock) {
  const auto block = host::newMemoryBlock("0123456789", 10);
  {
    const rbData whole(block.get()), part(block.get(), 3, 4), rest(block.get(), 3, 0);
    EXPECT_EQ(host::references(block.get()), 4);
    EXPECT_EQ(whole.length(), 10);
    EXPECT_EQ(part.length(), 4);
    EXPECT_EQ(rest.length(), 10) << "a length of 0 is the whole size whatever the offset";
    EXPECT_EQ(part.data(), host::memoryBlockBytes(block.get()) + 3);
  }
  EXPECT_EQ(host::references(block.get()), 1);
  EXPECT_EQ(rbData(static_cast<REALmemoryBlockStruct*>(nullptr)).length(), 0);
  host::failAt("memoryBlockGetPtr", 1);
  EXPECT_EQ(rbData(block.get(), 0, 4).length(), 0) << "no bytes, no length";
}

TEST_F(Text, LeakedDataReleasesNothing) {
  const auto block = host::newMemoryBlock("x", 1);
  rbData(block.get()).leak();
  EXPECT_EQ(host::references(block.get()), 2);
  host::release(block.get());

  const auto string = host::newString("x");
  rbData data(string.get());
  REALstringData given = {data.data(), data.length(), kEncodingNone};
  data.leak();
  EXPECT_EQ(host::held().stringData, 1);
  REALDisposeStringData(&given);
}

TEST_F(Text, DataChainsFindWhatTheyWrap) {
  beginAt(2012.0);  // where data holds the string itself
  const auto string = host::newString("a"), other = host::newString("a");
  const auto block = host::newMemoryBlock("b", 1);
  rbData* head = nullptr;
  auto* ofString = new rbData(string.get());
  auto* ofBlock = new rbData(block.get());
  AddDataChain(head, ofString);
  AddDataChain(head, ofBlock);
  EXPECT_EQ(head, ofBlock);
  EXPECT_EQ(RecylceData(head, string.get()), ofString);
  EXPECT_EQ(RecylceData(head, block.get()), ofBlock);
  EXPECT_EQ(RecylceData(head, other.get()), nullptr);
  FreeDataChain(head);
  EXPECT_EQ(head, nullptr);
  EXPECT_EQ(host::references(string.get()), 1);
}

// ---- Builders ----

TEST_F(Text, StringsAreBuiltInTheirEncoding) {
  const std::string utf16 = bytesOf(std::u16string(u"a\u20AC")), zero("\0\xFF", 2);
  const struct {
    const char* name;
    std::string bytes;
    uint32_t encoding;
    std::string builtBytes;
    uint32_t builtEncoding;
  } cases[] = {
      {"UTF-8", "\xC3\xA9", kEncodingUTF8, "\xC3\xA9", kEncodingUTF8},
      {"none", zero, kEncodingNone, zero, kEncodingNone},
      {"UTF-16", utf16, kEncodingUTF16, utf16, kEncodingUTF16},
      {"UTF-32 becomes UTF-16", bytesOf(std::u32string(U"a\u20AC")), kEncodingUTF32, utf16, kEncodingUTF16},
      {"above U+FFFF the upper bits go", bytesOf(std::u32string(U"\U0001D11E")), kEncodingUTF32,
       bytesOf(std::u16string(1, u'\xD11E')), kEncodingUTF16},
      {"an unfinished unit goes", bytesOf(std::u32string(U"a")) + "xyz", kEncodingUTF32,
       bytesOf(std::u16string(u"a")), kEncodingUTF16},
  };
  for (const auto& c : cases) {
    const auto built = host::StringRef::adopt(
        REALBuildUnicodeString(c.bytes.data(), static_cast<int64_t>(c.bytes.size()), c.encoding));
    EXPECT_EQ(host::stringBytes(built.get()), c.builtBytes) << c.name;
    EXPECT_EQ(host::stringEncoding(built.get()), c.builtEncoding) << c.name;
  }
}

// Short texts are narrowed on the stack, longer ones on the heap.
TEST_F(Text, NarrowingAtTheEdgeOfTheStackBuffer) {
  for (size_t units : {1u, 198u, 199u, 200u, 201u, 5000u}) {
    std::u32string wide;
    std::u16string narrow;
    for (size_t i = 0; i < units; ++i) {
      wide += static_cast<char32_t>(i * 77 + 1);
      narrow += static_cast<char16_t>(i * 77 + 1);
    }
    const auto built = host::StringRef::adopt(
        REALBuildUnicodeString(wide.data(), static_cast<int64_t>(4 * units), kEncodingUTF32));
    EXPECT_EQ(host::stringBytes(built.get()), bytesOf(narrow)) << units;
  }
}

TEST_F(Text, NothingIsBuiltOfNothing) {
  const uint32_t encodings[] = {kEncodingASCII, kEncodingUTF16, kEncodingUTF32};
  for (uint32_t encoding : encodings) {
    EXPECT_EQ(REALBuildUnicodeString(nullptr, 4, encoding), nullptr);
    for (int64_t length : {int64_t{0}, int64_t{-1}, int64_t{0x7FFFFFFF}, int64_t{1} << 32, INT64_MIN})
      EXPECT_EQ(REALBuildUnicodeString("text", length, encoding), nullptr) << length;
  }
  EXPECT_EQ(host::uses(), 0);
  EXPECT_EQ(CString2RBmax(nullptr, 5, kEncodingASCII), nullptr);
  EXPECT_EQ(CString2RBmax("text", 0, kEncodingASCII), nullptr);
  EXPECT_EQ(UnicodeCString2RB(static_cast<const uint16_t*>(nullptr)), nullptr);
  EXPECT_EQ(UnicodeCString2RB(static_cast<const wchar_t*>(nullptr)), nullptr);
  host::failAt("REALBuildString", 1);
  EXPECT_EQ(REALBuildUnicodeString("text", 4, kEncodingASCII), nullptr);
}

TEST_F(Text, TerminatedTextsAndFourCharacterCodes) {
  const auto built = [](REALstringStruct* string) {
    const auto held = host::StringRef::adopt(string);
    return host::stringBytes(held.get());
  };
  EXPECT_EQ(built(CString2RBmax("text", 100, kEncodingASCII)), "text");
  EXPECT_EQ(built(CString2RBmax("text", 2, kEncodingASCII)), "te");
  const uint16_t units[] = {'a', 0x20AC, 0};
  EXPECT_EQ(built(UnicodeCString2RB(units)), bytesOf(std::u16string(u"a\u20AC")));
  EXPECT_EQ(built(UnicodeCString2RB(L"a\u20AC")), bytesOf(std::u16string(u"a\u20AC")));

  EXPECT_EQ(built(REALBuildOSTypeString(0x50504943)), "PPIC");
  for (auto [text, code] :
       {std::pair("PPIC", 0x50504943u), std::pair("PPICTURE", 0x50504943u), std::pair("PP", 0x50502020u)})
    EXPECT_EQ(REALstringToOSType(host::newString(text).get()), code) << text;
  EXPECT_EQ(REALstringToOSType(nullptr), 0x20202020u);
}

}  // namespace
