// Pictures: one storage of 32-bit words for every road, locks, masks, copies.

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "host/entry_points.h"
#include "host/pictures/views.h"

namespace host {
namespace {

constexpr int32_t kDepth = 32;
constexpr double kLocksCleanly = 2012.0;  // from this version on a lock that fails changes nothing

Picture* wanted(const REALpictureStruct* picture, const char* purpose) {
  return find<Picture>(picture, purpose);
}

// The pixel of a mask that represents a picture's own alpha channel: white where the picture is transparent.
uint32_t maskPixel(uint32_t word) {
  const bool console = settings().road == Road::console;
  const uint32_t transparency = console ? (word >> 24 & 0x7F) * 255 / 127 : 255 - (word >> 24);
  return opaqueTop() | transparency * 0x010101;
}

PictureRef alphaAsMask(const Picture& picture) {
  PictureRef mask = newPicture(picture.width, picture.height);
  const auto* target = wanted(mask.get(), "fill mask");
  for (int32_t y = 0; target && y < picture.height; ++y) {
    std::transform(picture.row(y), picture.row(y) + picture.width, target->row(y), maskPixel);
  }
  return mask;
}

PictureRef copyOf(const Picture& source) {
  PictureRef copy = newPicture(source.width, source.height);
  const Rectangle whole{0, 0, source.width, source.height};
  if (auto* target = wanted(copy.get(), "copy")) drawPicture(*target, source, whole, whole);
  return copy;
}

// ---- Services ----

REALpictureStruct* newByDepth(int32_t width, int32_t height, int32_t depth) {
  const int32_t more = settings().newPicturesGrowBy;
  return depth == kDepth ? newPicture(width + more, height + more).leak() : nullptr;
}

// Takes the buffer over when a picture comes of it: it is freed with free() when the picture dies.
REALpictureStruct* buildFromBuffer(int32_t width, int32_t height, int32_t pixelType, uint8_t* buffer,
                                   int32_t rowBytes) {
  constexpr int32_t kThreeBytes = 1;  // RGB24, by number as hosts know it
  if (pixelType != kThreeBytes || !buffer || rowBytes / 3 < width) return nullptr;
  PictureRef built = newPicture(width, height);
  auto* picture = wanted(built.get(), "build");
  if (!picture) return nullptr;
  picture->takenOverBuffer.reset(buffer);
  if (settings().plainDrawables) return built.leak();  // shows the buffer itself
  const uint8_t* from = buffer;
  for (int32_t y = 0; y < height; ++y, from += rowBytes) {
    for (int32_t x = 0; x < width; ++x) {
      const uint8_t* rgb = from + 3 * x;
      picture->row(y)[x] = opaqueTop() | uint32_t{rgb[0]} << 16 | uint32_t{rgb[1]} << 8 | rgb[2];
    }
  }
  return built.leak();
}

REALpictureStruct* buildFromPlatformImage(void*) { return nullptr; }

// As a fault, the host takes the buffer over although it makes no picture.
void failToBuild(int32_t, int32_t, int32_t, uint8_t* buffer, int32_t) { std::free(buffer); }

RBBoolean lockNaturally(REALpictureStruct* picture, REALpictureDescription* description) {
  return lockPicture(picture, description, naturalType());
}
void failNaturally(REALpictureStruct* picture, REALpictureDescription*) { leaveHalfLocked(picture); }
RBBoolean lockAsType(REALpictureStruct* picture, REALpictureDescription* description, int32_t type) {
  return lockPicture(picture, description, type);
}
void failAsType(REALpictureStruct* picture, REALpictureDescription*, int32_t) { leaveHalfLocked(picture); }
void unlock(REALpictureStruct* picture) { unlockPicture(picture); }

// Nothing is cached here; the use count tells that it was called.
void clearCache(REALpictureStruct* picture) { wanted(picture, "clear cache"); }

REALpictureStruct* getMask(REALpictureStruct* handle, RBBoolean create) {
  auto* picture = wanted(handle, "get mask");
  if (!picture) return nullptr;
  if (!picture->mask && create) {
    PictureRef fresh = newPicture(picture->width, picture->height);
    const auto* mask = wanted(fresh.get(), "whiten mask");
    for (int32_t y = 0; mask && y < mask->height; ++y)
      std::fill_n(mask->row(y), mask->width, opaqueTop() | 0xFFFFFF);
    picture->mask = std::move(fresh);
  }
  return PictureRef(picture->mask).leak();
}

void construct(REALpictureStruct* handle, int32_t width, int32_t height) {
  auto* picture = wanted(handle, "construct");
  const int32_t more = settings().newPicturesGrowBy;
  if (picture && picture->width == 0) picture->allocate(width + more, height + more, true);
}

REALpictureStruct* copyMask(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "copy mask");
  if (!picture) return nullptr;
  if (const auto* mask = wanted(picture->mask.get(), "copy mask")) return copyOf(*mask).leak();
  return picture->alpha ? alphaAsMask(*picture).leak() : nullptr;
}

void assignMask(REALpictureStruct* picture, REALpictureStruct* mask) { setPictureMask(picture, mask); }

REALgraphicsStruct* graphicsOf(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "get graphics");
  if (!picture || picture->width == 0 || picture->oddities.noGraphics) return nullptr;
  retain(handle);
  return handleOf<REALgraphicsStruct>(enrollNew(std::make_unique<Graphics>(PictureRef::adopt(handle))));
}

}  // namespace

std::string Picture::describe() const {
  return "Picture " + std::to_string(width) + " x " + std::to_string(height) + (alpha ? " with alpha" : "");
}

void Picture::die() {
  if (words->count != 0) noteError(describe() + " was destroyed while its description was locked");
}

bool Picture::readProperty(const std::string& name, PropertyValue& value) const {
  if (name == "HasAlphaChannel") {
    value = alpha;
    return true;
  }
  if ((name != "Width" && name != "Height") || oddities.hidesSize) return false;
  const bool isWidth = name == "Width";
  const int32_t claimed = isWidth ? oddities.claimedWidth : oddities.claimedHeight;
  value = int64_t{claimed != -1 ? claimed : isWidth ? width : height};
  return true;
}

bool Picture::allocate(int32_t newWidth, int32_t newHeight, bool hasAlpha) {
  if (newWidth < 1 || newHeight < 1) return false;
  const int64_t rowBytes = int64_t{newWidth} * 4, newStride = rowBytes + settings().rowPadding;
  // In floating point first: the product may be past 64 bits.
  if (static_cast<double>(newStride) * newHeight > 0x7FFFFFFF) return false;
  Buffer room(static_cast<uint64_t>(newStride * (newHeight - 1) + rowBytes));
  if (!room.data()) return false;
  pixels = std::move(room);
  width = newWidth;
  height = newHeight;
  stride = static_cast<int32_t>(newStride);
  alpha = hasAlpha && settings().road != Road::gdk;
  if (pixels.isUsed()) return true;
  for (int32_t y = 0; y < height; ++y) std::fill_n(row(y), width, settings().freshPixel);
  return true;
}

uint32_t* Picture::row(int32_t y) const {
  return reinterpret_cast<uint32_t*>(pixels.data() + static_cast<ptrdiff_t>(stride) * y);
}

bool lockPicture(REALpictureStruct* handle, REALpictureDescription* description, int32_t type) {
  auto* picture = wanted(handle, "lock description");
  if (!picture || !description) return false;
  const bool refused = type != naturalType() || picture->width == 0 || picture->oddities.refusesLock;
  if (!refused && !picture->view) picture->view = viewPixels(*picture);
  if (refused || !picture->view) {
    leaveHalfLocked(handle);
    return false;
  }
  ++picture->words->count;
  const PictureOddities& odd = picture->oddities;
  description->pictureType = odd.reportedType != 0 ? odd.reportedType : type;
  description->handle = odd.nullHandle ? nullptr : picture->view->handle();
  description->width = odd.describedWidth != -1 ? odd.describedWidth : picture->width;
  description->height = odd.describedHeight != -1 ? odd.describedHeight : picture->height;
  std::fill(std::begin(description->reserved), std::end(description->reserved), 0xA5A5A5A5);
  return true;
}

void leaveHalfLocked(REALpictureStruct* handle) {
  auto* picture = wanted(handle, "fail to lock");
  if (!picture || !(settings().version.value_or(0) < kLocksCleanly)) return;
  ++picture->halfLocks;
  ++picture->words->count;
}

void unlockPicture(REALpictureStruct* handle) {
  auto* picture = wanted(handle, "unlock description");
  if (!picture) return;
  if (picture->words->count == 0) return noteError("unlock without a lock: " + picture->describe());
  --picture->words->count;
  if (picture->halfLocks > 0) {
    --picture->halfLocks;  // the failed lock is cleaned up first
  }
  if (picture->words->count == picture->halfLocks) picture->view.reset();
}

PictureRef newPicture(int width, int height, bool hasAlpha) {
  auto picture = std::make_unique<Picture>();
  if (!picture->allocate(width, height, hasAlpha)) return {};
  return PictureRef::adopt(handleOf<REALpictureStruct>(enrollNew(std::move(picture))));
}

int pictureWidth(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "get width");
  return picture ? picture->width : 0;
}
int pictureHeight(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "get height");
  return picture ? picture->height : 0;
}
bool pictureHasAlpha(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "ask for alpha");
  return picture && picture->alpha;
}

uint32_t* pictureRow(REALpictureStruct* handle, int y) {
  const auto* picture = wanted(handle, "get row");
  return picture && y >= 0 && y < picture->height ? picture->row(y) : nullptr;
}

REALpictureStruct* pictureMask(REALpictureStruct* handle) {
  const auto* picture = wanted(handle, "get mask");
  return picture ? picture->mask.get() : nullptr;
}

void setPictureMask(REALpictureStruct* handle, REALpictureStruct* mask) {
  auto* picture = wanted(handle, "set mask");
  if (!picture || handle == mask) return;
  if (mask && !wanted(mask, "become mask")) return;
  if (mask) retain(mask);
  picture->mask = PictureRef::adopt(mask);
}

PictureOddities& oddities(REALpictureStruct* handle) {
  auto* picture = wanted(handle, "get oddities");
  if (!picture) throw std::invalid_argument("oddities of what is no picture");
  return picture->oddities;
}

void addPictureServices(std::vector<Entry>& all) {
  all.insert(all.end(),
             {
                 entry<newByDepth>("newPicture"),
                 entry<buildFromBuffer, failToBuild>("REALBuildPictureFromBuffer"),
                 entry<buildFromPlatformImage>("REALBuildPictureFromGWorld"),
                 entry<lockNaturally, failNaturally>("lockPictureDescription"),
                 entry<lockAsType, failAsType>("REALLockPictureDescription"),
                 entry<unlock>("unlockPictureDescription"),
                 entry<clearCache>("REALPictureClearCache"),
                 entry<getMask>("REALGetPictureMask"),
                 entry<graphicsOf>("pluginPictureGraphicsGetter"),
                 entry<construct>("Constructor(width as integer, height as integer)", Giver::picture),
                 entry<copyMask>("CopyMask as Picture", Giver::picture),
                 entry<assignMask>("Mask(assigns newMask As Picture)", Giver::picture),
             });
}

}  // namespace host
