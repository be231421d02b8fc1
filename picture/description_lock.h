// A locked picture description, unlocked at the end of its scope.
#pragma once

#include "picture/editor.h"

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
