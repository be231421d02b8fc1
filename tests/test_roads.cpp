// The roads to a picture's pixels: what each accepts and refuses, what is locked and released, what is
// written.

#include <dlfcn.h>

#include "host/shims/shims.h"
#include "tests/support.h"

namespace {

using host::oddities;

// The stand-in that this program's plug-in meets instead of the real library.
template <typename Shim>
Shim& shimOf(const char* library, const char* function) {
  void* handle = dlopen(library, RTLD_NOW);
  if (!handle) throw std::runtime_error(dlerror());
  return *reinterpret_cast<Shim* (*)()>(dlsym(handle, function))();
}
GdkShim& gdk() { return shimOf<GdkShim>("libgdk-x11-2.0.so", "gdkShim"); }
CairoShim& cairo() { return shimOf<CairoShim>("libcairo.so", "cairoShim"); }

bool isCairo() { return road() == host::Road::cairo; }
bool isGdk() { return road() == host::Road::gdk; }
bool isConsole() { return road() == host::Road::console; }

class Roads : public HostTest {
 protected:
  const Pixels source_ = Random(7).pixels(13, 5);
  bool inverts(const host::PictureRef& picture) {
    return static_cast<bool>(callPicture("InvertZVR", picture));
  }
};

TEST_F(Roads, PixbufsAreReleased) {
  if (!isGdk()) GTEST_SKIP();
  const auto picture = makePicture(source_);
  EXPECT_TRUE(inverts(picture));
  EXPECT_GE(gdk().drawableReads, 2) << "the source's and the new picture's";
  EXPECT_EQ(gdk().livePixbufs, 0);
}

TEST_F(Roads, RefusedPixbufs) {
  if (!isGdk()) GTEST_SKIP();
  const auto picture = makePicture(source_);
  gdk().refusesDrawable = true;
  EXPECT_FALSE(inverts(picture));
  gdk().refusesDrawable = false;
  EXPECT_EQ(gdk().livePixbufs, 0);
  gdk().hidesPixels = true;
  EXPECT_FALSE(inverts(picture));
  gdk().hidesPixels = false;
  EXPECT_EQ(gdk().livePixbufs, 1) << "a pixbuf without pixels is lost, on purpose";
  gdk().livePixbufs = 0;
  EXPECT_TRUE(inverts(picture));
}

TEST_F(Roads, RefusedSurfaces) {
  if (!isCairo()) GTEST_SKIP();
  for (bool alpha : {false, true}) {
    const auto picture = makePicture(source_, alpha);
    int locked = 0;
    for (bool CairoShim::*fault : {&CairoShim::hidesTarget, &CairoShim::hidesData, &CairoShim::zeroWidth,
                                   &CairoShim::zeroHeight, &CairoShim::zeroStride}) {
      cairo().*fault = true;
      EXPECT_FALSE(inverts(picture));
      cairo().*fault = false;
      // With alpha each failure leaves the description locked, on purpose; without it none does.
      locked += alpha ? 1 : 0;
      EXPECT_EQ(host::held().descriptionLocks, locked);
    }
    EXPECT_TRUE(inverts(picture));
  }
  leaves.errors = 1;  // the picture with alpha died locked
}

// Descriptions that are not what was asked for.
TEST_F(Roads, RefusedDescriptions) {
  struct Case {
    const char* what;
    void (*spoil)(host::PictureOddities&);
    bool consoleOnly;
  };
  const Case cases[] = {
      {"null handle", [](host::PictureOddities& o) { o.nullHandle = true; }, false},
      {"another type", [](host::PictureOddities& o) { o.reportedType = 5; }, false},
      {"another kind of bitmap", [](host::PictureOddities& o) { o.bitmapKind = 1; }, true},
      {"no row table", [](host::PictureOddities& o) { o.noRowTable = true; }, true},
      {"no required word", [](host::PictureOddities& o) { o.noRequired = true; }, true},
  };
  for (const Case& c : cases) {
    if (c.consoleOnly && !isConsole()) continue;
    const auto picture = makePicture(source_);
    c.spoil(oddities(picture.get()));
    EXPECT_FALSE(inverts(picture)) << c.what;
    EXPECT_EQ(host::held().descriptionLocks, 0) << c.what;
    EXPECT_EQ(host::references(picture.get()), 1) << c.what;
  }
}

TEST_F(Roads, UnlockablePicturesAreReadThroughACopy) {
  const auto picture = makePicture(source_);
  oddities(picture.get()).refusesLock = true;
  Pixels inverted = source_;
  for (Rgb& color : inverted.colors) color ^= 0xFFFFFF;
  const auto result = callPicture("InvertZVR", picture);
  if (isConsole()) {
    EXPECT_FALSE(result) << "the console road has no copies";
  } else {
    EXPECT_EQ(colorsOf(result), asWritten(inverted));
  }
  oddities(picture.get()).copiesRefuseToo = true;
  EXPECT_FALSE(inverts(picture)) << "a copy is not copied again";
}

TEST_F(Roads, PicturesWithoutGraphicsOrSizeAreNotCopied) {
  if (isConsole()) GTEST_SKIP();
  const auto picture = makePicture(source_);
  oddities(picture.get()).refusesLock = true;
  oddities(picture.get()).hidesSize = true;
  EXPECT_FALSE(inverts(picture));
}

// The road that a process has taken once is the only one from then on.
TEST_F(Roads, TheOtherFamilyIsNeverAskedAgain) {
  const auto picture = makePicture(source_);
  EXPECT_TRUE(inverts(picture));
  const auto stranger = makePicture(source_);
  oddities(stranger.get()).refusesLock = true;
  oddities(stranger.get()).copiesRefuseToo = true;
  host::clearFaults();
  EXPECT_FALSE(inverts(stranger));
  // A desktop process asks for a surface and a drawable, of the picture and of its copy; a console one for a
  // bitmap.
  EXPECT_EQ(host::uses("REALLockPictureDescription"), isConsole() ? 1 : 4);
}

TEST_F(Roads, KindOfProgramComesFromItsApplicationClass) {
  struct Case {
    const char* application;
    bool desktop;
  };
  for (const Case& c :
       {Case{"Application", true}, Case{"WebApplication", false}, Case{"ConsoleApplication", false}}) {
    host::Settings settings = settingsForRoad();
    settings.applicationClass = c.application;
    begin(settings);
    const auto picture = makePicture(source_);
    EXPECT_EQ(inverts(picture), c.desktop != isConsole()) << c.application;
  }
  // Without any of them the locks decide.
  host::Settings settings = settingsForRoad();
  settings.applicationClass = "";
  begin(settings);
  EXPECT_TRUE(inverts(makePicture(source_)));
}

TEST_F(Roads, OldHostsGetTheirHalfTakenLocksBack) {
  for (double version : {2011.5, 2012.0}) {
    host::Settings settings = settingsForRoad();
    settings.version = version;
    begin(settings);
    const auto picture = makePicture(source_);
    oddities(picture.get()).refusesLock = true;
    oddities(picture.get()).copiesRefuseToo = true;
    EXPECT_FALSE(inverts(picture));
    EXPECT_EQ(host::held().descriptionLocks, 0) << version;
  }
}

TEST_F(Roads, AlphaPicturesNeedAHostThatHasThem) {
  if (isGdk()) GTEST_SKIP() << "no alpha on this road";
  for (auto [version, expected] : {std::pair(2011.03, false), std::pair(2011.04, true)}) {
    host::Settings settings = settingsForRoad();
    settings.version = version;
    begin(settings);
    const auto result = callPicture("InvertZVR", makePicture(source_, true));
    ASSERT_TRUE(result) << version;
    EXPECT_EQ(host::pictureHasAlpha(result.get()), expected) << version;
  }
}

// Row 0 of a result of the GDK road stays black, on purpose; the host's cached rendering is dropped on each
// road.
TEST_F(Roads, RowZeroAndTheCache) {
  const auto result = callPicture("InvertZVR", makePicture({6, 3, Rgb{0}}));
  Pixels expected(6, 3, Rgb{0xFFFFFF});
  if (isGdk())
    expected.at(0, 0) = expected.at(1, 0) = expected.at(2, 0) = expected.at(3, 0) = expected.at(4, 0) =
        expected.at(5, 0) = 0;
  EXPECT_EQ(colorsOf(result), expected);
  EXPECT_GE(host::uses("REALPictureClearCache"), 1);
}

}  // namespace
