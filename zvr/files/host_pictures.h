// Images as pictures of the host, and back.
#pragma once

#include "host/objects.h"
#include "zvr/files/images.h"

namespace zvr {

// The road that transparency takes through the library.
enum class Transparent {
  // The picture has none; its colours are those of the file, not premultiplied.
  beside,
  // The picture's own where the host that is played has such pictures, otherwise a mask picture (white:
  // transparent).
  asOnHost,
};

// A host picture of an image. Throws std::bad_alloc when the host has no memory.
host::PictureRef toPicture(const Image& image, Transparent transparent = Transparent::asOnHost);
// The way back: alpha or mask become opacity.
Image fromPicture(REALpictureStruct* picture);

// Another number, most likely, once a pixel of the picture or of its mask has changed.
size_t fingerprintOf(REALpictureStruct* picture);

}  // namespace zvr
