// Effects of a call on the host beside its answer: locks, caches; and calls that share their arguments.

#include "tests/calls.h"
#include "tests/support.h"

namespace {

class Hosts : public HostTest {
 protected:
  // Makes the call of a case line, and tells how often a service was used.
  static int uses(const std::string& service, const std::string& line) {
    Scene scene(parsedCall(splitWords(line)));
    host::clearFaults();
    scene.run();
    return host::uses(service);
  }
};

// With alpha the description stays locked, on purpose; without it does not.
TEST_F(Hosts, RefusedSurfaces) {
  if (road() != host::Road::cairo) GTEST_SKIP();
  for (const bool alpha : {false, true}) {
    Pixels pixels(13, 5, Rgb{1});
    pixels.alpha = alpha;
    const auto picture = pictureOf(pixels);
    host::oddities(picture.get()).nullHandle = true;
    EXPECT_FALSE(callPicture("InvertZVR", picture));
    EXPECT_EQ(host::held().descriptionLocks, alpha ? 1 : 0);
  }
  leaves.errors = 1;  // the picture with alpha died locked
}

// The road that a process has taken once is the only one from then on.
TEST_F(Hosts, TheOtherFamilyIsNeverAskedAgain) {
  const auto picture = pictureOf({13, 5, Rgb{1}});
  EXPECT_TRUE(callPicture("InvertZVR", picture));
  host::oddities(picture.get()).refusesLock = host::oddities(picture.get()).copiesRefuseToo = true;
  host::clearFaults();
  EXPECT_FALSE(callPicture("InvertZVR", picture));
  // A desktop process asks for a surface and a drawable, of the picture and of its copy; a console one for a
  // bitmap.
  EXPECT_EQ(host::uses("REALLockPictureDescription"), isConsole() ? 1 : 4);
}

// The host draws a picture from its cache until it is told that the pixels changed.
TEST_F(Hosts, TheCachedRenderingIsDropped) {
  EXPECT_GE(uses("REALPictureClearCache", "InvertZVR 13x5"), 1);
  if (isGdk()) return;
  EXPECT_EQ(uses("REALPictureClearCache", "ScrollHorizontalZVR 3x3 0 false false"), 0);
  EXPECT_EQ(uses("REALPictureClearCache", "ScrollHorizontalZVR 3x3 1 false false"), 1);
  EXPECT_EQ(uses("REALPictureClearCache", "EmbeddedMaskZVR 3x3 false = 3x3"), 0) << "only read, on purpose";
}

TEST_F(Hosts, MergingLooksForNilBeforeItOpensAPicture) {
  EXPECT_EQ(uses("REALLockPictureDescription", "MergePictureZVR 3x3 nil"), 0);
}

TEST_F(Hosts, AStringOfAPictureHasNoEncoding) {
  const host::Outcome outcome = call("PicturetoBinaryStringZVR", nullptr, {pictureOf({1, 1, Rgb{0}})});
  EXPECT_EQ(host::stringEncoding(std::get<host::StringRef>(outcome.result).get()), uint32_t{kEncodingNone});
}

// A host may leave the places out.
TEST_F(Hosts, FindsWithoutTellingWhere) {
  using Find = RBBoolean(REALpictureStruct*, REALpictureStruct*, int32_t*, int32_t*);
  auto* find = reinterpret_cast<Find*>(host::findMethods("FindPictureZVR").at(0)->function);
  const auto picture = pictureOf({6, 6, Rgb{0x102030}});
  EXPECT_TRUE(find(picture.get(), picture.get(), nullptr, nullptr));
}

// A picture may be its own target, channel or part.
TEST_F(Hosts, PicturesThatAreUsedTwice) {
  const Pixels source = Random(1).pixels(8, 5);
  const auto picture = pictureOf(source);
  EXPECT_EQ(colorsOf(callPicture("ReplaceRedChannelZVR", picture, {picture})), asWritten(source));
  EXPECT_EQ(colorsOf(callPicture("MergePictureZVR", {}, {picture, picture})), asWritten(source));
  Bytes inverse(256);
  for (size_t i = 0; i < 256; ++i) inverse[i] = static_cast<uint8_t>(255 - i);
  const auto table = host::newMemoryBlock(inverse.data(), inverse.size());
  const auto result = callPicture("TransformColorsZVR", picture, {table, table, table, picture});
  EXPECT_EQ(result.get() == picture.get(), !isGdk());
  EXPECT_EQ(colorsOf(result).at(3, 2), source.at(3, 2) ^ 0xFFFFFF);
}

// ---- Instances ----

TEST_F(Hosts, TheTableOfAClassHasBounds) {
  const host::ObjectRef lut = host::newInstance("PictureLut3DZVR");
  const host::Method& element = host::members().classes.at(1).methods.at(2);
  const auto* table = reinterpret_cast<const double*>(host::instanceData(lut.get()) + kTableOffset);
  using Place = std::vector<host::Value>;
  host::assign(element, lut.get(), Place{1, 2, 17, 2}, 4.5);
  EXPECT_EQ(table[tableIndex(1, 2, 17) + 2], 4.5);
  for (const Place& place : {Place{18, 0, 0, 0}, Place{0, 18, 0, 0}, Place{0, 0, 18, 0}, Place{0, 0, 0, 3},
                             Place{0xFFFFFFFF, 0, 0, 0}}) {
    host::assign(element, lut.get(), place, 7.0);
    EXPECT_EQ(std::get<double>(host::call(element, lut.get(), place).result), 0);
  }
  EXPECT_EQ(std::count(table, table + kTableEntries * 3, 0.0), kTableEntries * 3 - 1) << "0 at first";
}

TEST_F(Hosts, ToningKeepsNoOldDestination) {
  const host::ObjectRef sepia = host::newInstance("PictureSepiaZVR");
  for (const auto& [factor, weight] :
       {std::pair("FactorRed", 0.299), {"FactorBlue", 0.587}, {"FactorGreen", 0.114}}) {
    EXPECT_EQ(std::get<double>(host::getProperty(sepia.get(), factor)), weight) << "at first";
    host::failAt("PluginGetPluginData", 1);
    EXPECT_EQ(std::get<double>(host::getProperty(sepia.get(), factor)), 0) << "no data, no weight";
  }
  const auto old = pictureOf({3, 2, Rgb{1}});
  for (const char* property : {"SourcePicture", "DestinationPicture"})
    host::setProperty(sepia.get(), property, old);
  host::call(host::members().classes.at(0).methods.at(1), sepia.get(), {});
  EXPECT_EQ(host::references(old.get()), 3) << "ours, the source, and one that is lost on purpose";
  leaves.objects = 1;
}

}  // namespace
