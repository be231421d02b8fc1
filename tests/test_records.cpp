// Adjusting records for the host at hand: flags, and the shorter layout of old hosts; also for kinds of
// record that this plug-in never registers.

#include <cstring>

#include "frame/memory.h"
#include "frame/registration.h"
#include "tests/linked.h"

namespace {

using Records = LinkedTest;

TEST_F(Records, MarkersBecomeFlagsOnHostsThatKnowThem) {
  struct Case {
    uint32_t marked, known, unknown;
  };
  for (const Case& c : {Case{0x40000, 0x4, 0}, Case{0x80000, 0x8, 0}, Case{0xC0000, 0xC, 0},
                        Case{0x100000, 0, 0}, Case{0x140000, 0x4, 0}, Case{0, 0, 0}, Case{0x40004, 0x4, 0x4},
                        Case{0x40100, 0x104, 0x100}, Case{0xFFE3FFF3, 0xFFE3FFF3, 0xFFE3FFF3}}) {
    for (double version : {0.0, 2010.028, 2010.029, 2013.03}) {
      beginAt(version);
      // Arrays of two each, and all on their own.
      REALmethodDefinition methods[2] = {}, shared[2] = {}, globals[2] = {}, ofModule[2] = {}, alone = {};
      REALproperty properties[2] = {}, sharedProperties[2] = {}, propertiesOfModule[2] = {};
      REALclassDefinition type = {};
      REALmoduleDefinition module = {};
      std::vector<uint32_t*> flags = {&alone.flags, &type.flags};
      for (auto* array : {methods, shared, globals, ofModule})
        flags.insert(flags.end(), {&array[0].flags, &array[1].flags});
      for (auto* array : {properties, sharedProperties, propertiesOfModule})
        flags.insert(flags.end(), {&array[0].flags, &array[1].flags});
      for (uint32_t* word : flags) *word = c.marked;
      type.methods = methods;
      type.sharedMethods = shared;
      type.properties = properties;
      type.sharedProperties = sharedProperties;
      module.methods = ofModule;
      module.properties = propertiesOfModule;
      type.methodCount = type.sharedMethodCount = type.propertyCount = type.sharedPropertyCount = 2;
      module.methodCount = module.propertyCount = 2;
      FixConsoleFlags(&type);
      FixConsoleFlags(globals, 2);
      FixConsoleFlags(&alone);
      FixConsoleFlags(&module);
      for (size_t i = 0; i < flags.size(); ++i)
        EXPECT_EQ(*flags[i], version >= 2010.029 ? c.known : c.unknown)
            << std::hex << c.marked << ", word " << i;
    }
  }
  REALclassDefinition empty = {};
  empty.methodCount = 3;  // a count without an array
  FixConsoleFlags(&empty);
  REALmethodDefinition untouched = {};
  untouched.flags = 0x40000;
  FixConsoleFlags(&untouched, -1);
  EXPECT_EQ(untouched.flags, 0x40000u);
}

TEST_F(Records, FlagsSetByCode) {
  REALclassDefinition type = {};
  type.flags = 0x1A;
  EXPECT_EQ(SetClassConsoleSafe(&type), &type);
  EXPECT_EQ(type.flags, 0x1Eu);
  EXPECT_EQ(SetClassWebOnly(&type), 0x116u);
  EXPECT_EQ(type.flags, 0x116u);
}

TEST_F(Records, InstanceDataIsRoundedUpOnlyForClasses) {
  CurrentREALControlVersion = 12;
  struct Case {
    int32_t declared, registered;
  };
  for (const Case& c :
       {Case{0, 0}, Case{1, 16}, Case{16, 16}, Case{17, 32}, Case{64, 64}, Case{139992, 140000}}) {
    REALclassDefinition type = {};
    type.name = "Picture";
    type.dataSize = c.declared;
    MyREALRegisterClass(&type);
    EXPECT_EQ(type.dataSize, c.registered);
    EXPECT_EQ(type.version, 12);
    type.dataSize = c.declared;
    MyREALRegisterClassExtension(&type);
    EXPECT_EQ(type.dataSize, c.declared);
  }
}

// Words that tell their place: the first words of each record are kept, the others go.
template <typename Record>
void number(Record* records, size_t count, uint32_t start) {
  auto* words = reinterpret_cast<uint32_t*>(records);
  for (size_t i = 0; i < count * sizeof(Record) / 4; ++i) words[i] = start + static_cast<uint32_t>(i);
}
template <typename Record, typename Old>
void expectShortened(const void* copies, const Record* sources, size_t count) {
  ASSERT_TRUE(copies);
  EXPECT_NE(copies, static_cast<const void*>(sources));
  const auto* words = static_cast<const uint32_t*>(copies);
  for (size_t i = 0; i < count; ++i)
    EXPECT_EQ(std::memcmp(words + i * sizeof(Old) / 4, sources + i, sizeof(Old)), 0) << "record " << i;
}

TEST_F(Records, OldHostsGetShorterRecords) {
  CurrentREALControlVersion = 9;
  REALproperty properties[3], shared[3];
  REALmethodDefinition methods[3], sharedMethods[3];
  REALconstant constants[3];
  REALevent events[3];
  number(properties, 3, 100);
  number(shared, 3, 200);
  number(methods, 3, 300);
  number(sharedMethods, 3, 400);
  number(constants, 3, 500);
  number(events, 3, 600);
  const REALevent eventsBefore[3] = {events[0], events[1], events[2]};

  REALclassDefinition type;
  number(&type, 1, 1);
  type.properties = properties;
  type.sharedProperties = shared;
  type.methods = methods;
  type.sharedMethods = sharedMethods;
  type.constants = constants;
  type.events = events;
  type.propertyCount = type.sharedPropertyCount = type.methodCount = type.sharedMethodCount = 3;
  type.constantCount = type.eventCount = 3;

  REALclassDefinition* old = FixClass(&type);
  ASSERT_TRUE(old);
  expectShortened<REALproperty, REALoldProperty>(old->properties, properties, 3);
  expectShortened<REALproperty, REALoldProperty>(old->sharedProperties, shared, 3);
  expectShortened<REALmethodDefinition, REALoldMethodDefinition>(old->methods, methods, 3);
  expectShortened<REALmethodDefinition, REALoldMethodDefinition>(old->sharedMethods, sharedMethods, 3);
  expectShortened<REALconstant, REALoldConstant>(old->constants, constants, 3);
  expectShortened<REALevent, REALoldEvent>(old->events, eventsBefore, 3);
  for (size_t i = 0; i < 3; ++i)
    EXPECT_EQ(events[i].forOldHosts, reinterpret_cast<REALoldEvent*>(old->events) + i);
  // Everything else as it was, except the version and the obsolete words.
  const auto* words = reinterpret_cast<const uint32_t*>(old);
  const auto* before = reinterpret_cast<const uint32_t*>(&type);
  EXPECT_EQ(words[0], 9u);
  EXPECT_EQ(words[16], 0u);
  EXPECT_EQ(words[17], 0u);
  for (size_t i : {1u, 2u, 3u, 4u, 5u, 6u, 8u, 10u, 12u, 13u, 14u, 15u, 19u, 20u, 22u, 24u})
    EXPECT_EQ(words[i], before[i]) << "word " << i;
  for (size_t array : {7u, 9u, 11u, 18u, 21u, 23u}) FreeMemoryNow(reinterpret_cast<void* const*>(old)[array]);
  FreeMemoryNow(old);
}

TEST_F(Records, AMissingArrayKeepsItsCount) {
  CurrentREALControlVersion = 9;
  REALmethodDefinition method = {};
  REALclassDefinition type = {};
  type.methodCount = 5;
  type.properties = reinterpret_cast<REALproperty*>(&method);
  type.propertyCount = 0;
  REALclassDefinition* old = FixClass(&type);
  EXPECT_EQ(old->methods, nullptr);
  EXPECT_EQ(old->methodCount, 5);
  EXPECT_EQ(old->properties, nullptr);
  EXPECT_EQ(old->propertyCount, 0);
  FreeMemoryNow(old);
}

// Kinds that this plug-in never registers go the same way.
TEST_F(Records, OtherKindsOfRecordAreRegisteredAlike) {
  REALmethodDefinition methods[2];
  for (int32_t version : {9, 10, 12}) {
    CurrentREALControlVersion = version;
    host::start(host::settings());
    number(methods, 2, 300);
    REALmoduleDefinition module = {};
    REALinterfaceDefinition interface = {};
    REALcontrolDefinition control = {};
    module.methods = interface.methods = control.methods = methods;
    module.methodCount = interface.methodCount = control.methodCount = 2;
    MyREALRegisterModule(&module);
    MyREALRegisterInterface(&interface);
    MyREALRegisterControl(&control);
    const auto& journal = host::members().journal;
    ASSERT_EQ(journal.size(), 3u);
    const char* const entryPoints[] = {"PluginRegisterModule", "PluginRegisterInterface",
                                       "PluginRegisterControl"};
    const REALmethodDefinition* const arrays[] = {module.methods, interface.methods, control.methods};
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(journal[i].entryPoint, entryPoints[i]);
      EXPECT_EQ(journal[i].version, version);
      if (version > 9) {
        EXPECT_EQ(arrays[i], methods);
      } else {
        expectShortened<REALmethodDefinition, REALoldMethodDefinition>(arrays[i], methods, 2);
        FreeMemoryNow(const_cast<REALmethodDefinition*>(arrays[i]));
      }
    }
  }
}

}  // namespace
