// Memory, handles, arrays, errors.

#include <cstring>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "tests/linked.h"

namespace {

using Frame = LinkedTest;

// ---- Memory ----

bool isZero(const void* memory, size_t size) {
  return std::string(static_cast<const char*>(memory), size) == std::string(size, '\0');
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

// 8- and 16-bit signed elements can only be set.
template <typename T>
void expectStored(int32_t type, T value) {
  const auto object = host::newArray(type, 2);
  REALSetArrayValue(arrayOf(object), 1, value);
  const auto* elements = reinterpret_cast<T* const*>(object.get())[2];
  EXPECT_EQ(std::vector<T>(elements, elements + 3), (std::vector<T>{0, value, 0})) << type;
}

// Up to 2013.9 elements are read where they lie; later hosts are asked.
constexpr double kVersions[] = {2009, 2013.9, 2013.91, 2014.1};
const char* const kGet = "RuntimeArrayDirectGetGetProc";

TEST_F(Frame, NumbersInArraysOfEveryType) {
  for (double version : kVersions) {
    SCOPED_TRACE(version);
    beginAt(version);
    expectElements<int32_t>(0, -5, INT32_MAX);
    expectElements<float>(1, 0.5f, -3.25f);
    expectElements<double>(2, 0.1, -1e300);
    expectElements<uint16_t>(7, 65535, 1);
    expectElements<uint8_t>(8, 255, 1);
    expectElements<uint32_t>(9, 0xFFFFFFFF, 1);
    expectElements<uint64_t>(10, UINT64_MAX, 1);
    expectElements<int64_t>(11, INT64_MIN, 1);
    expectStored<int8_t>(5, -100);
    expectStored<int16_t>(6, -10000);
    EXPECT_EQ(host::uses(kGet) > 0, version > 2013.9);
    EXPECT_EQ(host::uses("RuntimeArrayDirectGetSetProc") > 0, version > 2013.9);
  }
}

// Every element and every reader has a reference of its own.
template <typename Ref, typename Element>
void expectCounted(int32_t type, const Ref& first, const Ref& second,
                   Element* (*getOld)(REALarrayStruct*, int32_t)) {
  Element *one = first.get(), *two = second.get();
  const auto owner = host::newArray(type, 1);
  REALarrayStruct* array = arrayOf(owner);
  REALSetArrayValue(array, 1, one);
  EXPECT_EQ(host::references(one), 2);
  for (int times = 0; times < 2; ++times) {  // the second time by itself
    REALSetArrayValue(array, 1, two);
    EXPECT_EQ(host::references(one), 1);
    EXPECT_EQ(host::references(two), 2);
  }
  Element* read = nullptr;
  REALGetArrayValue(array, 1, &read);
  EXPECT_EQ(Ref::adopt(read).get(), two);
  EXPECT_EQ(Ref::adopt(getOld(array, 1)).get(), two);
  REALGetArrayValue(array, 0, &read);
  EXPECT_EQ(read, nullptr);
  EXPECT_EQ(host::references(two), 2);
  REALSetArrayValue(array, 1, static_cast<Element*>(nullptr));
  EXPECT_EQ(host::references(two), 1);
}

TEST_F(Frame, StringsAndObjectsInArraysAreCounted) {
  for (double version : kVersions) {
    SCOPED_TRACE(version);
    beginAt(version);
    const auto text = host::newString("one"), other = host::newString("two");
    expectCounted(3, text, other, REALGetArrayString);
    const host::ObjectRef array = host::newArray(0, 0), another = host::newArray(0, 0);
    expectCounted(4, array, another, REALGetArrayObject);
  }
}

TEST_F(Frame, ArraysGrowByInsertion) {
  for (double version : kVersions) {
    beginAt(version);
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

// The pending exception as "Class: message".
std::string raised() {
  const auto exception = host::takeException();
  return exception ? exception->className + ": " + exception->message : "none";
}

TEST_F(Frame, ExceptionsInEveryForm) {
  const auto a = host::newString("a"), b = host::newString("b"), c = host::newString("c");
  const auto expect = [](const std::string& text, auto... parts) {
    RaiseException("NilObjectException", parts...);
    EXPECT_EQ(raised(), "NilObjectException: " + text);
  };
  const char* const none = nullptr;
  expect("a", a.get());
  expect("", static_cast<REALstringStruct*>(nullptr));
  expect("picture is nil", "picture is nil", kEncodingASCII);
  expect("", none, kEncodingASCII);
  expect("abc", a.get(), b.get(), c.get());
  expect("ac", a.get(), static_cast<REALstringStruct*>(nullptr), c.get());
  expect("one two three", "one ", "two ", "three", kEncodingASCII);
  expect("one", "one", none, none, kEncodingASCII);
  RaiseException("NoSuchException", "still said", kEncodingASCII);
  EXPECT_EQ(raised(), "RuntimeException: still said");
}

TEST_F(Frame, ExceptionsThatCantBeMadeAreNone) {
  const struct {
    const char* service;
    int nth;
    const char* raises;
  } cases[] = {{"PluginNewInstance", 1, "RuntimeException: text"},
               {"PluginNewInstance", 2, "none"},  // neither the class nor the one in its stead
               {"RuntimeRaiseException", 1, "none"}};
  for (const auto& c : cases) {
    host::failAt(c.service, c.nth);
    RaiseException("NoSuchException", "text", kEncodingASCII);
    EXPECT_EQ(raised(), c.raises) << c.service;
    host::clearFaults();
  }
}

TEST_F(Frame, OutOfBoundsSaysTheRange) {
  const struct {
    int64_t value, minimum, limit;
    const char *parameter, *method, *message;
  } cases[] = {
      {5, 10, 20, "x", "M", "Parameter x to method M is too small. Range is 10 to 19, but value is 5."},
      {25, 10, 20, "x", "M", "Parameter x to method M is too big. Range is 10 to 19, but value is 25."},
      {10, 10, 20, "x", "M", "Parameter x to method M is too big. Range is 10 to 19, but value is 10."},
      {-1, 0, 1, nullptr, nullptr, "Parameter ? to method ? is too small. Range is 0 to 0, but value is -1."},
      {INT64_MAX, INT64_MIN, INT64_MAX, "", "Run",
       "Parameter  to method Run is too big. Range is -9223372036854775808 to 9223372036854775806, but value "
       "is 9223372036854775807."},
  };
  for (const auto& c : cases) {
    RaiseOutOfBoundsException(c.value, c.minimum, c.limit, c.parameter, c.method);
    EXPECT_EQ(raised(), "OutOfBoundsException: " + std::string(c.message));
  }
  const std::string longName(3000, 'n');
  RaiseOutOfBoundsException(0, 1, 2, longName.c_str(), longName.c_str());
  EXPECT_EQ(raised(), "OutOfBoundsException: Parameter " + longName + " to method " + longName +
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
  EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with 4 bytes in size.");
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
