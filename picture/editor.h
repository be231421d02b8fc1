// Row-by-row access to the pixels of host pictures, however the host stores them.
//
// An editor locks a picture, holds one reference on it and exposes its pixels as rows: `row` points to the
// current row, AddPixelRow advances it. `clear` and the destructor release everything that an editor holds.
// Nothing here raises a host exception: failure is false or null.
#pragma once

#include "frame/entry_points.h"
#include "frame/held.h"
#include "frame/memory.h"
#include "picture/pictures.h"
#include "picture/toolkits.h"

// Pixel formats. Words have red in bits 16-23, green in bits 8-15, blue in bits 0-7.
enum PixelFormat : int32_t {
  kFormatNone = 0,
  kFormatHostBitmap = 8,    // words, top byte written as 0; rows through a row table
  kFormatRGB24 = 11,        // bytes red, green, blue: a GDK pixbuf copy, or a writer's own buffer
  kFormatCairoAlpha = 14,   // words, top byte written as 255
  kFormatCairoOpaque = 15,  // likewise
};

// The start of row y at a stride of `rowBytes`. The rows may take more than half the address space.
inline uint8_t* rowAt(uint8_t* firstRow, int32_t y, int32_t rowBytes) {
  return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(firstRow) +
                                    static_cast<uintptr_t>(y) * static_cast<uintptr_t>(rowBytes));
}

class PictureEditor {
 public:
  PictureEditor() = default;
  ~PictureEditor() noexcept(false);  // as clear
  PictureEditor(const PictureEditor&) = delete;
  PictureEditor& operator=(const PictureEditor&) = delete;

  // Locks a picture's pixels. `needsPixels`: the caller reads them; `changesPixels`: the caller writes them,
  // and `clear` notifies the host. False for a null picture and if no access path to the pixels works.
  bool GetPictureEditor(REALpictureStruct* source, bool needsPixels, bool changesPixels);
  // For changes in place: true only if writes reach the picture itself, which they don't through a GDK copy.
  bool GetPictureEditor(REALpictureStruct* source);
  // Takes a reference on a picture (or null) and releases the previous one.
  void setPicture(REALpictureStruct* newPicture);
  // Releases lock, pixbuf and picture; keeps sizes, format, row, buffer and access flags. A host exception
  // from one of the services propagates after all of them were called.
  void clear();

  // The start of row y. A row past the end is row 0. Precondition: y >= 0.
  uint8_t* GetRow(int32_t y);
  // Moves to the next row and returns its start; after the last row that is row 0 again.
  uint8_t* AddPixelRow();

  // Properties of the pixel format; 0 for unknown codes.
  int32_t GetBytesPerPixel() const;
  int32_t GetRedOffset() const;
  int32_t GetGreenOffset() const;
  int32_t GetBlueOffset() const;

  // Whether a pixel is a 32-bit word, and its top byte when written.
  bool hasWords() const {
    return format == kFormatHostBitmap || format == kFormatCairoAlpha || format == kFormatCairoOpaque;
  }
  uint32_t topByte() const { return format == kFormatHostBitmap ? 0 : 0xFF000000; }

  int32_t rowBytes = 0;  // stride; informational for kFormatHostBitmap
  int32_t width = 0;     // pixels
  int32_t height = 0;
  int32_t bytesPerPixel = 0;
  int32_t format = kFormatNone;  // PixelFormat
  uint8_t* row = nullptr;        // current row
  REALpictureDescription description = {};
  uint8_t* buffer = nullptr;  // a writer's own pixels; owned unless passed to the host
  uint8_t* firstRow = nullptr;
  int32_t rowIndex = 0;                  // current row
  REALpictureStruct* picture = nullptr;  // held
  GdkPixbuf* pixbuf = nullptr;
  uint8_t** rowTable = nullptr;  // kFormatHostBitmap only
  bool hasAlpha = false;
  bool readAccess = false;
  bool writeAccess = false;
  bool descriptionLocked = false;

 protected:
  // Transfers the creator's reference on a new picture to the editor, on a host where the editor could not
  // add its own.
  void takeOver(Held<REALpictureStruct>& made);

  Held<REALpictureStruct> reference_;  // on `picture`

 private:
  enum class Copies { allowed, none };
  bool open(REALpictureStruct* source, Copies copies);
  bool openWithAlpha(REALpictureStruct* source);
  bool openWithoutAlpha(REALpictureStruct* source, Copies copies);
  bool openCairo(REALpictureStruct* source, PixelFormat surfaceFormat);
  bool openDrawable(REALpictureStruct* source);
  bool openBitmap(REALpictureStruct* source);
  void show(REALpictureStruct* source, PixelFormat shownFormat, uint8_t* pixels, int32_t w, int32_t h,
            int32_t stride);
};

// Read access to a picture.
class PictureReader : public PictureEditor {
 public:
  bool GetPictureReader(REALpictureStruct* source) { return GetPictureEditor(source, true, false); }
};

// A new picture, filled row by row.
class PictureWriter : public PictureEditor {
 public:
  ~PictureWriter();

  // Creates a host picture with sides from 1 to kLargestPictureSide.
  bool NewPictureWriter(int32_t newWidth, int32_t newHeight);
  // The same with an alpha channel; the host limits its size. False if writes would only reach a copy.
  bool NewPictureWriterWithAlphaChannel(int32_t newWidth, int32_t newHeight);
  // With an alpha channel if requested and available.
  bool NewPictureWriter(int32_t newWidth, int32_t newHeight, bool alpha);
  // Writes the top-left part of an existing picture if it is large enough and can be opened, else a new one.
  bool NewPictureWriter(REALpictureStruct* target, int32_t newWidth, int32_t newHeight);
  // Like another editor's picture: with alpha if that has it, at its size or the one given.
  bool NewPictureWriter(const PictureReader& like, int32_t newWidth, int32_t newHeight);
  bool NewPictureWriter(const PictureReader& like);
  bool NewPictureWriter(const PictureWriter& like);
  // Replaces the host picture by the writer's own zero-filled RGB24 buffer. See losesFirstRow.
  bool NewPictureWriterLinux(int32_t newWidth, int32_t newHeight);
  // Row 0 of a result on the GDK road stays black, on purpose: `row` points into the writer's own buffer only
  // after the first AddPixelRow, and earlier writes through it are discarded. GetRow(0) does reach row 0.
  bool losesFirstRow() const { return buffer != nullptr; }

  // Finishes the picture and returns it with one reference for the caller; null on failure.
  REALpictureStruct* RenderPictureWriter();

 private:
  // Opens the top-left part of a picture; false also if it turns out smaller than requested, or than its
  // properties say.
  bool openFor(REALpictureStruct* target, int32_t newWidth, int32_t newHeight);

  Scratch discardedRow_;
};

// The host's own count of locks on a picture, for debugging; 0 for null.
int32_t GetPictureLockCount(REALpictureStruct* picture);
