// What the plug-in registers, as hosts of every version see it.

#include <cmath>
#include <limits>

#include "tests/support.h"

namespace {

// ---- The members, in the order in which hosts learn of them ----

enum Safety { kDesktop, kSafe };
enum Assignable { kReadOnly, kSetter };

struct Member {
  const char* declaration;
  Safety safety;
  Assignable assignable = kReadOnly;
};

const std::vector<Member> kPictureMethods = {
    {"ColornessZVR(threshold as integer = 10) as double", kDesktop},
    {"ScrollVerticalZVR(delta as integer, wrap as boolean, scrollmask as boolean) as boolean", kDesktop},
    {"ScrollHorizontalZVR(delta as integer, wrap as boolean, scrollmask as boolean) as boolean", kDesktop},
    {"ScrollZVR(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) as boolean",
     kDesktop},
    {"HasMaskZVR as boolean", kSafe},
    {"ChangeContrastBrightnessAbsoluteZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as "
     "double, BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as double) as picture",
     kSafe},
    {"ChangeContrastBrightnessLinearZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as "
     "double, BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as double) as picture",
     kSafe},
    {"ChangeContrastBrightnessAbsoluteZVR(Contrast as double, Brightness as double) as picture", kSafe},
    {"ChangeContrastBrightnessLinearZVR(Contrast as double, Brightness as double) as picture", kSafe},
    {"ChangeBrightnessAbsoluteZVR(BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as "
     "double) as picture",
     kSafe},
    {"ChangeBrightnessLinearZVR(BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as "
     "double) as picture",
     kSafe},
    {"ChangeBrightnessAbsoluteZVR(Brightness as double) as picture", kSafe},
    {"ChangeBrightnessLinearZVR(Brightness as double) as picture", kSafe},
    {"ChangeContrastZVR(Contrast as double) as picture", kSafe},
    {"ChangeContrastZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as double) as picture",
     kSafe},
    {"ChangeCustomZVR(a as double, b as double) as picture", kSafe},
    {"InvertZVR(left as integer,top as integer,width as integer,height as integer) as picture", kSafe},
    {"InvertZVR as picture", kSafe},
    {"InvertGrayZVR(left as integer,top as integer,width as integer,height as integer) as picture", kSafe},
    {"InvertGrayZVR as picture", kSafe},
    {"ExtractColorRectangleMaskZVR(left as integer,top as integer,width as integer,height as integer) as "
     "picture",
     kSafe},
    {"ExtractColorRectangleMaskZVR as picture", kSafe},
    {"EmbeddedMaskZVR(swap as boolean) as picture", kSafe, kSetter},
    {"CountColorZVR(col as color) as integer", kSafe},
    {"CountColorsZVR(byref red as memoryblock, byref blue as memoryblock, byref green as memoryblock, byref "
     "count as integer)",
     kDesktop},
    {"TransformColorsZVR(red as memoryblock, blue as memoryblock, green as memoryblock, dest as picture = "
     "nil) as picture",
     kDesktop},
    {"ReplaceColorZVR(SearchColor as color, ReplaceWithColor as color) as picture", kDesktop},
    {"ExtractColorZVR(SearchColor as color, ReplaceWithColor as color, BackGroundColor as color) as picture",
     kDesktop},
    {"ChangeSaturationZVR(Amount as integer) as picture", kSafe},
    {"ReplaceRedChannelZVR(RedChannel as picture) as picture", kSafe},
    {"ReplaceGreenChannelZVR(GreenChannel as picture) as picture", kSafe},
    {"ReplaceBlueChannelZVR(BlueChannel as picture) as picture", kSafe},
    {"FindPictureZVR(pic as picture, byref x as integer, byref y as integer) as boolean", kSafe},
    {"isWhiteZVR as boolean", kSafe},
    {"isWhiteZVR(left as integer,top as integer,width as integer,height as integer) as boolean", kSafe},
    {"isBlackZVR as boolean", kSafe},
    {"isBlackZVR(left as integer,top as integer,width as integer,height as integer) as boolean", kSafe},
    {"isGrayZVR(tolerance as integer = 0) as boolean", kSafe},
    {"isGrayZVR(tolerance as integer, left as integer,top as integer,width as integer,height as integer) as "
     "boolean",
     kSafe},
};

const std::vector<Member> kGlobals = {
    {"BinaryStringtoPictureZVR(data as String) as Picture", kSafe},
    {"PicturetoBinaryStringZVR(p as picture) as string", kSafe},
    {"CombinePicturesZVR(red as picture, blue as picture, green as picture) as picture", kSafe},
    {"MergePictureZVR(source1 as picture, source2 as picture) as picture", kSafe},
    {"TintPictureZVR(source as picture, GreyBase as color, SepiaBase as color) as picture", kSafe},
    {"RenderSamplesZVR(Samples as memoryblock, SampleCount as integer, Smooth as integer, Width as integer, "
     "Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, ForeColor as color=&c274C5A, "
     "OutLineColor as color=&c203F4E, Bits as Integer = 8, AutoScale as boolean = false) as Picture",
     kSafe},
};

const std::vector<Member> kLut3DMethods = {
    {"Close", kSafe},
    {"Run as boolean", kSafe},
    {"Table(r as UInt32, g as UInt32, b as UInt32, x as UInt32) as double", kSafe, kSetter},
};

const std::vector<Member> kSepiaMethods = {{"Close", kDesktop}, {"Run as boolean", kDesktop}};

// A property; computed ones have no place in the instance data.
constexpr int32_t kComputed = -1;
struct Field {
  const char *name, *type;
  int32_t offset;
};

const std::vector<Field> kLut3DFields = {
    {"SourcePicture", "Picture", 0}, {"DestinationPicture", "Picture", 4},
    {"MaxX", "Integer", 16},         {"MinX", "Integer", 8},
    {"MaxY", "Integer", 20},         {"MinY", "Integer", 12},
};

const std::vector<Field> kSepiaFields = {
    {"SourcePicture", "Picture", 24},
    {"DestinationPicture", "Picture", 28},
    {"MaxX", "Integer", 40},
    {"MinX", "Integer", 32},
    {"MaxY", "Integer", 44},
    {"MinY", "Integer", 36},
    {"SepiaRed", "Integer", 48},
    {"SepiaGreen", "Integer", 52},
    {"SepiaBlue", "Integer", 56},
    {"FactorRed", "Double", kComputed},
    {"FactorBlue", "Double", kComputed},
    {"FactorGreen", "Double", kComputed},
};

// ---- The records' bytes ----

// Steps from one record to the next, in words.
struct Layout {
  size_t method, property;
};
constexpr Layout kOldLayout{4, 10}, kCurrentLayout{6, 12};

const uint32_t* wordsAt(const void* address) { return static_cast<const uint32_t*>(address); }
const char* textAt(uint32_t word) { return reinterpret_cast<const char*>(uintptr_t{word}); }

uint32_t flagsOf(Safety safety, bool hostKnowsFlags) { return safety == kSafe && hostKnowsFlags ? 4 : 0; }

void expectMethod(const uint32_t* words, const Member& member, bool hostKnowsFlags, const Layout& layout) {
  SCOPED_TRACE(member.declaration);
  EXPECT_NE(words[0], 0u);
  EXPECT_EQ(words[1] != 0, member.assignable == kSetter);
  EXPECT_STREQ(textAt(words[2]), member.declaration);
  EXPECT_EQ(words[3], flagsOf(member.safety, hostKnowsFlags));
  for (size_t i = 4; i < layout.method; ++i) EXPECT_EQ(words[i], 0u);
}

void expectMethods(const REALclassDefinition& record, const std::vector<Member>& members, bool hostKnowsFlags,
                   const Layout& layout) {
  ASSERT_EQ(record.methodCount, static_cast<int32_t>(members.size()));
  for (size_t i = 0; i < members.size(); ++i)
    expectMethod(wordsAt(record.methods) + i * layout.method, members[i], hostKnowsFlags, layout);
}

void expectProperties(const REALclassDefinition& record, const std::vector<Field>& fields, uint32_t flags,
                      const Layout& layout) {
  ASSERT_EQ(record.propertyCount, static_cast<int32_t>(fields.size()));
  for (size_t i = 0; i < fields.size(); ++i) {
    SCOPED_TRACE(fields[i].name);
    const uint32_t* words = wordsAt(record.properties) + i * layout.property;
    EXPECT_EQ(words[0], 0u);
    EXPECT_STREQ(textAt(words[1]), fields[i].name);
    EXPECT_STREQ(textAt(words[2]), fields[i].type);
    EXPECT_EQ(words[3], flags);
    const bool stored = fields[i].offset != kComputed;
    for (uint32_t accessor : {words[4], words[5]}) {
      EXPECT_EQ(accessor == 0xFFFFFFFF, stored);
      EXPECT_NE(accessor, 0u);
    }
    EXPECT_EQ(words[6], stored ? static_cast<uint32_t>(fields[i].offset) : 0u);
    for (size_t w = 7; w < layout.property; ++w) EXPECT_EQ(words[w], 0u);
  }
}

// ---- Hosts ----

struct HostCase {
  const char* name;
  std::optional<double> version;
  int32_t controlVersion;
  bool knowsFlags;
};

const HostCase kHosts[] = {
    {"none", std::nullopt, 9, false}, {"2009", 2009, 9, false},
    {"2010_028", 2010.028, 9, false}, {"2010_029", 2010.029, 9, true},
    {"2011_0", 2011.0, 9, true},      {"2012_0", 2012.0, 10, true},
    {"2012_99", 2012.99, 10, true},   {"2013_0", 2013.0, 11, true},
    {"2013_02", 2013.02, 11, true},   {"2013_03", 2013.03, 12, true},
    {"2019", 2019, 12, true},         {"not_a_number", std::numeric_limits<double>::quiet_NaN(), 9, false},
};

class Registration : public HostTest {
 protected:
  void beginAt(std::optional<double> version) {
    host::Settings settings = settingsForRoad();
    settings.version = version;
    begin(settings);
  }
  // The record behind a line of the journal.
  static const REALclassDefinition& recordOf(size_t line) {
    return *static_cast<const REALclassDefinition*>(host::members().journal.at(line).record);
  }
};

class RegistrationAt : public Registration, public ::testing::WithParamInterface<HostCase> {
 protected:
  void SetUp() override { beginAt(GetParam().version); }
};

TEST_P(RegistrationAt, TellsVersionsAndKeepsTheOrder) {
  EXPECT_EQ(host::members().controlVersion, GetParam().controlVersion);
  struct Line {
    const char *entryPoint, *name;
    bool hasVersion;
  };
  const std::vector<Line> expected = {
      {"PluginRegisterClass", "PictureSepiaZVR", true},
      {"PluginRegisterClass", "PictureLut3DZVR", true},
      {"PluginRegisterClassExtension", "Picture", true},
      {"PluginRegisterMethod", "BinaryStringtoPictureZVR", false},
      {"PluginRegisterMethod", "PicturetoBinaryStringZVR", false},
      {"PluginRegisterMethod", "CombinePicturesZVR", false},
      {"PluginRegisterMethod", "MergePictureZVR", false},
      {"PluginRegisterMethod", "TintPictureZVR", false},
      {"PluginRegisterMethod", "RenderSamplesZVR", false},
  };
  const auto& journal = host::members().journal;
  ASSERT_EQ(journal.size(), expected.size());
  for (size_t i = 0; i < journal.size(); ++i) {
    EXPECT_EQ(journal[i].entryPoint, expected[i].entryPoint);
    EXPECT_EQ(journal[i].name, expected[i].name);
    EXPECT_EQ(journal[i].version, expected[i].hasVersion ? GetParam().controlVersion : 0);
  }
}

TEST_P(RegistrationAt, EveryRecordIsInTheHostsLayout) {
  const bool flags = GetParam().knowsFlags;
  const Layout& layout = GetParam().controlVersion > 9 ? kCurrentLayout : kOldLayout;

  const REALclassDefinition& sepia = recordOf(0);
  expectMethods(sepia, kSepiaMethods, flags, layout);
  expectProperties(sepia, kSepiaFields, 0, layout);
  const REALclassDefinition& lut = recordOf(1);
  expectMethods(lut, kLut3DMethods, flags, layout);
  expectProperties(lut, kLut3DFields, flagsOf(kSafe, flags), layout);
  const REALclassDefinition& extension = recordOf(2);
  expectMethods(extension, kPictureMethods, flags, layout);

  struct ClassCase {
    const REALclassDefinition& record;
    const char* name;
    int32_t dataSize;
    uint32_t flags;  // set in the tables themselves, so every host gets them
    bool isClass;
  };
  for (const ClassCase& c :
       {ClassCase{sepia, "PictureSepiaZVR", 64, 0, true}, ClassCase{lut, "PictureLut3DZVR", 140000, 4, true},
        ClassCase{extension, "Picture", 0, 4, false}}) {
    SCOPED_TRACE(c.name);
    const uint32_t* words = wordsAt(&c.record);
    EXPECT_EQ(words[0], static_cast<uint32_t>(GetParam().controlVersion));
    EXPECT_STREQ(textAt(words[1]), c.name);
    EXPECT_EQ(words[2], 0u);
    EXPECT_EQ(words[3], static_cast<uint32_t>(c.dataSize));
    EXPECT_EQ(words[4], 0u);
    EXPECT_EQ(words[5] != 0, c.isClass);
    EXPECT_EQ(words[6] != 0, c.isClass);
    EXPECT_EQ(words[7] != 0, c.isClass);
    for (size_t i = 11; i < 20; ++i) EXPECT_EQ(words[i], 0u) << "word " << i;
    EXPECT_EQ(words[20], c.flags);
    for (size_t i = 21; i < 25; ++i) EXPECT_EQ(words[i], 0u) << "word " << i;
    // The method named Close is the destructor.
    if (c.isClass) {
      EXPECT_EQ(wordsAt(c.record.methods)[0], words[6]);
    }
  }
}

TEST_P(RegistrationAt, GlobalMethodsAreRecordsOfTheirOwn) {
  // One record each, so that their layout never changes.
  for (size_t i = 0; i < kGlobals.size(); ++i) {
    const auto* words = wordsAt(host::members().journal.at(3 + i).record);
    expectMethod(words, kGlobals[i], GetParam().knowsFlags, kCurrentLayout);
  }
}

// What this host made of the records: the same members whatever the layout.
TEST_P(RegistrationAt, TheHostUnderstandsEveryMember) {
  const auto declarations = [](const std::vector<host::Method>& methods) {
    std::vector<std::string> texts;
    for (const host::Method& method : methods) texts.push_back(method.text);
    return texts;
  };
  const auto expected = [](const std::vector<Member>& members) {
    std::vector<std::string> texts;
    for (const Member& member : members) texts.push_back(member.declaration);
    return texts;
  };
  EXPECT_EQ(declarations(host::members().pictureMethods), expected(kPictureMethods));
  EXPECT_EQ(declarations(host::members().globals), expected(kGlobals));
  ASSERT_EQ(host::members().classes.size(), 2u);
  EXPECT_EQ(declarations(host::members().classes[0].methods), expected(kSepiaMethods));
  EXPECT_EQ(declarations(host::members().classes[1].methods), expected(kLut3DMethods));
}

INSTANTIATE_TEST_SUITE_P(Hosts, RegistrationAt, ::testing::ValuesIn(kHosts),
                         [](const auto& host) { return std::string(host.param.name); });

// The weight of green is called FactorBlue, and the other way round, in the record and in what it does.
TEST_F(Registration, FactorsOfGreenAndBlueAreCrossed) {
  const auto object = host::newInstance("PictureSepiaZVR");
  const auto* weights = reinterpret_cast<const double*>(host::instanceData(object.get()));
  struct Case {
    const char* property;
    size_t field;
    double initial;
  };
  const Case cases[] = {{"FactorRed", 0, 0.299}, {"FactorBlue", 1, 0.587}, {"FactorGreen", 2, 0.114}};
  for (const Case& c : cases) {
    EXPECT_EQ(std::get<double>(host::getProperty(object.get(), c.property)), c.initial) << c.property;
    host::setProperty(object.get(), c.property, host::Value(2.5));
    for (const Case& other : cases) {
      EXPECT_EQ(weights[other.field], other.field == c.field ? 2.5 : other.initial) << c.property;
    }
    host::setProperty(object.get(), c.property, host::Value(c.initial));
  }
}

// ---- Hosts that lack a service of registration ----

TEST_F(Registration, AMissingServiceCostsItsOwnMembersAlone) {
  struct Case {
    const char* missing;
    size_t classes, pictureMethods, globals;
  };
  for (const Case& c : {Case{"PluginRegisterClass", 0, 39, 6}, Case{"PluginRegisterClassExtension", 2, 0, 6},
                        Case{"PluginRegisterMethod", 2, 39, 0}, Case{"RegisterPluginVersion", 2, 39, 6}}) {
    SCOPED_TRACE(c.missing);
    unloadPlugin();
    host::Settings settings = settingsForRoad();
    settings.version = 2011.0;  // a host that is told no version reads the old layout
    host::start(settings);
    host::removeEntryPoint(c.missing);
    {
      const host::Plugin plugin(ZVR_PLUGIN);
      EXPECT_EQ(host::members().classes.size(), c.classes);
      EXPECT_EQ(host::members().pictureMethods.size(), c.pictureMethods);
      EXPECT_EQ(host::members().globals.size(), c.globals);
      if (c.pictureMethods > 0) {
        EXPECT_EQ(colorsOf(callPicture("InvertZVR", makePicture({2, 2, Rgb{0x102030}}))),
                  asWritten({2, 2, Rgb{0xEFDFCF}}));
      }
    }
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
  }
}

// ---- The kind of program ----

// The application class decides which way to the pixels is tried; without one, what works does.
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
