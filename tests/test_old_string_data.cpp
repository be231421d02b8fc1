// String data on hosts without the service: copies made by the plug-in itself.

#include <malloc.h>

#include <cstring>

#include "frame/entry_points.h"
#include "tests/linked.h"

namespace {

class OldStringData : public LinkedTest {
 protected:
  void SetUp() override {
    LinkedTest::SetUp();
    host::removeEntryPoint("PluginGetStringData");
  }
};

// The text in the encoding that is wanted of a string.
struct Case {
  std::string bytes;
  uint32_t encoding, wanted;
  std::string expected;
};

const Case kCases[] = {
    {"caf\xE9", kEncodingWindows, kEncodingNone, "caf\xE9"},
    {"caf\xE9", kEncodingWindows, kEncodingWindows, "caf\xE9"},
    {"caf\xE9", kEncodingWindows, kEncodingUTF8, "caf\xC3\xA9"},
    {"ab", kEncodingASCII, kEncodingUTF16, std::string("a\0b\0", 4)},
    {std::string("\0\xFF\0", 3), kEncodingNone, kEncodingNone, std::string("\0\xFF\0", 3)},
    {"", kEncodingUTF8, kEncodingNone, ""},
    {"", kEncodingUTF8, kEncodingMacRoman, ""},
};

TEST_F(OldStringData, NeedsBothServices) {
  inFreshProcess([&] {
    const auto string = host::newString("text");
    for (bool bytesMissing : {true, false}) {
      host::clearFaults();
      host::removeEntryPoint("PluginGetStringData");
      host::removeEntryPoint("LenB( s as string ) as integer");
      if (bytesMissing) host::removeEntryPoint("StringGetCString");
      for (uint32_t encoding : {+kEncodingNone, +kEncodingUTF8, +kEncodingUTF16}) {
        REALstringData record = {};
        EXPECT_FALSE(REALGetStringData(string.get(), encoding, &record));
        EXPECT_EQ(record.data, nullptr);
      }
    }
    EXPECT_EQ(host::held().strings, 1);
  });
}

TEST_F(OldStringData, CopiesTheBytesWithFourZerosBehind) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(&c - kCases);
    const auto string = host::newString(c.bytes, c.encoding, /*terminated=*/false);
    REALstringData record = {};
    host::clearFaults();
    host::removeEntryPoint("PluginGetStringData");
    ASSERT_TRUE(REALGetStringData(string.get(), c.wanted, &record));
    EXPECT_EQ(host::uses("StringGetCString"), 1) << "only of the converted string";
    EXPECT_EQ(record.encoding, c.wanted);
    ASSERT_EQ(record.length, static_cast<int32_t>(c.expected.size()));
    const auto* bytes = static_cast<const char*>(record.data);
    EXPECT_EQ(std::string(bytes, c.expected.size() + 4), c.expected + std::string(4, '\0'));
    REALDisposeStringData(&record);
    EXPECT_EQ(host::uses("PluginDisposeStringData"), 0) << "the host never gave this";
  }
}

// The record's length before the call enlarges the buffer of unconverted bytes,
// and only that one.
TEST_F(OldStringData, TheLengthThatStandsInTheRecordCounts) {
  const auto string = host::newString("caf\xE9", kEncodingWindows);
  const struct {
    uint32_t encoding;
    int32_t standing;
    size_t atLeast, below;
  } cases[] = {{kEncodingNone, 2, 8, 1000},
               {kEncodingNone, 5000, 5004, 6000},
               {kEncodingNone, INT32_MIN, 8, 1000},
               {kEncodingWindows, 5000, 8, 1000},
               {kEncodingUTF8, 5000, 9, 1000}};
  for (const auto& c : cases) {
    REALstringData record = {nullptr, c.standing, 0};
    ASSERT_TRUE(REALGetStringData(string.get(), c.encoding, &record));
    EXPECT_EQ(record.length, c.encoding == kEncodingUTF8 ? 5 : 4);
    EXPECT_GE(malloc_usable_size(record.data), c.atLeast) << c.standing;
    EXPECT_LT(malloc_usable_size(record.data), c.below) << c.standing;
    REALDisposeStringData(&record);
  }
}

TEST_F(OldStringData, FailsQuietly) {
  REALstringData record = {};
  EXPECT_FALSE(REALGetStringData(nullptr, kEncodingNone, &record));
  EXPECT_FALSE(REALGetStringData(nullptr, kEncodingUTF8, &record));
  const auto string = host::newString("text");
  host::failAt("REALConvertString", 1);
  EXPECT_FALSE(REALGetStringData(string.get(), kEncodingUTF16, &record));
  for (uint32_t encoding : {+kEncodingNone, +kEncodingUTF8, +kEncodingUTF16}) {
    host::failAt("StringGetCString", 1);
    EXPECT_FALSE(REALGetStringData(string.get(), encoding, &record));
  }
  EXPECT_EQ(record.data, nullptr);
  EXPECT_FALSE(REALGetStringData(string.get(), 0x7777, &record)) << "an encoding that the host can't make";
}

// Once offered, the service is used, and releases what it gave. In the process at hand it would stay known.
TEST_F(OldStringData, TheServiceIsTakenWhenItComes) {
  inFreshProcess([&] {
    host::clearFaults();
    const auto string = host::newString("text");
    REALstringData record = {};
    ASSERT_TRUE(REALGetStringData(string.get(), kEncodingNone, &record));
    EXPECT_EQ(host::held().stringData, 1);
    REALDisposeStringData(&record);
    EXPECT_EQ(host::held().stringData, 0);
  });
}

}  // namespace
