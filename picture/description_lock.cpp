// Locking picture descriptions.

#include "picture/description_lock.h"

#include "frame/host_state.h"

namespace {

// Before this host version a failed lock must be undone.
constexpr double kCleanLockVersion = 2012.0;

}  // namespace

bool REALLockPictureDescriptionX(REALpictureStruct* picture, REALpictureDescription* description,
                                 int32_t pictureType) {
  if (REALLockPictureDescription(picture, description, pictureType)) return true;
  REALUnlockPictureDescriptionAfterFailure(picture);
  return false;
}

void REALUnlockPictureDescriptionAfterFailure(REALpictureStruct* picture) {
  if (rbversion_rbversion < kCleanLockVersion) REALUnlockPictureDescription(picture);
}
