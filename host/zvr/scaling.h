// Smaller pictures.
#pragma once

#include "host/zvr/images.h"

namespace zvr {

// The picture with its longer side at most `longest` pixels, each the mean of a box of pixels (weighted
// by opacity); a copy when the longer side is that short already. Throws Failure and std::bad_alloc.
Image scaledDown(const Image& image, int longest);

}  // namespace zvr
