// Host objects: counted references, pictures, memory blocks, graphics, instances of plug-in classes.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/host_interface.h"

namespace host {

// An owning reference to a host object of handle type T (REALpictureStruct and so on): releases it at the
// end.
template <typename T>
class Ref;

// Counts up or down; the last release destroys. A handle that is not alive is counted as an error, not
// touched.
void retain(REALobjectStruct* object);
void release(REALobjectStruct* object);
// References held on a live object; 0 for a dead one.
int references(const REALobjectStruct* object);

template <typename T>
class Ref {
 public:
  Ref() = default;
  // Takes over one reference that the caller owns (the result of a plug-in call, for example).
  static Ref adopt(T* handle) {
    Ref ref;
    ref.handle_ = handle;
    return ref;
  }
  Ref(const Ref& other) : handle_(other.handle_) {
    if (handle_) retain(handle_);
  }
  Ref(Ref&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Ref& operator=(Ref other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Ref() {
    if (handle_) release(handle_);
  }
  T* get() const { return handle_; }
  T* leak() { return std::exchange(handle_, nullptr); }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  T* handle_ = nullptr;
};
using PictureRef = Ref<REALpictureStruct>;
using MemoryBlockRef = Ref<REALmemoryBlockStruct>;
using ObjectRef = Ref<REALobjectStruct>;

// ---- Pictures ----

// A picture that the plug-in builds from a buffer of its own ("REALBuildPictureFromBuffer") copies the pixels
// and takes the buffer over: it is freed with free() when the picture dies.

// A new picture, every pixel `Settings::freshPixel`. Sizes from 1 on; an empty Ref when memory runs out.
PictureRef newPicture(int width, int height, bool hasAlpha = false);
int pictureWidth(REALpictureStruct* picture);
int pictureHeight(REALpictureStruct* picture);
bool pictureHasAlpha(REALpictureStruct* picture);
// The pixels as 32-bit words in the picture's own layout: red in bits 16-23, green 8-15, blue 0-7. Top byte
// of a picture with alpha: opacity (premultiplied colours) on the cairo road, transparency in bits 24-30 (0
// is opaque) on the console road. A row holds `pictureWidth` words; the pointer is good while the picture
// lives.
uint32_t* pictureRow(REALpictureStruct* picture, int y);
// The mask picture or null; the picture keeps the reference.
REALpictureStruct* pictureMask(REALpictureStruct* picture);
void setPictureMask(REALpictureStruct* picture, REALpictureStruct* mask);

// Oddities of one picture, for tests.
struct PictureOddities {
  bool refusesLock = false;      // every lock fails; copies of it work
  bool copiesRefuseToo = false;  // and so do pictures that it is drawn into
  bool hidesSize = false;        // "Width" and "Height" can't be read
  bool noGraphics = false;       // no graphics object
  int32_t reportedType = 0;      // picture type in the description, when not 0
  bool nullHandle = false;       // a lock succeeds with a null handle
  uint32_t bitmapKind = 0;       // first word of the bitmap record
  bool noRowTable = false;       // bitmap record without a row table
  bool noRequired = false;       // bitmap record without its other required word
  int32_t describedWidth = -1;   // size in the description, when not -1
  int32_t describedHeight = -1;
  int32_t claimedWidth = -1;  // "Width" and "Height", when not -1
  int32_t claimedHeight = -1;
  int32_t shownWidth = -1;  // size of what a lock shows, when not -1; at most the picture's own
  int32_t shownHeight = -1;
  int32_t nullRow = -1;  // row of the bitmap record's table that is null
};
PictureOddities& oddities(REALpictureStruct* picture);

// ---- Memory blocks ----

MemoryBlockRef newMemoryBlock(const void* bytes, size_t size);
uint8_t* memoryBlockBytes(REALmemoryBlockStruct* block);
size_t memoryBlockSize(REALmemoryBlockStruct* block);
// From now on the block reports this size instead of its own.
void setReportedSize(REALmemoryBlockStruct* block, int32_t size);

// ---- Instances of plug-in classes ----

// A new instance (data zero-filled, constructor called), or an empty Ref for an unknown class.
ObjectRef newInstance(const std::string& className);
// The plug-in's data in an instance; null for another kind of object.
uint8_t* instanceData(REALobjectStruct* object);

// ---- Arrays (32-bit, 64-bit and smaller elements) ----

// A new array of the host's element type code with the given upper bound (-1: empty), elements zero.
ObjectRef newArray(int32_t elementType, int32_t upperBound);

}  // namespace host
