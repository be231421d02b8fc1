// Every member of the plug-in with pictures that are not as they seem, and with drawing libraries that
// fail. Pixels end at a page that may not be touched.

#include <dlfcn.h>

#include "host/shims/shims.h"
#include "tests/fault_stage.h"

namespace {

using Oddities = host::PictureOddities;

enum Readable { kReadable, kUnreadable, kUnreadableBitmap };
struct Oddity {
  const char* what;
  void (*spoil)(Oddities&);
  Readable readable = kReadable;
};
const Oddity kOddities[] = {
    {"can't be locked", [](Oddities& o) { o.refusesLock = o.copiesRefuseToo = true; }, kUnreadable},
    {"is read through a copy", [](Oddities& o) { o.refusesLock = true; }},
    {"can't be copied", [](Oddities& o) { o.refusesLock = o.hidesSize = true; }, kUnreadable},
    {"tells no size", [](Oddities& o) { o.hidesSize = true; }},
    {"null handle", [](Oddities& o) { o.nullHandle = true; }, kUnreadable},
    {"another type", [](Oddities& o) { o.reportedType = 5; }, kUnreadable},
    {"another kind of bitmap", [](Oddities& o) { o.bitmapKind = 1; }, kUnreadableBitmap},
    {"no row table", [](Oddities& o) { o.noRowTable = true; }, kUnreadableBitmap},
    {"no required word", [](Oddities& o) { o.noRequired = true; }, kUnreadableBitmap},
    {"no first row", [](Oddities& o) { o.nullRow = 0; }},
    {"no last row", [](Oddities& o) { o.nullRow = 4; }},
    {"described as smaller", [](Oddities& o) { o.describedWidth = 3, o.describedHeight = 2; }},
    {"described as wider", [](Oddities& o) { o.describedWidth = 4096; }},
    {"described as higher", [](Oddities& o) { o.describedHeight = 4096; }},
    {"described as huge", [](Oddities& o) { o.describedWidth = o.describedHeight = INT32_MAX; }},
    {"described as empty", [](Oddities& o) { o.describedWidth = o.describedHeight = 0; }},
    {"described without rows", [](Oddities& o) { o.describedHeight = 0; }},
    {"described with a width below 0", [](Oddities& o) { o.describedWidth = -2; }},
    {"described as less than empty", [](Oddities& o) { o.describedWidth = o.describedHeight = INT32_MIN; }},
    {"claims to be larger", [](Oddities& o) { o.claimedWidth = o.claimedHeight = 4096; }},
    {"claims to be smaller", [](Oddities& o) { o.claimedWidth = o.claimedHeight = 2; }},
    {"claims to be less than empty", [](Oddities& o) { o.claimedWidth = o.claimedHeight = INT32_MIN; }},
    {"shows less than it has", [](Oddities& o) { o.shownWidth = 3, o.shownHeight = 2; }},
    {"shows and describes less than it has",
     [](Oddities& o) { o.shownWidth = o.describedWidth = 3, o.shownHeight = o.describedHeight = 2; }},
};

class OddPictures : public FaultTest {};

TEST_F(OddPictures, EachAloneAndAllTogether) {
  constexpr int kAll = -1;
  const auto isUnreadable = [](const Oddity& oddity) {
    return oddity.readable == kUnreadable ||
           (oddity.readable == kUnreadableBitmap && road() == host::Road::console);
  };
  for (const Call& call : calls_) {
    const Stage stage;
    const Trial sound = attempt(stage, call);
    for (const Oddity& oddity : kOddities) {
      int pictures = 1;
      for (int which = kAll; which < pictures; ++which) {
        SCOPED_TRACE(call.describe() + ", picture " + std::to_string(which) + ": " + oddity.what);
        const Trial trial = attempt(stage, call, [&](Scene& scene) {
          pictures = static_cast<int>(scene.pictures().size());
          for (int i = 0; i < pictures; ++i) {
            const auto picture = scene.pictures()[static_cast<size_t>(i)];
            if (which == kAll || which == i) oddity.spoil(host::oddities(picture.get()));
          }
        });
        if (pictures == 0) break;
        ++injected_;
        expectNothingHeld(call, trial);
        EXPECT_EQ(trial.after.raised, sound.after.raised);
        if (which != kAll || !isUnreadable(oddity)) continue;
        EXPECT_TRUE(isNull(call, trial.after) || needsNoPixels(call)) << written(trial.after.result);
        expectUnchanged(call, trial);
      }
    }
  }
}

// Also on a host that can't count references.
TEST_F(OddPictures, NewPicturesOfAnotherSize) {
  for (const int more : {-4, -1, 1, 100}) {
    host::Settings settings = settingsForRoad();
    settings.newPicturesGrowBy = more;
    for (const bool counts : {true, false}) {
      const Stage stage(settings);
      if (!counts) host::removeEntryPoint("REALLockObject");
      for (const Call& call : calls_) {
        SCOPED_TRACE(call.describe() + ", new pictures of " + std::to_string(more) + " pixels more" +
                     (counts ? "" : ", no REALLockObject"));
        const Trial trial = attempt(stage, call);
        ++injected_;
        expectNothingHeld(call, trial);
      }
    }
  }
}

// The stand-in that this program's plug-in meets instead of the real library.
template <typename Shim>
Shim& shimOf(const char* library, const char* function) {
  void* handle = dlopen(library, RTLD_NOW);
  if (!handle) throw std::runtime_error(dlerror());
  return *reinterpret_cast<Shim* (*)()>(dlsym(handle, function))();
}

TEST_F(OddPictures, EveryFunctionOfTheDrawingLibrariesFailing) {
  const auto callAll = [&](bool& fault, int* livePixbufs) {
    fault = true;
    for (const Call& call : calls_) {
      SCOPED_TRACE(call.describe());
      const Trial trial = attempt(Stage(), call);
      ++injected_;
      expectNothingHeld(call, trial);
      EXPECT_TRUE(isNull(call, trial.after) || needsNoPixels(call)) << written(trial.after.result);
      EXPECT_EQ(livePixbufs ? *livePixbufs : 0, 0);
    }
    fault = false;
  };
  if (road() == host::Road::console) GTEST_SKIP() << "no drawing library on this road";
  if (road() == host::Road::gdk) {
    auto& gdk = shimOf<GdkShim>("libgdk-x11-2.0.so", "gdkShim");
    gdk.livePixbufs = 0;
    least_ = 200;
    callAll(gdk.refusesDrawable, &gdk.livePixbufs);
    callAll(gdk.hidesPixels, nullptr);
    EXPECT_GT(gdk.livePixbufs, 0) << "pixbufs without pixels are lost, on purpose";
    return;
  }
  auto& cairo = shimOf<CairoShim>("libcairo.so", "cairoShim");
  for (bool CairoShim::*fault : {&CairoShim::hidesTarget, &CairoShim::hidesData, &CairoShim::zeroWidth,
                                 &CairoShim::zeroHeight, &CairoShim::zeroStride, &CairoShim::halfStride}) {
    callAll(cairo.*fault, nullptr);
  }
}

}  // namespace
