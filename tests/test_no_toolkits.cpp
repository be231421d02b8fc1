// Desktop hosts on machines where the drawing libraries open but lack what the plug-in needs: empty stand-ins
// lie first on this program's run path.

#include "tests/fault_stage.h"

namespace {

class NoToolkits : public HostTest {};

TEST_F(NoToolkits, DesktopPicturesCannotBeOpened) {
  const auto plain = makePicture({4, 4, Rgb{0x123456}});
  EXPECT_FALSE(callPicture("InvertZVR", plain));
  EXPECT_EQ(host::held().descriptionLocks, 0);
  EXPECT_FALSE(callPicture("InvertZVR", plain)) << "and loading is not tried again";
  if (road() == host::Road::gdk) return;
  const auto alpha = makePicture({4, 4, Rgb{0x123456}}, true);
  EXPECT_FALSE(callPicture("InvertZVR", alpha));
  EXPECT_EQ(host::held().descriptionLocks, 1) << "the road with alpha leaves its lock, on purpose";
  leaves.errors = 1;  // so the picture dies locked
}

class NoToolkitsAtAll : public FaultTest {};

TEST_F(NoToolkitsAtAll, NoMemberReadsOrMakesAPicture) {
  least_ = 100;
  for (const Call& call : calls_) {
    SCOPED_TRACE(call.describe());
    const Trial trial = attempt(Stage(), call);
    ++injected_;
    expectNothingHeld(call, trial);
    const bool makesPicture = isAnyOf(call.name(), {"BinaryStringtoPictureZVR", "RenderSamplesZVR"});
    EXPECT_TRUE(trial.answersNull || (needsNoPixels(call) && !makesPicture)) << trial.answer;
    EXPECT_EQ(trial.after, trial.before);
  }
}

}  // namespace
