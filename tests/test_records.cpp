// Adjusting records for the host at hand: flags, and the shorter layout of old hosts; also for kinds of
// record that this plug-in never registers.

#include <numeric>

#include "frame/memory.h"
#include "frame/registration.h"
#include "tests/linked.h"

namespace {

using Records = LinkedTest;

TEST_F(Records, MarkersBecomeFlagsOnHostsThatKnowThem) {
  // As marked in the tables, and as registered on newer and on older hosts.
  for (auto [marked, known, unknown] : {std::tuple(0x40000u, 0x4u, 0u),
                                        {0x80000u, 0x8u, 0u},
                                        {0x140000u, 0x4u, 0u},
                                        {0x100000u, 0u, 0u},
                                        {0x40004u, 0x4u, 0x4u},
                                        {0xC0100u, 0x10Cu, 0x100u},
                                        {~0x1C000Cu, ~0x1C000Cu, ~0x1C000Cu}}) {
    for (double version : {0.0, 2010.028, 2010.029, 2013.03}) {
      beginAt(version);
      REALmethodDefinition method = {};
      method.flags = marked;
      FixConsoleFlags(&method, -1);
      EXPECT_EQ(method.flags, marked);
      FixConsoleFlags(&method);
      EXPECT_EQ(method.flags, version >= 2010.029 ? known : unknown) << std::hex << marked;
    }
  }
}

TEST_F(Records, EveryMemberOfARecordIsMarked) {
  REALmethodDefinition methods[6] = {};
  REALproperty properties[6] = {};
  for (auto& method : methods) method.flags = kMarkConsoleSafe;
  for (auto& property : properties) property.flags = kMarkConsoleSafe;
  REALclassDefinition type = {};
  type.flags = kMarkConsoleSafe;
  type.methods = methods, type.sharedMethods = methods + 2;
  type.properties = properties, type.sharedProperties = properties + 2;
  REALmoduleDefinition module = {};
  module.methods = methods + 4, module.properties = properties + 4;
  for (int32_t* count : {&type.methodCount, &type.sharedMethodCount, &type.propertyCount,
                         &type.sharedPropertyCount, &module.methodCount, &module.propertyCount})
    *count = 2;
  FixConsoleFlags(&type);
  FixConsoleFlags(&module);
  for (const auto& method : methods) EXPECT_EQ(method.flags, 4u) << &method - methods;
  for (const auto& property : properties) EXPECT_EQ(property.flags, 4u) << &property - properties;
  EXPECT_EQ(type.flags, 4u);
  type.methods = nullptr;  // a count without an array
  FixConsoleFlags(&type);
  type.flags = 0x1A;
  EXPECT_EQ(SetClassConsoleSafe(&type)->flags, 0x1Eu);
  EXPECT_EQ(SetClassWebOnly(&type), 0x116u);
  EXPECT_EQ(type.flags, 0x116u);
}

// An array of a record: the word that points to it (its count follows), and the words of each element in the
// current and in the old layout.
struct Array {
  size_t pointer, current, old;
};
struct Kind {
  const char* entryPoint;
  std::function<void(void* record)> add;
  size_t words;
  std::vector<Array> arrays;
};
template <typename Record>
Kind kind(const char* entryPoint, void (*add)(Record*), const std::vector<Array>& arrays) {
  return {entryPoint, [=](void* record) { add(static_cast<Record*>(record)); }, sizeof(Record) / 4, arrays};
}
const std::vector<Array> kClassArrays = {{7, 12, 10}, {9, 6, 4},    {11, 4, 2},
                                         {18, 5, 3},  {21, 12, 10}, {23, 6, 4}};
const Kind kKinds[] = {
    kind("PluginRegisterClass", MyREALRegisterClass, kClassArrays),
    kind("PluginRegisterClassExtension", MyREALRegisterClassExtension, kClassArrays),
    kind("PluginRegisterModule", MyREALRegisterModule, {{2, 6, 4}, {4, 5, 3}, {6, 12, 10}}),
    kind("PluginRegisterInterface", MyREALRegisterInterface, {{2, 6, 4}}),
    kind("PluginRegisterControl", MyREALRegisterControl, {{7, 12, 10}, {9, 6, 4}, {11, 4, 2}}),
};

uint32_t addressOf(const void* place) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(place)); }

// On old hosts the first words of each element are kept and the others go; a missing or empty array is none,
// with its count. Every other word stays, and tells its place.
void expectAdjusted(const Kind& kind, int32_t version, bool isThere, uint32_t count) {
  std::vector<uint32_t> record(kind.words), elements[6];
  std::iota(record.begin(), record.end(), 1);
  for (size_t i = 0; i < kind.arrays.size(); ++i) {
    elements[i].resize(3 * kind.arrays[i].current);
    std::iota(elements[i].begin(), elements[i].end(), 100 * (i + 1));
    record[kind.arrays[i].pointer] = isThere ? addressOf(elements[i].data()) : 0;
    record[kind.arrays[i].pointer + 1] = count;
  }
  std::vector<uint32_t> expected = record, sources[6];
  std::copy(elements, elements + 6, sources);
  expected[0] = static_cast<uint32_t>(version);
  if (kind.entryPoint == std::string("PluginRegisterClass")) expected[3] = 16;  // bytes of instance data
  if (kind.words == 25 && version == 9) expected[16] = expected[17] = 0;        // obsolete
  kind.add(record.data());
  for (size_t i = 0; i < kind.arrays.size() && version == 9; ++i) {
    const auto [pointer, current, old] = kind.arrays[i];
    auto* const copies = reinterpret_cast<uint32_t*>(record[pointer]);
    expected[pointer] = isThere && count > 0 ? record[pointer] : 0;
    EXPECT_NE(copies, elements[i].data());
    for (size_t n = 0; copies && n < count; ++n) {
      EXPECT_EQ(bytesAt(copies + n * old, 4 * old), bytesAt(&sources[i][n * current], 4 * old)) << pointer;
      if (pointer == 11) sources[i][n * current + 1] = addressOf(copies + n * old);
    }
    EXPECT_EQ(elements[i], sources[i]) << "only events are told where their copies are";
    FreeMemoryNow(copies);
  }
  EXPECT_EQ(record, expected);
}

TEST_F(Records, OldHostsGetShorterRecords) {
  for (const Kind& kind : kKinds) {
    for (int32_t version : {9, 10, 12}) {
      for (auto [isThere, count] : {std::pair(true, 3u), {false, 3u}, {true, 0u}}) {
        SCOPED_TRACE(kind.entryPoint + std::to_string(version));
        CurrentREALControlVersion = version;
        host::clearFaults();
        host::failAt(kind.entryPoint, 1);  // the host doesn't look into the record
        expectAdjusted(kind, version, isThere, count);
        EXPECT_EQ(host::uses(kind.entryPoint), 1);
      }
    }
  }
}

}  // namespace
