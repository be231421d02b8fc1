// A locked picture description, unlocked at the end of its scope.
#pragma once

#include "frame/entry_points.h"

// Locks a description as the given REALPictureType; cleans up on failure. The caller unlocks.
bool REALLockPictureDescriptionX(REALpictureStruct* picture, REALpictureDescription* description,
                                 int32_t pictureType);
// Undoes a failed lock on hosts before version 2012, which leave it half taken; a no-op on later ones.
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

  // Releases ownership: the caller unlocks.
  void keep() { picture_ = nullptr; }
  // Whether the lock succeeded (and is not kept).
  explicit operator bool() const { return picture_ != nullptr; }

 private:
  REALpictureStruct* picture_;
};
