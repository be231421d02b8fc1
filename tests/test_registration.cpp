// The registered members as hosts of every version see them. Their texts are checked by the
// tests of the manual.

#include <algorithm>
#include <cstring>
#include <limits>
#include <set>

#include "tests/support.h"

namespace {

struct Host {
  const char* name;
  std::optional<double> version;
  int32_t controlVersion;
  bool knowsFlags;
};

const Host kHosts[] = {
    {"none", std::nullopt, 9, false}, {"2009", 2009, 9, false},
    {"2010_028", 2010.028, 9, false}, {"2010_029", 2010.029, 9, true},
    {"2011_0", 2011.0, 9, true},      {"2012_0", 2012.0, 10, true},
    {"2012_99", 2012.99, 10, true},   {"2013_0", 2013.0, 11, true},
    {"2013_02", 2013.02, 11, true},   {"2013_03", 2013.03, 12, true},
    {"2019", 2019, 12, true},         {"not_a_number", std::numeric_limits<double>::quiet_NaN(), 9, false},
};

using Registration = HostTest;

class RegistrationAt : public Registration, public ::testing::WithParamInterface<Host> {
 protected:
  void SetUp() override { beginAt(GetParam().version); }
};

TEST_P(RegistrationAt, TellsVersionsAndKeepsTheOrder) {
  EXPECT_EQ(host::members().controlVersion, GetParam().controlVersion);
  const std::pair<const char*, const char*> expected[] = {
      {"PluginRegisterClass", "PictureSepiaZVR"},
      {"PluginRegisterClass", "PictureLut3DZVR"},
      {"PluginRegisterClassExtension", "Picture"},
      {"PluginRegisterMethod", "BinaryStringtoPictureZVR"},
      {"PluginRegisterMethod", "PicturetoBinaryStringZVR"},
      {"PluginRegisterMethod", "CombinePicturesZVR"},
      {"PluginRegisterMethod", "MergePictureZVR"},
      {"PluginRegisterMethod", "TintPictureZVR"},
      {"PluginRegisterMethod", "RenderSamplesZVR"},
  };
  const auto& journal = host::members().journal;
  ASSERT_GE(journal.size(), std::size(expected));
  for (size_t i = 0; i < journal.size(); ++i) {
    const size_t known = std::min(i, std::size(expected) - 1);  // further methods follow these
    EXPECT_EQ(journal[i].entryPoint, expected[known].first);
    EXPECT_TRUE(i != known || journal[i].name == expected[known].second) << journal[i].name;
    EXPECT_EQ(journal[i].version, i < 3 ? GetParam().controlVersion : 0);
  }
}

// Words of the class records.
TEST_P(RegistrationAt, ClassRecords) {
  struct Case {
    int32_t dataSize;
    uint32_t flags;  // set in the tables themselves, so every host gets them
    bool isClass;
  };
  const Case cases[] = {{64, 0, true}, {140000, 4, true}, {0, 4, false}};
  for (size_t i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    const auto& record = *static_cast<const REALclassDefinition*>(host::members().journal.at(i).record);
    uint32_t words[25];
    std::memcpy(words, &record, sizeof words);
    EXPECT_EQ(record.dataSize, cases[i].dataSize);
    EXPECT_EQ(record.flags, cases[i].flags);
    for (size_t routine : {5u, 6u, 7u}) EXPECT_EQ(words[routine] != 0, cases[i].isClass);
    for (size_t unused : {2u, 4u, 11u, 12u, 13u, 14u, 15u, 16u, 17u, 18u, 19u, 21u, 22u, 23u, 24u})
      EXPECT_EQ(words[unused], 0u) << "word " << unused;
    if (cases[i].isClass) {
      EXPECT_EQ(record.methods->function, record.destructor) << "Close, the first method";
    }
  }
}

std::vector<host::Method> allMethods() {
  std::vector<host::Method> all = host::members().pictureMethods;
  const auto add = [&](const std::vector<host::Method>& more) {
    all.insert(all.end(), more.begin(), more.end());
  };
  add(host::members().globals);
  for (const host::Class& type : host::members().classes) add(type.methods);
  return all;
}

// The same members whatever the layout. The manual's tests compare the flags of methods with its text.
TEST_P(RegistrationAt, MethodsAsTheHostReadsThem) {
  const std::vector<host::Method> methods = allMethods();
  const std::set<std::string> assignable = {"EmbeddedMaskZVR", "Table"};
  beginAt(2013.03);
  const std::vector<host::Method> current = allMethods();
  ASSERT_FALSE(current.empty());
  ASSERT_EQ(methods.size(), current.size());
  for (size_t i = 0; i < methods.size(); ++i) {
    SCOPED_TRACE(current[i].text);
    EXPECT_EQ(methods[i].text, current[i].text);
    EXPECT_EQ(methods[i].flags, GetParam().knowsFlags ? current[i].flags : 0u);
    EXPECT_EQ(methods[i].setter != nullptr, assignable.count(methods[i].declaration.name) > 0);
  }
  for (const host::Class& type : host::members().classes) {
    for (const host::Method& method : type.methods)
      EXPECT_EQ(method.flags, type.name == "PictureSepiaZVR" ? 0u : 4u) << method.text;
  }
}

TEST_P(RegistrationAt, PropertiesAsTheHostReadsThem) {
  constexpr uint32_t kComputed = 0xFFFFFFFF;  // has no place in the instance data
  // SourcePicture, DestinationPicture, MaxX, MinX, MaxY, MinY; then SepiaRed, Green, Blue and the factors.
  const std::vector<uint32_t> offsets[] = {
      {24, 28, 40, 32, 44, 36, 48, 52, 56, kComputed, kComputed, kComputed}, {0, 4, 16, 8, 20, 12}};
  for (size_t type : {0u, 1u}) {
    const std::vector<host::Property>& properties = host::members().classes.at(type).properties;
    ASSERT_EQ(properties.size(), offsets[type].size());
    for (size_t i = 0; i < properties.size(); ++i) {
      const uint32_t offset = offsets[type][i];
      SCOPED_TRACE(properties[i].name);
      EXPECT_EQ(properties[i].flags, type == 1 && GetParam().knowsFlags ? 4u : 0u);
      EXPECT_EQ(properties[i].offset, offset == kComputed ? 0 : offset);
      for (void* accessor : {properties[i].getter, properties[i].setter}) {
        EXPECT_EQ(accessor == kStoredProperty, offset != kComputed);
        EXPECT_TRUE(accessor);
      }
    }
  }
}

// The records are as they were written again, although registration changed them: in old layouts most of all.
TEST_P(RegistrationAt, ASecondEntryRegistersTheSame) {
  if (!GetParam().version) GTEST_SKIP() << "a host that tells no version is taken for the one before";
  const auto described = [] {
    std::vector<std::string> all;
    for (const host::Method& method : allMethods()) all.push_back(method.text + std::to_string(method.flags));
    for (const host::Class& type : host::members().classes) {
      for (const host::Property& property : type.properties)
        all.push_back(property.name + ' ' + property.type + std::to_string(property.flags));
    }
    return all;
  };
  const std::vector<std::string> first = described();
  host::Settings settings = settingsForRoad();
  for (const double version : {2013.03, *GetParam().version}) {
    settings.version = version;
    host::start(settings);
    const host::Plugin entered(ZVR_PLUGIN);
  }
  const std::vector<std::string> last = described();
  ASSERT_EQ(last.size(), first.size());
  for (size_t i = 0; i < first.size(); ++i) ASSERT_EQ(last[i], first[i]);
}

INSTANTIATE_TEST_SUITE_P(Hosts, RegistrationAt, ::testing::ValuesIn(kHosts),
                         [](const auto& host) { return std::string(host.param.name); });

// ---- Hosts that lack a service of registration ----

TEST_F(Registration, AMissingServiceCostsOnlyItsOwnMembers) {
  struct Counts {
    size_t classes, pictureMethods, globals;
  };
  const auto counts = [] {
    const host::Members& members = host::members();
    return Counts{members.classes.size(), members.pictureMethods.size(), members.globals.size()};
  };
  const Counts all = counts();
  ASSERT_TRUE(all.classes > 0 && all.pictureMethods > 0 && all.globals > 0);
  struct Case {
    const char* missing;
    size_t Counts::*lost;
  };
  for (const Case& c :
       {Case{"PluginRegisterClass", &Counts::classes},
        Case{"PluginRegisterClassExtension", &Counts::pictureMethods},
        Case{"PluginRegisterMethod", &Counts::globals}, Case{"RegisterPluginVersion", nullptr}}) {
    SCOPED_TRACE(c.missing);
    unloadPlugin();
    host::Settings settings = settingsForRoad();
    settings.version = 2011.0;  // a host that is told no version reads the old layout
    host::start(settings);
    host::removeEntryPoint(c.missing);
    {
      const host::Plugin plugin(ZVR_PLUGIN);
      for (const auto count : {&Counts::classes, &Counts::pictureMethods, &Counts::globals})
        EXPECT_EQ(counts().*count, count == c.lost ? 0 : all.*count);
      if (counts().pictureMethods > 0) {
        EXPECT_EQ(colorsOf(callPicture("InvertZVR", makePicture({2, 2, Rgb{0x102030}}))),
                  asWritten({2, 2, Rgb{0xEFDFCF}}));
      }
    }
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
  }
}

// ---- The kind of program ----

// The application class decides which way to the pixels is tried; without one, the way that works is taken.
TEST_F(Registration, ApplicationClassDecidesTheRoad) {
  struct Case {
    const char* applicationClass;
    bool cairoWorks, consoleWorks;
  };
  for (const Case& c : {Case{"Application", true, false}, Case{"WebApplication", false, true},
                        Case{"ConsoleApplication", false, true}, Case{"", true, true}}) {
    SCOPED_TRACE(c.applicationClass);
    host::Settings settings = settingsForRoad();
    settings.applicationClass = c.applicationClass;
    begin(settings);
    const bool works = road() == host::Road::console ? c.consoleWorks : c.cairoWorks;
    const auto expectResult = [&] {
      const auto result = callPicture("InvertZVR", makePicture({2, 2, Rgb{0}}));
      EXPECT_EQ(colorsOf(result), works ? asWritten({2, 2, Rgb{0xFFFFFF}}) : Pixels());
    };
    expectResult();
    EXPECT_GE(host::uses("pluginObjectType"), 3);
    // From the first picture on the program's kind is known: nobody asks again.
    host::clearFaults();
    expectResult();
    EXPECT_EQ(host::uses("pluginObjectType"), 0);
  }
}

}  // namespace
