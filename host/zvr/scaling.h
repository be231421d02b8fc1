// Smaller pictures.
#pragma once

#include "host/zvr/images.h"

namespace zvr {

// The picture with its longer side at most `longest` pixels, each the mean of the box that it stands for
// (weighted by opacity); a copy when it is no longer already. Throws Failure and std::bad_alloc.
Image scaledDown(const Image& image, int longest);

}  // namespace zvr
