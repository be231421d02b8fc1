// The roads to a picture's pixels: which is taken, and which pictures each refuses. test_odd_pictures has all
// ways in which pictures and drawing libraries fail.

#include <dlfcn.h>

#include "host/shims/shims.h"
#include "tests/support.h"

namespace {

using host::oddities;

class Roads : public HostTest {
 protected:
  const Pixels source_ = Random(7).pixels(13, 5);
  bool inverts(const host::PictureRef& picture) {
    return static_cast<bool>(callPicture("InvertZVR", picture));
  }
};

TEST_F(Roads, PixbufsAreReleased) {
  if (road() != host::Road::gdk) GTEST_SKIP();
  // The stand-in that this program's plug-in meets instead of the real library.
  void* library = dlopen("libgdk-x11-2.0.so", RTLD_NOW);
  ASSERT_TRUE(library) << dlerror();
  const GdkShim& gdk = *reinterpret_cast<GdkShim* (*)()>(dlsym(library, "gdkShim"))();
  EXPECT_TRUE(inverts(makePicture(source_)));
  EXPECT_GE(gdk.drawableReads, 2) << "the source's and the new picture's";
  EXPECT_EQ(gdk.livePixbufs, 0);
}

// With alpha the description stays locked, on purpose; without it does not.
TEST_F(Roads, RefusedSurfaces) {
  if (road() != host::Road::cairo) GTEST_SKIP();
  for (bool alpha : {false, true}) {
    const auto picture = makePicture(source_, alpha);
    oddities(picture.get()).nullHandle = true;
    EXPECT_FALSE(inverts(picture));
    EXPECT_EQ(host::held().descriptionLocks, alpha ? 1 : 0);
  }
  leaves.errors = 1;  // the picture with alpha died locked
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

TEST_F(Roads, OldHostsGetTheirHalfTakenLocksBack) {
  for (double version : {2011.5, 2012.0}) {
    beginAt(version);
    const auto picture = makePicture(source_);
    oddities(picture.get()).refusesLock = true;
    oddities(picture.get()).copiesRefuseToo = true;
    EXPECT_FALSE(inverts(picture));
    EXPECT_EQ(host::held().descriptionLocks, 0) << version;
  }
}

TEST_F(Roads, TheCachedRenderingIsDropped) {
  EXPECT_TRUE(inverts(makePicture(source_)));
  EXPECT_GE(host::uses("REALPictureClearCache"), 1);
}

}  // namespace
