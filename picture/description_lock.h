// A locked picture description, unlocked at the end of its scope.
#pragma once

#include "frame/entry_points.h"

// Locks a description in the wanted REALPictureType; cleans up after a failure. The caller unlocks.
bool REALLockPictureDescriptionX(REALpictureStruct* picture, REALpictureDescription* description,
                                 int32_t pictureType);
// Hosts before version 2012 leave a failed lock half taken; for later ones this does nothing.
void REALUnlockPictureDescriptionAfterFailure(REALpictureStruct* picture);
class DescriptionLock {
 public:
  DescriptionLock(REALpictureStruct* picture, REALpictureDescription* description, int32_t pictureType)
      : picture_(REALLockPictureDescriptionX(picture, description, pictureType) ? picture : nullptr) {}
  ~DescriptionLock() noexcept(false) {
    if (picture_) REALUnlockPictureDescription(picture_);
  }
  DescriptionLock(const DescriptionLock&) = delete;
  DescriptionLock& operator=(const DescriptionLock&) = delete;

  // Leaves it locked for somebody else to unlock.
  void keep() { picture_ = nullptr; }
  // Whether the lock succeeded (and is not kept).
  explicit operator bool() const { return picture_ != nullptr; }

 private:
  REALpictureStruct* picture_;
};
