// Hosts and pictures that are odd, each with the answer that is promised. test_odd_pictures has all oddities
// with all members, and only asks that nothing breaks.

#include <dlfcn.h>

#include <cmath>

#include "host/shims/shims.h"
#include "tests/models.h"
#include "tests/support.h"

namespace {

using Spoil = std::function<void(Scene&)>;

// Makes the nth picture of a call odd.
Spoil odd(size_t picture, const std::function<void(host::PictureOddities&)>& change) {
  return [=](Scene& scene) { change(host::oddities(scene.pictures().at(picture).get())); };
}
Spoil unlockable(size_t picture) {
  return odd(picture, [](host::PictureOddities& o) { o.refusesLock = o.copiesRefuseToo = true; });
}
Spoil readThroughACopy(size_t picture) {
  return odd(picture, [](host::PictureOddities& o) { o.refusesLock = true; });
}
// Pictures without pixels; only bitmaps can be so.
Spoil empty(size_t picture) {
  return odd(picture, [](host::PictureOddities& o) { o.describedWidth = 0; });
}

class Hosts : public HostTest {
 protected:
  // What a case line's call leaves behind.
  static Outcome outcomeOf(const std::string& line, const Spoil& spoil = {}) {
    Scene scene(parsedCall(splitWords(line)));
    if (spoil) spoil(scene);
    host::clearFaults();
    scene.run();
    return scene.outcome();
  }
  static Value answer(const std::string& line, const Spoil& spoil = {}) {
    return outcomeOf(line, spoil).result;
  }
  // The same with what is expected when nothing is odd.
  static Outcome promisedFor(const std::string& line) {
    return promised(parsedCall(splitWords(line))).value();
  }
  static void expectPromise(const std::string& line, const Spoil& spoil = {}) {
    EXPECT_EQ(difference(promisedFor(line), outcomeOf(line, spoil)), "") << line;
  }
};

// ---- The roads to pixels ----

TEST_F(Hosts, PixbufsAreReleased) {
  if (!isGdk()) GTEST_SKIP();
  // The stand-in that this program's plug-in meets instead of the real library.
  void* library = dlopen("libgdk-x11-2.0.so", RTLD_NOW);
  ASSERT_TRUE(library) << dlerror();
  const GdkShim& gdk = *reinterpret_cast<GdkShim* (*)()>(dlsym(library, "gdkShim"))();
  expectPromise("InvertZVR 13x5");
  EXPECT_GE(gdk.drawableReads, 2) << "the source's and the new picture's";
  EXPECT_EQ(gdk.livePixbufs, 0);
}

// With alpha the description stays locked, on purpose; without it does not.
TEST_F(Hosts, RefusedSurfaces) {
  if (road() != host::Road::cairo) GTEST_SKIP();
  const Spoil withoutSurface = odd(0, [](host::PictureOddities& o) { o.nullHandle = true; });
  EXPECT_TRUE(isNil(answer("InvertZVR 13x5", withoutSurface)));
  EXPECT_EQ(host::held().errors, 0);
  EXPECT_TRUE(isNil(answer("InvertZVR 13x5+alpha", withoutSurface)));
  leaves.errors = 1;  // the picture died locked
}

TEST_F(Hosts, UnlockablePicturesAreReadThroughACopy) {
  if (isConsole()) {
    EXPECT_TRUE(isNil(answer("InvertZVR 13x5", readThroughACopy(0)))) << "the console road has no copies";
  } else {
    expectPromise("InvertZVR 13x5", readThroughACopy(0));
  }
  EXPECT_TRUE(isNil(answer("InvertZVR 13x5", unlockable(0)))) << "a copy is not copied again";
}

// The road that a process has taken once is the only one from then on.
TEST_F(Hosts, TheOtherFamilyIsNeverAskedAgain) {
  expectPromise("InvertZVR 13x5");
  EXPECT_TRUE(isNil(answer("InvertZVR 13x5", unlockable(0))));
  // A desktop process asks for a surface and a drawable, of the picture and of its copy; a console one for a
  // bitmap.
  EXPECT_EQ(host::uses("REALLockPictureDescription"), isConsole() ? 1 : 4);
}

TEST_F(Hosts, OldHostsGetTheirHalfTakenLocksBack) {
  for (const double version : {2011.5, 2012.0}) {
    beginAt(version);
    EXPECT_TRUE(isNil(answer("InvertZVR 13x5", unlockable(0))));
    EXPECT_EQ(host::held(), host::Ledger()) << version;
    expectPromise("BinaryStringtoPictureZVR x505049430000001E00000001000000020000002000000018102030405060");
  }
}

// The host draws a picture from its cache until it is told that the pixels changed.
TEST_F(Hosts, TheCachedRenderingIsDropped) {
  expectPromise("InvertZVR 13x5");
  EXPECT_GE(host::uses("REALPictureClearCache"), 1);
  if (isGdk()) return;
  expectPromise("ScrollHorizontalZVR 3x3 0 false false");
  EXPECT_EQ(host::uses("REALPictureClearCache"), 0);
  expectPromise("ScrollHorizontalZVR 3x3 1 false false");
  EXPECT_EQ(host::uses("REALPictureClearCache"), 1);
  expectPromise("EmbeddedMaskZVR 3x3 false = 3x3");
  EXPECT_EQ(host::uses("REALPictureClearCache"), 0) << "opened for reading, on purpose";
}

TEST_F(Hosts, MergingLooksForNilBeforeItOpensAPicture) {
  EXPECT_TRUE(isNil(answer("MergePictureZVR 3x3 nil")));
  EXPECT_EQ(host::uses("REALLockPictureDescription"), 0);
}

// ---- Scrolling ----

TEST_F(Hosts, PicturesThatCanNotBeScrolledAreDoneSidewaysAndFailUpAndDown) {
  const Outcome sideways = outcomeOf("ScrollHorizontalZVR 6x5 1 true false", unlockable(0));
  EXPECT_EQ(sideways.result, Value(true));
  EXPECT_EQ(sideways.arguments[0], Value(asHeld(Random(605).words(6, 5)))) << "unchanged";
  EXPECT_EQ(answer("ScrollVerticalZVR 6x5 1 true false", unlockable(0)), Value(false));
  EXPECT_EQ(answer("ScrollVerticalZVR 6x5 0 true false", unlockable(0)), Value(true));
  if (!isConsole()) return;
  EXPECT_EQ(answer("ScrollHorizontalZVR 3x3 1 true false", empty(0)), Value(true));
  EXPECT_EQ(answer("ScrollVerticalZVR 3x3 1 true false", empty(0)), Value(false));
}

// A mask that can't be scrolled counts as done sideways, and ends the call up and down.
TEST_F(Hosts, MasksThatCanNotBeScrolled) {
  if (isGdk()) GTEST_SKIP();
  const Value before = pixelsOf(pictureOf(Random(605).words(6, 5)).get());
  const auto colors = [](const Value& picture) { return std::get<Pixels>(picture).colors; };
  const Outcome upright = outcomeOf("ScrollVerticalZVR 6x5+mask 1 true true", unlockable(1));
  EXPECT_EQ(upright.result, Value(false));
  EXPECT_EQ(colors(upright.arguments[0]), colors(before));
  EXPECT_EQ(answer("ScrollVerticalZVR 6x5+mask 0 true true", unlockable(1)), Value(true))
      << "need not be opened";
  const std::vector<uint32_t> moved =
      colors(promisedFor("ScrollHorizontalZVR 6x5 1 true false").arguments[0]);
  const Outcome sideways = outcomeOf("ScrollHorizontalZVR 6x5+mask 1 true true", unlockable(1));
  EXPECT_EQ(sideways.result, Value(true));
  EXPECT_EQ(colors(sideways.arguments[0]), moved);
  const Outcome both = outcomeOf("ScrollZVR 6x5+mask 1 1 true true", unlockable(1));
  EXPECT_EQ(both.result, Value(false));
  EXPECT_EQ(colors(both.arguments[0]), moved) << "only sideways";
}

// ---- Blocks ----

// A size of 0 is 0; only a host that can't tell sizes is trusted.
TEST_F(Hosts, BlocksOfUnknownSizeAreTrusted) {
  const std::string count = "CountColorsZVR 000005 nil nil 1024+0 0",
                    none = "CountColorsZVR 000005 nil nil x 0",
                    wave = "RenderSamplesZVR 300+7 150 1 20 60 0 &c000000 &cFFFFFF &c000000 15 false",
                    table = "TransformColorsZVR 0A0B0C 256+1 256+1 256+1";
  for (const bool tellsSizes : {true, false}) {
    begin(settingsForRoad());
    const auto withoutSizes = [&](const std::string& line) {
      Scene scene(parsedCall(splitWords(line)));
      scene.reportNoSizes();
      if (!tellsSizes) host::removeEntryPoint("memoryBlockGetSize");
      scene.run();
      host::clearFaults();
      return scene.outcome();
    };
    EXPECT_EQ(
        withoutSizes(count).arguments[3],
        (tellsSizes ? outcomeOf("CountColorsZVR nil nil nil 1024+0 0") : promisedFor(count)).arguments[3]);
    const Value drawn = withoutSizes(wave).result, darkened = withoutSizes(table).result;
    if (tellsSizes) {
      EXPECT_EQ(darkened, Value(asWritten(Pixels(1, 2, opaqueTopByte() << 24))));
      EXPECT_NE(drawn, promisedFor(wave).result);
    } else {
      EXPECT_EQ(difference(promisedFor(table), {promisedFor(table).arguments, darkened, {}}), "");
      EXPECT_EQ(drawn, promisedFor(wave).result);
    }
  }
}

TEST_F(Hosts, BlocksThatFail) {
  const auto failing = [](const std::string& line, const char* service, int nth) {
    Scene scene(parsedCall(splitWords(line)));
    host::clearFaults();
    host::failAt(service, nth);
    scene.run();
    return scene.outcome();
  };
  const Outcome counted = failing("CountColorsZVR 000005 nil nil nil 0", "memoryBlockGetPtr", 2);
  EXPECT_EQ(counted.arguments[4], Value(int64_t{2}));
  EXPECT_EQ(counted.arguments[2], Value(Bytes(1024))) << "left alone";
  EXPECT_EQ(std::get<Bytes>(counted.arguments[3])[20], 2);
  const Outcome missing = failing("CountColorsZVR 000005 nil nil nil 0", "newMemoryBlock", 2);
  EXPECT_EQ(missing.arguments[4], Value(int64_t{-1}));
  EXPECT_TRUE(isNil(missing.arguments[2]));
  EXPECT_FALSE(isNil(missing.arguments[1]) || isNil(missing.arguments[3]))
      << "the others are made all the same";
  EXPECT_TRUE(isNil(failing("TransformColorsZVR 0A0B0C 256+1 256+1 256+1", "memoryBlockGetPtr", 3).result));
}

TEST_F(Hosts, OneBlockMayTakeAllHistograms) {
  const auto picture = makePicture({1, 2, Rgb{0x050505}});
  const auto block = host::newMemoryBlock(Bytes(1024).data(), 1024);
  const host::Outcome outcome = call("CountColorsZVR", picture.get(), {block, block, block, int64_t{0}});
  EXPECT_EQ(host::memoryBlockBytes(block.get())[20], 6);
  EXPECT_EQ(host::references(block.get()), 4) << "ours, and one in each answer";
}

// ---- Pictures ----

TEST_F(Hosts, PicturesWithoutPixels) {
  if (!isConsole()) GTEST_SKIP() << "the others have none";
  EXPECT_TRUE(std::isnan(std::get<double>(answer("ColornessZVR 3x3:FFFFFF", empty(0)))));
  EXPECT_EQ(answer("isBlackZVR 3x3:FFFFFF", empty(0)), Value(true));
  EXPECT_EQ(answer("FindPictureZVR 3x3 3x3 0 0", empty(1)), Value(false));
  EXPECT_EQ(answer("PicturetoBinaryStringZVR 3x3", empty(0)), Value(encoded(Pixels(0, 3, Rgb{0}))));
}

TEST_F(Hosts, AStringOfAPictureHasNoEncoding) {
  const host::Outcome outcome = call("PicturetoBinaryStringZVR", nullptr, {makePicture({1, 1, Rgb{0}})});
  EXPECT_EQ(host::stringEncoding(std::get<host::StringRef>(outcome.result).get()), uint32_t{kEncodingNone});
}

// A host may leave the places out.
TEST_F(Hosts, FindsWithoutTellingWhere) {
  using Find = RBBoolean(REALpictureStruct*, REALpictureStruct*, int32_t*, int32_t*);
  auto* find = reinterpret_cast<Find*>(host::findMethods("FindPictureZVR").at(0)->function);
  const auto picture = makePicture({6, 6, Rgb{0x102030}});
  EXPECT_TRUE(find(picture.get(), picture.get(), nullptr, nullptr));
}

// Only part of so large a needle is sampled for its rarest pixel.
TEST_F(Hosts, FindsALargePicture) {
  if (isGdk()) GTEST_SKIP() << "the same code, and slow through the X server";
  Pixels picture(1200, 700, Rgb{0xFFFFFF}), needle(700, 555, Rgb{0xFFFFFF});
  picture.at(600, 401) = picture.at(900, 650) = needle.at(300, 300) = needle.at(600, 549) = 0;
  const auto outcome =
      call("FindPictureZVR", makePicture(picture).get(), {makePicture(needle), int64_t{}, int64_t{}});
  EXPECT_EQ(std::get<int64_t>(outcome.arguments[1]), 300);
  EXPECT_EQ(std::get<int64_t>(outcome.arguments[2]), 101);
}

// A picture may be its own target, channel or part.
TEST_F(Hosts, PicturesThatAreUsedTwice) {
  const Pixels source = Random(1).pixels(8, 5);
  const auto picture = makePicture(source);
  EXPECT_EQ(colorsOf(callPicture("ReplaceRedChannelZVR", picture, {picture})), asWritten(source));
  EXPECT_EQ(colorsOf(callPicture("MergePictureZVR", {}, {picture, picture})), asWritten(source));
  Bytes inverse(256);
  for (size_t i = 0; i < 256; ++i) inverse[i] = static_cast<uint8_t>(255 - i);
  const auto table = host::newMemoryBlock(inverse.data(), inverse.size());
  const auto result = callPicture("TransformColorsZVR", picture, {table, table, table, picture});
  EXPECT_EQ(result.get() == picture.get(), !isGdk());
  EXPECT_EQ(colorsOf(result).at(3, 2), source.at(3, 2) ^ 0xFFFFFF);
}

// A smaller mask is walked at the picture's size: it starts over at its row 0, and past its last byte counts
// as black.
TEST_F(Hosts, SmallerMasksAreNotRefused) {
  if (isGdk()) GTEST_SKIP() << "nothing can be written in place there";
  host::Settings settings = settingsForRoad();
  settings.rowPadding = 0;
  begin(settings);
  const Outcome outcome = outcomeOf("EmbeddedMaskZVR 3x3:111111 false = 010000,020000/030000,040000");
  // On the cairo road the next row lies behind a row; on the console road each row is a block of its own.
  const Rgb third = isConsole() ? 0x111100 : 0x111103;
  EXPECT_EQ(std::get<Pixels>(outcome.arguments[0]).colors,
            (std::vector<uint32_t>{0x111101, 0x111102, third,     //
                                   0x111103, 0x111104, 0x111100,  //
                                   0x111101, 0x111102, third}));
}

TEST_F(Hosts, WithoutGraphicsAWideOutlineIsLeftOut) {
  const std::string start = "RenderSamplesZVR 300+7 0 1 30 40 ", end = " &c000000 &cFFFFFF &c0000FF 8 false";
  const Value plain = answer(start + "0" + end);
  host::removeEntryPoint("pluginPictureGraphicsGetter");
  Scene scene(parsedCall(splitWords(start + "3" + end)));
  scene.run();
  EXPECT_EQ(scene.outcome().result, plain);
}

}  // namespace
