// Every member of the plug-in, called once for each thing that can go wrong in the host, in the heap, with
// the pictures and with the drawing libraries. No call may crash, touch what lies beyond the pixels or leave
// anything held. It answers null and changes nothing, or it answers as in a sound host. kOnPurpose lists the
// exceptions.

#include <dlfcn.h>

#include <iostream>

#include "host/shims/shims.h"
#include "tests/calls.h"
#include "tests/governed_plugin.h"
#include "tests/support.h"

namespace {

// ---- Disturbances ----

// Where a disturbance is: the name of a service, or one of these.
constexpr const char *kPictures = "pictures", *kPixbufs = "pixels of pixbufs", *kHeap = "heap",
                     *kVersion = "version", *kAnyService = "any service";
enum class Answer {
  nullOrSound,  // null with nothing changed, or that of a sound host
  null,         // null with nothing changed, unless no pixels are needed
  any,          // but the exceptions of a sound host
};
struct Disturbance {
  std::string where = kPictures;
  Answer answer = Answer::nullOrSound;
  int nth = 0;  // the use that fails; 0 for a service that is missing
  host::Fault fault = host::Fault::none;
  std::string what = {};
  std::function<void(const Scene&)> spoil = {};  // before the call
  bool whileRegistering = false;
  host::Settings settings = settingsForRoad();

  std::string describe() const { return where + ' ' + what + ", use " + std::to_string(nth); }
};
using List = std::vector<Disturbance>;

// ---- What was promised ----

enum Allowed : unsigned {
  kLosesResult = 1,  // when the host throws
  kAnswers = 2,      // neither null nor as in a sound host
  kNullChanges = 4,  // what it was given, as in a sound host, although the answer is null
  kAnyChange = 8,    // of what it was given
  kAnotherSize = 16,
};
struct Exception {
  const char* method;  // how its name begins
  const char* where;   // empty: anywhere
  unsigned allowed;
  const char* left = "";  // Trial::left
};
const Exception kOnPurpose[] = {
    // All that the host can't release stays; one that throws meanwhile loses the call's result, too.
    {"", "REALUnlockObject", kLosesResult, "objects"},
    {"", "REALUnlockString", kLosesResult, "strings"},
    {"", "PluginDisposeStringData", kLosesResult, "string data"},
    {"", "unlockPictureDescription", kLosesResult, "errors"},
    {"", "REALPictureClearCache", kLosesResult},
    // An instance whose constructor the host does not give is lost.
    {"", "REALLoadObjectMethod", 0, "objects"},
    {"", "Constructor(width as integer, height as integer)", 0, "objects"},
    // A host that does not tell its version gets failed locks undone as old ones need it.
    {"", kVersion, 0, "errors"},
    // The editor owns a pixbuf only when it has seen its pixels.
    {"", kPixbufs, 0, "pixbufs"},
    // A picture that can't be scrolled counts as scrolled sideways. Both ways together were never promised.
    {"ScrollHorizontalZVR", "", kAnswers | kNullChanges},
    {"ScrollVerticalZVR", "", kNullChanges},
    {"ScrollZVR", "", kAnswers | kNullChanges | kAnyChange},
    // Wide outlines are drawn by the host: lines that it doesn't draw are missing.
    {"RenderSamplesZVR", "RuntimeGraphicsDrawLine", kAnswers},
    {"RenderSamplesZVR", "REALSetPropValueInt", kAnswers},
    {"RenderSamplesZVR", "REALSetPropValueUInt32", kAnswers},
    {"RenderSamplesZVR", "pluginPictureGraphicsGetter", kAnswers},
    // A picture that can't say that it has alpha has none.
    {"EmbeddedMaskZVR", "REALGetPropValueBool", kAnswers},
    // A target that can't be written is left alone, and a new picture is made.
    {"TransformColorsZVR", "", kAnotherSize},
    // Nothing lies in a block of size 0: reads are 0, what is written is lost, and the picture is another.
    {"", "memoryBlockGetSize", kAnswers | kAnyChange},
    {"CountColorsZVR", "memoryBlockGetPtr", kAnswers},
};

// A call that was made.
struct Trial {
  Outcome after;
  bool unwound = false;
  std::map<std::string, int> left;  // once the arguments are gone
  std::map<std::string, int> uses;  // of the host's services, and of the heap
};

struct Tried {
  Call call;
  Outcome before;
  Trial sound;   // in a sound host, with the plug-in loaded afresh
  bool isFirst;  // of its member
};

// Whether a call has something to answer although no pixels can be had.
bool needsNoPixels(const Call& call) {
  const auto isZero = [&](size_t i) { return call.arguments[i] == Value(int64_t{0}); };
  const std::string name = call.name();
  return call.member.assigns || name == "HasMaskZVR" || name == "Table" || name == "Close" ||
         name == "ScrollHorizontalZVR" || (name == "ScrollVerticalZVR" && isZero(1)) ||
         (name == "ScrollZVR" && isZero(2));
}

// Pictures may lack alpha, and each mask counts by itself.
bool isOneOf(const Value& value, const Value& first, const Value& second) {
  const auto *picture = std::get_if<Pixels>(&value), *a = std::get_if<Pixels>(&first),
             *b = std::get_if<Pixels>(&second);
  if (!picture || !a || !b) return areSame(value, first) || areSame(value, second);
  const auto isLike = [&](const Pixels& other) {
    return picture->width == other.width && picture->colors == other.colors;
  };
  if (!(isLike(*a) || isLike(*b)) || !picture->mask != !a->mask || !picture->mask != !b->mask) return false;
  return !picture->mask || isOneOf(*picture->mask, *a->mask, *b->mask);
}

// The promises that a call broke, a line each; empty for none.
std::string broken(const Tried& tried, const Disturbance& disturbance, const Trial& trial) {
  const Call& call = tried.call;
  std::string text;
  unsigned allowed = 0;
  auto left = trial.left;
  for (const Exception& exception : kOnPurpose) {
    const bool isThere = *exception.where == '\0' || disturbance.where == exception.where;
    if (!isThere || call.name().rfind(exception.method, 0) != 0) continue;
    allowed |= exception.allowed;
    if (!trial.unwound || exception.allowed & kLosesResult) left.erase(exception.left);
  }
  // A picture with alpha whose surface can't be had dies locked.
  const bool isSurfaceOdd = disturbance.where == kPictures && road() == host::Road::cairo;
  if (left["errors"] > 0 && isSurfaceOdd && call.describe().find("+alpha") != std::string::npos)
    left.erase("errors");
  const bool losesResult = trial.unwound && allowed & kLosesResult;
  if (losesResult && left["objects"] + left["strings"] <= 2) left["objects"] = left["strings"] = 0;
  for (const auto& [what, count] : left)
    if (count != 0) text += std::to_string(count) + ' ' + what + " left\n" + host::describeHeld();

  const Outcome &is = trial.after, &would = tried.sound.after;
  bool isSame = isOneOf(is.result, would.result, would.result);
  const auto *got = std::get_if<Pixels>(&is.result), *wanted = std::get_if<Pixels>(&would.result);
  if (got && wanted && allowed & kAnotherSize) isSame = got->color(0, 0) == wanted->color(0, 0);
  const std::vector<host::Parameter> parameters = parametersOf(call.member);
  for (size_t i = 0; i < parameters.size(); ++i)
    isSame &= !parameters[i].byRef || isOneOf(is.arguments[i], would.arguments[i], would.arguments[i]);
  const bool isNull = ::isNull(call, is), mayBeSound = disturbance.answer == Answer::nullOrSound;
  const bool isExcused = mayBeSound ? trial.unwound || isSame || allowed & kAnswers
                                    : disturbance.answer == Answer::any || needsNoPixels(call);
  if (!isNull && !isExcused) text += "the answer is not null\n" + difference(would, is);
  const bool mayChange =
      mayBeSound ? !isNull || isSame || trial.unwound || allowed & kNullChanges : needsNoPixels(call);
  for (size_t i = 0; i < parameters.size(); ++i) {
    const Value& was = tried.before.arguments[i];
    const bool isDestination = call.member.isOfClass() && i == 1;  // part of the answer
    if (!isObject(was) || isDestination || disturbance.answer == Answer::any || allowed & kAnyChange)
      continue;
    if (!isOneOf(is.arguments[i], was, mayChange ? would.arguments[i] : was))
      text += "argument " + std::to_string(i) + " is changed: " + written(is.arguments[i]) + '\n';
  }
  if (!mayBeSound && is.raised != would.raised) text += "raised " + is.raised + '\n';
  if (trial.unwound != (disturbance.fault == host::Fault::unwind && !disturbance.whileRegistering))
    text += "an exception of the host was lost, or is new\n";
  return text;
}

// ---- Calls ----

// With sanitizers a call takes five times as long: a sixth is tried, another on each road.
constexpr int kParts = kIsSanitized ? 6 : 1;

// Of every member calls that have something to answer, if it ever has, the second with alpha, which GDK
// lacks; and one with each object nil.
std::vector<Call> callsToTry() {
  std::vector<Call> calls;
  for (const Member& member : everyMember()) {
    Call call;
    for (uint32_t seed = 1, chosen = 0; chosen < (isGdk() ? 2 : 3); ++seed) {
      Random random(seed);
      call = makeCall(member, random, 8);
      bool isLarge = true;  // oddities make pictures smaller
      for (Value& argument : call.arguments) {
        // All that a host without sizes is trusted for.
        if (auto* bytes = std::get_if<Bytes>(&argument)) bytes->resize(1024);
        auto* picture = std::get_if<Pixels>(&argument);
        if (picture) picture->alpha = chosen == 1 && !isGdk();
        if (auto* flag = std::get_if<bool>(&argument)) *flag = chosen == 1;
        isLarge &= !picture || (picture->width > 4 && picture->height > 4);
      }
      Scene scene(call);
      scene.run();
      const bool answers =
          !isNull(call, scene.outcome()) || !difference(Scene(call).outcome(), scene.outcome()).empty();
      if (!isLarge || (!answers && seed < 60)) continue;
      calls.push_back(call);
      ++chosen;
    }
    for (size_t i = 0; i < call.arguments.size(); ++i) {
      if (!isObject(call.arguments[i])) continue;
      calls.push_back(call);
      calls.back().arguments[i] = {};
    }
  }
  return calls;
}

// ---- The one loop ----

// Switches and counters of the stand-in for a drawing library. The host has opened the real one.
template <typename Shim>
Shim* shimOf(const char* library, const char* function) {
  static Shim none = {};  // without a stand-in nobody reads it
  void* handle = dlopen(library, RTLD_NOW);
  const auto shim = handle ? reinterpret_cast<Shim* (*)()>(dlsym(handle, function)) : nullptr;
  return shim ? shim() : &none;
}

class Disturbances : public ::testing::Test {
 protected:
  void SetUp() override { load({}); }
  void TearDown() override {
    std::cout << tried_ / kParts << " faults\n";
    EXPECT_TRUE(tried_ > 80 || IsSkipped()) << "hardly anything was tried";
  }

  // Begins the host anew and loads the plug-in afresh: some things it looks up only once.
  void load(const Disturbance& host) {
    plugin_.reset();
    library_.reset();
    library_.reset(dlopen(ZVR_GOVERNED_PLUGIN, RTLD_NOW | RTLD_LOCAL));
    if (!library_) throw std::runtime_error(dlerror());
    governed_ = static_cast<GovernedPlugin*>(dlsym(library_.get(), "governedPlugin"));
    host::start(host.settings);
    gdk_ = shimOf<GdkShim>("libgdk-x11-2.0.so", "gdkShim");
    if (host.whileRegistering) begin(host);
    try {
      plugin_ = std::make_unique<host::Plugin>(ZVR_GOVERNED_PLUGIN);
    } catch (const host::Unwound&) {
      // Members that were registered until then stay.
    }
  }

  void begin(const Disturbance& disturbance) {
    const std::string& where = disturbance.where;
    const bool isAny = where == kAnyService || where == kVersion;
    if (isAny) host::failAnyAt(disturbance.nth, disturbance.fault);
    if (where == kHeap) governed_->failAt = disturbance.nth;
    if (isAny || where == kHeap || where == kPictures || where == kPixbufs) return;
    if (disturbance.nth > 0) host::failAt(where, disturbance.nth, disturbance.fault);
    if (disturbance.nth == 0) host::removeEntryPoint(where);
  }

  std::map<std::string, int> held() const {
    const host::Ledger held = host::held();
    return {{"objects", held.objects},     {"strings", held.strings},        {"string data", held.stringData},
            {"errors", held.errors},       {"locks", held.descriptionLocks}, {"blocks", governed_->live},
            {"pixbufs", gdk_->livePixbufs}};
  }

  Trial attempt(const Call& call, const Disturbance& disturbance) {
    Trial trial;
    const auto lost = held();  // by earlier calls
    {
      Scene scene(call);
      host::clearFaults();
      governed_->uses = governed_->failAt = 0;
      if (!disturbance.whileRegistering || disturbance.nth == 0) begin(disturbance);
      if (disturbance.spoil) disturbance.spoil(scene);
      try {
        scene.run();
      } catch (const host::Unwound&) {
        trial.unwound = true;
      }
      governed_->failAt = 0;
      trial.uses = host::usesByName();
      trial.uses[kHeap] = governed_->uses;
      host::clearFaults();
      trial.after = scene.outcome();
    }
    trial.left = held();
    for (const auto& [what, count] : lost) trial.left[what] -= count;
    // A buffer that the host is given becomes the host's, unless it throws.
    const char* kGiven = "REALBuildPictureFromBuffer";
    trial.left["blocks"] -= trial.uses[kGiven] - (trial.unwound && disturbance.where == kGiven);
    return trial;
  }

  // Tries with each call what a host has for it: by default what is wrong with the host itself.
  void tryEach(const Disturbance& host, const std::function<List(Tried&)>& disturbancesOf = {}) {
    static std::map<double, std::vector<Tried>> callsByVersion;
    Disturbance sound;
    sound.settings.version = host.settings.version.value_or(2013.03);
    std::vector<Tried>& calls = callsByVersion[*sound.settings.version];
    if (calls.empty()) {
      load(sound);
      for (const Call& call : callsToTry()) {
        load(sound);
        const bool isFirst = calls.empty() || !(calls.back().call.member == call.member);
        calls.push_back({call, Scene(call).outcome(), attempt(call, sound), isFirst});
      }
    }
    load(host);
    for (Tried& tried : calls) {
      const List list = disturbancesOf ? disturbancesOf(tried) : List{host};
      try {
        if (!list.empty()) Scene scene(tried.call);
      } catch (const std::exception&) {
        continue;  // its member was not registered, or the properties of its class
      }
      for (const Disturbance& disturbance : list) {
        // Few calls ask for memory: it is missing on every road.
        const bool isPart = ++tried_ % kParts == static_cast<int>(road()) % kParts;
        if (!isPart && disturbance.where != kHeap) continue;
        describeRunning = [&] { return tried.call.describe() + ", " + disturbance.describe(); };
        const std::string& where = disturbance.where;
        if (where == "pluginObjectType") load(host);  // asked for only once
        Trial trial = attempt(tried.call, disturbance);
        const int nth = disturbance.whileRegistering ? 0 : disturbance.nth;
        if (trial.uses[where] < nth) {
          load(host);  // what an earlier call changed in the plug-in
          trial = attempt(tried.call, disturbance);
        }
        EXPECT_GE(trial.uses[where], nth) << describeRunning();
        EXPECT_EQ(broken(tried, disturbance, trial), "") << describeRunning();
      }
    }
    describeRunning = {};
  }

  int tried_ = 0;
  GovernedPlugin* governed_ = nullptr;
  GdkShim* gdk_ = nullptr;
  std::unique_ptr<void, int (*)(void*)> library_{nullptr, &dlclose};
  std::unique_ptr<host::Plugin> plugin_;
};

TEST_F(Disturbances, EveryServiceMissing) {
  const auto registering = host::usesByName();
  std::vector<std::string> names = host::entryPointNames();
  for (const std::string& method : host::hostMethodNames()) names.push_back(method);
  for (const std::string& name : names) {
    Disturbance missing{name};
    missing.whileRegistering = true;
    if (name == "REALGetRBVersion") missing.settings.version = std::nullopt;
    tryEach(missing, [&](Tried& tried) {
      return tried.sound.uses[name] > 0 || registering.count(name) ? List{missing} : List{};
    });
  }
}

TEST_F(Disturbances, EveryUseOfEveryServiceAndOfTheHeapFailing) {
  int allocations = 0;
  for (const double version : {2013.03, 2011.5}) {
    Disturbance host;
    host.settings.version = version;
    tryEach(host, [&](Tried& tried) {
      List list;
      if (version != 2013.03 && !tried.isFirst) return list;
      allocations += tried.sound.uses[kHeap];
      for (const auto& [where, uses] : tried.sound.uses) {
        // Whether these counted up can't be seen.
        const bool isSilent = where == "REALLockObject" || where == "REALLockString";
        for (int nth = 1; nth <= uses; ++nth) {
          if (!isSilent) list.push_back({where, Answer::nullOrSound, nth, host::Fault::null});
          if (where != kHeap) list.push_back({where, Answer::nullOrSound, nth, host::Fault::unwind});
        }
      }
      return list;
    });
  }
  EXPECT_GE(allocations, 15) << "most calls need no memory";
}

// Members may be missing then; those that are there work.
TEST_F(Disturbances, EveryFaultWhileRegistering) {
  Disturbance registering{kAnyService, Answer::any};
  registering.whileRegistering = true;
  for (const double version : {2013.03, 2011.5}) {
    registering.settings.version = version;
    for (const host::Fault fault : {host::Fault::null, host::Fault::unwind, host::Fault::none}) {
      registering.fault = fault;
      for (registering.nth = 1;; ++registering.nth) {
        // The first thing that is asked for is the version.
        const bool isVersion = fault == host::Fault::null && registering.nth == 1;
        registering.where = fault == host::Fault::none ? kHeap : isVersion ? kVersion : kAnyService;
        load(registering);
        if ((fault == host::Fault::none ? governed_->uses : host::uses()) < registering.nth) break;
        tryEach(registering, [&](Tried& tried) { return tried.isFirst ? List{registering} : List{}; });
      }
    }
  }
}

TEST_F(Disturbances, OddPicturesAloneAndAllTogether) {
  using Oddities = host::PictureOddities;
  struct Oddity {
    const char* what;
    void (*spoil)(Oddities&);
    Answer answer = Answer::any;  // when all are odd
    bool isOfBitmaps = false;
  };
  const Oddity oddities[] = {
      {"can't be locked", [](Oddities& o) { o.refusesLock = o.copiesRefuseToo = true; }, Answer::null},
      {"is read through a copy", [](Oddities& o) { o.refusesLock = true; }},
      {"can't be copied", [](Oddities& o) { o.refusesLock = o.hidesSize = true; }, Answer::null},
      {"tells no size", [](Oddities& o) { o.hidesSize = true; }},
      {"null handle", [](Oddities& o) { o.nullHandle = true; }, Answer::null},
      {"another type", [](Oddities& o) { o.reportedType = 5; }, Answer::null},
      {"another kind of bitmap", [](Oddities& o) { o.bitmapKind = 1; }, Answer::null, true},
      {"no row table", [](Oddities& o) { o.noRowTable = true; }, Answer::null, true},
      {"no required word", [](Oddities& o) { o.noRequired = true; }, Answer::null, true},
      {"no first row", [](Oddities& o) { o.nullRow = 0; }, Answer::any, true},
      {"no last row", [](Oddities& o) { o.nullRow = 4; }, Answer::any, true},
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
  tryEach({}, [&](Tried& tried) {
    List list;
    const size_t pictures = Scene(tried.call).pictures().size();
    for (const auto& [what, spoilOne, answer, isOfBitmaps] : oddities) {
      for (size_t which = 0; which <= pictures && pictures > 0 && isConsole() >= isOfBitmaps; ++which) {
        const bool isAll = which == pictures;
        const auto spoil = [=, one = spoilOne](const Scene& scene) {
          const std::vector<host::PictureRef> all = scene.pictures();
          for (size_t i = 0; i < pictures; ++i)
            if (isAll || i == which) one(host::oddities(all[i].get()));
        };
        list.push_back({kPictures, isAll ? answer : Answer::any, 0, {}, what, spoil});
      }
    }
    return list;
  });
}

// Also where references can't be counted.
TEST_F(Disturbances, NewPicturesOfAnotherSize) {
  for (const int more : {-4, -1, 1, 100}) {
    Disturbance grown{kPictures, Answer::any};
    grown.settings.newPicturesGrowBy = more;
    tryEach(grown);
    grown.spoil = [](const Scene&) { host::removeEntryPoint("REALLockObject"); };
    tryEach(grown);
  }
}

TEST_F(Disturbances, EveryFunctionOfTheDrawingLibrariesFailing) {
  if (isConsole()) GTEST_SKIP() << "no drawing library on this road";
  CairoShim* cairo = shimOf<CairoShim>("libcairo.so", "cairoShim");
  std::vector<bool*> switches = {&cairo->hidesTarget, &cairo->hidesData,  &cairo->zeroWidth,
                                 &cairo->zeroHeight,  &cairo->zeroStride, &cairo->halfStride};
  if (isGdk()) switches = {&gdk_->refusesDrawable, &gdk_->hidesPixels};
  for (bool* isFailing : switches) {
    *isFailing = true;
    Disturbance failing{gdk_->hidesPixels ? kPixbufs : kPictures, Answer::null};
    failing.settings.rowPadding = 0;  // half the stride is too little
    tryEach(failing);
    *isFailing = false;
  }
}

// Libraries that open but lack what the plug-in needs lie first on the run path of test_no_toolkits, which is
// this program with this case alone.
TEST_F(Disturbances, DISABLED_EmptyDrawingLibraries) { tryEach({kPictures, Answer::null}); }

}  // namespace
