// Memory, handles, arrays, errors.

#include <cstring>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "tests/linked.h"

namespace {

class Frame : public LinkedTest {};

// ---- Memory ----

bool isZero(const void* memory, size_t size) {
  const auto* bytes = static_cast<const uint8_t*>(memory);
  for (size_t i = 0; i < size; ++i) {
    if (bytes[i]) return false;
  }
  return true;
}

TEST_F(Frame, BlocksAreZeroFilledAndLimited) {
  void* dirty = AllocateClearMemory(1000);
  FillMemory(dirty, 1000, 0x5A);
  FreeMemoryNow(dirty);
  void* block = AllocateClearMemory(1000);
  EXPECT_TRUE(isZero(block, 1000));
  FreeMemoryNow(block);
  FreeMemoryNow(nullptr);
  for (int64_t size : {int64_t{0}, int64_t{-1}, int64_t{0x80000000}, int64_t{1} << 32,
                       (int64_t{1} << 32) + 16, INT64_MIN, INT64_MAX})
    EXPECT_EQ(AllocateClearMemory(size), nullptr) << size;
}

TEST_F(Frame, BytesMoveWithinABlock) {
  char bytes[] = "abcdef";
  MoveMemory(bytes + 1, bytes, 4);
  EXPECT_STREQ(bytes, "aabcdf");
  FillMemory(bytes + 1, 2, 'x');
  ClearMemory(bytes + 4, 2);
  EXPECT_EQ(std::string(bytes, 7), std::string("axxc\0\0\0", 7));
  auto* grown = static_cast<char*>(
      ReallocateMemory(std::strcpy(static_cast<char*>(AllocateClearMemory(4)), "abc"), 4000));
  EXPECT_STREQ(grown, "abc");
  FreeMemoryNow(grown);
}

TEST_F(Frame, HandlesKnowTheirSizeOnlyOnceResized) {
  MemoryHandle handle = allocateHandle(100);
  EXPECT_EQ(getHandleSize(handle), 0u);
  auto* data = static_cast<uint8_t*>(lockHandle(handle));
  EXPECT_EQ(data, static_cast<uint8_t*>(handle) + 4);
  EXPECT_TRUE(isZero(data, 100));
  std::memset(data, 7, 100);
  unlockHandle(handle);
  handle = resizeHandle(handle, 5000);
  ASSERT_TRUE(handle);
  EXPECT_EQ(getHandleSize(handle), 5000u);
  EXPECT_EQ(static_cast<uint8_t*>(lockHandle(handle))[99], 7);
  handle = resizeHandle(handle, 0);
  EXPECT_EQ(getHandleSize(handle), 0u);
  freeHandle(handle);

  MemoryHandle empty = allocateHandle(0);
  EXPECT_TRUE(empty);
  freeHandle(empty);
  freeHandle(nullptr);
  EXPECT_EQ(getHandleSize(nullptr), 0u);
  for (int64_t size : {int64_t{-1}, int64_t{0x80000000}, INT64_MIN, INT64_MAX})
    EXPECT_EQ(allocateHandle(size), nullptr) << size;
  // The handle itself is freed then: a leak checker sees to that.
  for (int64_t size : {int64_t{-1}, int64_t{0x7FFFFFF1}, int64_t{1} << 32, INT64_MAX})
    EXPECT_EQ(resizeHandle(allocateHandle(16), size), nullptr) << size;
}

// ---- Arrays ----

REALarrayStruct* arrayOf(const host::ObjectRef& object) {
  return static_cast<REALarrayStruct*>(object.get());
}

// Up to 2013.9 elements are read where they lie; later hosts are asked.
struct AccessCase {
  double version;
  bool asksHost;
};
const AccessCase kAccesses[] = {{2009, false}, {2013.9, false}, {2013.91, true}, {2014.1, true}};
const char* const kGet = "RuntimeArrayDirectGetGetProc";
const char* const kSet = "RuntimeArrayDirectGetSetProc";

template <typename T>
void expectElements(int32_t type, T first, T second) {
  const auto object = host::newArray(type, 4);
  REALarrayStruct* array = arrayOf(object);
  REALSetArrayValue(array, 1, first);
  REALSetArrayValue(array, 4, second);
  for (auto [index, expected] :
       {std::pair(0, T{}), std::pair(1, first), std::pair(3, T{}), std::pair(4, second)}) {
    T value = static_cast<T>(99);
    REALGetArrayValue(array, index, &value);
    EXPECT_EQ(value, expected) << "element " << index << " of type " << type;
  }
}

TEST_F(Frame, NumbersInArraysOfEveryType) {
  for (const AccessCase& c : kAccesses) {
    SCOPED_TRACE(c.version);
    beginAt(c.version);
    expectElements<int32_t>(0, -5, INT32_MAX);
    expectElements<float>(1, 0.5f, -3.25f);
    expectElements<double>(2, 0.1, -1e300);
    expectElements<uint16_t>(7, 65535, 1);
    expectElements<uint8_t>(8, 255, 1);
    expectElements<uint32_t>(9, 0xFFFFFFFF, 1);
    expectElements<uint64_t>(10, UINT64_MAX, 1);
    expectElements<int64_t>(11, INT64_MIN, 1);
    EXPECT_EQ(host::uses(kGet) > 0, c.asksHost);
    EXPECT_EQ(host::uses(kSet) > 0, c.asksHost);
  }
}

// 8- and 16-bit signed elements can only be set.
template <typename T>
T storedThrough(int32_t type, T value) {
  const auto object = host::newArray(type, 2);
  REALSetArrayValue(arrayOf(object), 1, value);
  const auto* elements = reinterpret_cast<T* const*>(object.get())[2];
  return elements[0] == 0 && elements[2] == 0 ? elements[1] : T{};
}

TEST_F(Frame, SmallSignedElementsCanBeSet) {
  for (const AccessCase& c : kAccesses) {
    beginAt(c.version);
    EXPECT_EQ(storedThrough<int8_t>(5, -100), -100) << c.version;
    EXPECT_EQ(storedThrough<int16_t>(6, -10000), -10000) << c.version;
  }
}

// Every element and every reader has a reference of its own.
TEST_F(Frame, StringsAndObjectsInArraysAreCounted) {
  for (const AccessCase& c : kAccesses) {
    SCOPED_TRACE(c.version);
    beginAt(c.version);
    const auto one = host::newString("one"), two = host::newString("two");
    const auto strings = host::newArray(3, 1);
    REALSetArrayValue(arrayOf(strings), 1, one.get());
    EXPECT_EQ(host::references(one.get()), 2);
    REALSetArrayValue(arrayOf(strings), 1, two.get());
    EXPECT_EQ(host::references(one.get()), 1);
    EXPECT_EQ(host::references(two.get()), 2);
    REALSetArrayValue(arrayOf(strings), 1, two.get());  // by itself
    EXPECT_EQ(host::references(two.get()), 2);
    REALstringStruct* read = nullptr;
    REALGetArrayValue(arrayOf(strings), 1, &read);
    EXPECT_EQ(host::StringRef::adopt(read).get(), two.get());
    EXPECT_EQ(host::StringRef::adopt(REALGetArrayString(arrayOf(strings), 1)).get(), two.get());
    REALGetArrayValue(arrayOf(strings), 0, &read);
    EXPECT_EQ(read, nullptr);
    EXPECT_EQ(host::references(two.get()), 2);

    const auto block = host::newMemoryBlock("x", 1);
    const auto objects = host::newArray(4, 0);
    REALSetArrayValue(arrayOf(objects), 0, static_cast<REALobjectStruct*>(block.get()));
    EXPECT_EQ(host::references(block.get()), 2);
    REALobjectStruct* object = nullptr;
    REALGetArrayValue(arrayOf(objects), 0, &object);
    EXPECT_EQ(host::ObjectRef::adopt(object).get(), block.get());
    EXPECT_EQ(host::ObjectRef::adopt(REALGetArrayObject(arrayOf(objects), 0)).get(), block.get());
    REALSetArrayValue(arrayOf(objects), 0, static_cast<REALobjectStruct*>(nullptr));
    EXPECT_EQ(host::references(block.get()), 1);
  }
}

TEST_F(Frame, ArraysGrowByInsertion) {
  for (const AccessCase& c : kAccesses) {
    beginAt(c.version);
    const auto numbers = host::ObjectRef::adopt(REALCreateArrayInteger(-1));
    EXPECT_EQ(REALGetArrayUBound(arrayOf(numbers)), -1);
    REALInsertArrayValue(arrayOf(numbers), 0, int32_t{5});
    REALInsertArrayValue(arrayOf(numbers), 0, int32_t{4});
    EXPECT_EQ(REALGetArrayInt(arrayOf(numbers), 0), 4);
    EXPECT_EQ(REALGetArrayInt(arrayOf(numbers), 1), 5);

    const auto text = host::newString("text");
    const auto strings = host::ObjectRef::adopt(REALCreateArrayString(-1));
    for (int i = 0; i < 2; ++i) REALAppendArrayValue(arrayOf(strings), text.get());
    EXPECT_EQ(REALGetArrayUBound(arrayOf(strings)), 1);
    EXPECT_EQ(host::references(text.get()), 3);
    const auto objects = host::ObjectRef::adopt(REALCreateArrayObject(-1));
    REALAppendArrayValue(arrayOf(objects), numbers.get());
    EXPECT_EQ(host::references(numbers.get()), 2);
  }
}

TEST_F(Frame, NullArraysDoNothing) {
  int32_t value = 77;
  REALGetArrayValue(nullptr, 0, &value);
  EXPECT_EQ(value, 77);
  REALSetArrayValue(nullptr, 0, value);
  EXPECT_EQ(REALGetArrayInt(nullptr, 0), 0);
  EXPECT_EQ(REALGetArrayString(nullptr, 0), nullptr);
  EXPECT_EQ(REALGetArrayObject(nullptr, 0), nullptr);
  REALAppendArrayValue(nullptr, static_cast<REALobjectStruct*>(nullptr));
  EXPECT_EQ(host::uses(), 0);
}

TEST_F(Frame, AnArrayWithoutStorageIsAskedFor) {
  int32_t value = 77;
  beginAt(2013.0);
  const auto array = host::newArray(0, -1);
  REALGetArrayValue(arrayOf(array), 0, &value);
  EXPECT_EQ(host::uses(kGet), 1);
  EXPECT_EQ(host::takeException()->className, "OutOfBoundsException");
}

// ---- Errors ----

void expectRaised(const std::string& className, const std::string& message) {
  const auto raised = host::takeException();
  ASSERT_TRUE(raised) << "expected " << className << ": " << message;
  EXPECT_EQ(raised->className, className);
  EXPECT_EQ(raised->message, message);
}

TEST_F(Frame, ExceptionsInEveryForm) {
  const auto a = host::newString("a"), b = host::newString("b"), c = host::newString("c");
  RaiseException("NilObjectException", a.get());
  expectRaised("NilObjectException", "a");
  RaiseException("OutOfMemoryException", static_cast<REALstringStruct*>(nullptr));
  expectRaised("OutOfMemoryException", "");
  RaiseException("NilObjectException", "picture is nil", kEncodingASCII);
  expectRaised("NilObjectException", "picture is nil");
  RaiseException("NilObjectException", static_cast<const char*>(nullptr), kEncodingASCII);
  expectRaised("NilObjectException", "");
  RaiseException("NilObjectException", a.get(), b.get(), c.get());
  expectRaised("NilObjectException", "abc");
  RaiseException("NilObjectException", a.get(), nullptr, c.get());
  expectRaised("NilObjectException", "ac");
  RaiseException("NilObjectException", "one ", "two ", "three", kEncodingASCII);
  expectRaised("NilObjectException", "one two three");
  RaiseException("NilObjectException", "one", nullptr, nullptr, kEncodingASCII);
  expectRaised("NilObjectException", "one");
  RaiseException("NoSuchException", "still said", kEncodingASCII);
  expectRaised("RuntimeException", "still said");
}

TEST_F(Frame, ExceptionsThatCantBeMadeAreNone) {
  for (const char* service : {"PluginNewInstance", "RuntimeRaiseException"}) {
    host::failAt(service, 1);
    RaiseException("NoSuchException", "text", kEncodingASCII);
    const bool second = std::strcmp(service, "PluginNewInstance") == 0;
    EXPECT_EQ(host::takeException().has_value(), second) << service;
    host::clearFaults();
  }
  // Neither the class nor the one in its stead.
  host::failAt("PluginNewInstance", 2);
  RaiseException("NoSuchException", "text", kEncodingASCII);
  EXPECT_FALSE(host::takeException());
}

struct RangeCase {
  int64_t value, minimum, limit;
  const char *parameter, *method, *message;
};

TEST_F(Frame, OutOfBoundsSaysTheRange) {
  const RangeCase cases[] = {
      {5, 10, 20, "x", "M", "Parameter x to method M is too small. Range is 10 to 19, but value is 5."},
      {25, 10, 20, "x", "M", "Parameter x to method M is too big. Range is 10 to 19, but value is 25."},
      {10, 10, 20, "x", "M", "Parameter x to method M is too big. Range is 10 to 19, but value is 10."},
      {-1, 0, 1, nullptr, nullptr, "Parameter ? to method ? is too small. Range is 0 to 0, but value is -1."},
      {INT64_MAX, INT64_MIN, INT64_MAX, "", "Run",
       "Parameter  to method Run is too big. Range is -9223372036854775808 to 9223372036854775806, but value "
       "is 9223372036854775807."},
  };
  for (const RangeCase& c : cases) {
    RaiseOutOfBoundsException(c.value, c.minimum, c.limit, c.parameter, c.method);
    expectRaised("OutOfBoundsException", c.message);
  }
  const std::string longName(3000, 'n');
  RaiseOutOfBoundsException(0, 1, 2, longName.c_str(), longName.c_str());
  expectRaised("OutOfBoundsException", "Parameter " + longName + " to method " + longName +
                                           " is too small. Range is 1 to 1, but value is 0.");
}

TEST_F(Frame, MemoryBlocksFromBytes) {
  const auto block = host::MemoryBlockRef::adopt(REALBuildMemoryblock("0123", 4));
  ASSERT_EQ(host::memoryBlockSize(block.get()), 4u);
  EXPECT_EQ(std::memcmp(host::memoryBlockBytes(block.get()), "0123", 4), 0);
  EXPECT_EQ(host::references(block.get()), 1);

  for (auto [bytes, length] : {std::pair<const char*, int>("x", 0), std::pair<const char*, int>("x", -1),
                               std::pair<const char*, int>(nullptr, 5)})
    EXPECT_EQ(REALBuildMemoryblock(bytes, length), nullptr);
  EXPECT_FALSE(host::takeException());

  host::failAt("newMemoryBlock", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  expectRaised("OutOfMemoryException", "Failed to allocate a memoryblock with 4 bytes in size.");
  host::failAt("memoryBlockGetPtr", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  EXPECT_FALSE(host::takeException());
}

TEST_F(Frame, DebugLogIsALineOfUtf8) {
  testing::internal::CaptureStderr();
  DebugLog(host::newString("caf\xE9 %s", kEncodingWindows).get());
  DebugLog(nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caf\xC3\xA9 %s\n\n");
}

}  // namespace
