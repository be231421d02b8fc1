// Desktop hosts on machines where the drawing libraries open but lack what the plug-in needs: empty stand-ins
// lie first on this program's run path.

#include "tests/fault_stage.h"

namespace {

class NoToolkits : public FaultTest {};

TEST_F(NoToolkits, NoMemberReadsOrMakesAPicture) {
  least_ = 100;
  for (const Call& call : calls_) {
    SCOPED_TRACE(call.describe());
    const Trial trial = attempt(Stage(), call);
    ++injected_;
    expectNothingHeld(call, trial);
    const bool makesPicture = isAnyOf(call.name(), {"BinaryStringtoPictureZVR", "RenderSamplesZVR"});
    EXPECT_TRUE(isNull(call, trial.after) || (needsNoPixels(call) && !makesPicture));
    expectUnchanged(call, trial);
  }
}

}  // namespace
