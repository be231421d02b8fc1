// Row-by-row access to the pixels of host pictures, whichever way the host keeps them.
//
// An editor locks a picture, holds one reference on it and shows its pixels as rows: `row` is the first byte
// of the current row, AddPixelRow moves on. Everything that an editor holds is released by `clear` and by the
// destructor. Nothing here raises a host exception: failure is false or null.
#pragma once

#include "frame/entry_points.h"
#include "frame/held.h"
#include "frame/memory.h"
#include "picture/toolkits.h"

// How a pixel is kept. Words have red in bits 16-23, green in bits 8-15, blue in bits 0-7.
enum PixelFormat : int32_t {
  kFormatNone = 0,
  kFormatHostBitmap = 8,    // words, top byte written as 0; rows through a row table
  kFormatRGB24 = 11,        // bytes red, green, blue: a GDK pixbuf copy, or a writer's own buffer
  kFormatCairoAlpha = 14,   // words, top byte written as 255
  kFormatCairoOpaque = 15,  // likewise
};

// The largest width and height of a picture that the plug-in makes.
constexpr int32_t kLargestPictureSide = 32767;

// Start of row y of rows that lie `rowBytes` apart. All of them may take up more than half the address space.
inline uint8_t* rowAt(uint8_t* firstRow, int32_t y, int32_t rowBytes) {
  return reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(firstRow) +
                                    static_cast<uintptr_t>(y) * static_cast<uintptr_t>(rowBytes));
}

class PictureEditor {
 public:
  PictureEditor() = default;
  virtual ~PictureEditor() noexcept(false);  // as clear
  PictureEditor(const PictureEditor&) = delete;
  PictureEditor& operator=(const PictureEditor&) = delete;

  // Locks a picture's pixels. `needsPixels`: those it has will be read; `changesPixels`: they will be
  // changed, and the host is told so when the editor is cleared. False for a null picture and for one whose
  // pixels can't be had.
  bool GetPictureEditor(REALpictureStruct* source, bool needsPixels, bool changesPixels);
  // For a change in place: true only when writes land in the picture itself, which they don't in a GDK copy.
  bool GetPictureEditor(REALpictureStruct* source);
  // Takes a reference on a picture (or null) and releases the one held before.
  void setPicture(REALpictureStruct* newPicture);
  // Releases lock, pixbuf and picture. Sizes, format, row, buffer and access flags stay as they are. A host's
  // exception out of one of these services passes through once all of them were called.
  void clear();

  // Start of row y. A row past the end is row 0; a row below 0 is the caller's mistake.
  uint8_t* GetRow(int32_t y);
  // Moves to the next row and answers its start; after the last row that is row 0 again.
  uint8_t* AddPixelRow();

  // Of the pixel format; 0 for codes that stand for none.
  int32_t GetBytesPerPixel() const;
  int32_t GetRedOffset() const;
  int32_t GetGreenOffset() const;
  int32_t GetBlueOffset() const;

  // Whether a pixel is a 32-bit word, and the top byte to write into one.
  bool hasWords() const {
    return format == kFormatHostBitmap || format == kFormatCairoAlpha || format == kFormatCairoOpaque;
  }
  uint32_t topByte() const { return format == kFormatHostBitmap ? 0 : 0xFF000000; }

  int32_t rowBytes = 0;  // from one row to the next; informational for kFormatHostBitmap
  int32_t width = 0;     // pixels
  int32_t height = 0;
  int32_t bytesPerPixel = 0;
  int32_t format = kFormatNone;  // PixelFormat
  uint8_t* row = nullptr;        // current row
  REALpictureDescription description = {};
  uint8_t* buffer = nullptr;  // a writer's own pixels; freed by the destructor unless the host was given it
  uint8_t* firstRow = nullptr;
  int32_t column = 0;                    // 0 whenever the row changes; nothing reads it
  int32_t rowIndex = 0;                  // current row
  REALpictureStruct* picture = nullptr;  // held
  GdkPixbuf* pixbuf = nullptr;
  uint8_t** rowTable = nullptr;  // kFormatHostBitmap only
  bool hasAlpha = false;
  bool directSurface = false;  // the pixels are a cairo surface; nothing reads it
  bool readAccess = false;
  bool writeAccess = false;
  bool descriptionLocked = false;

 protected:
  // Leaves a picture that was made for this editor alone to it, on a host where the editor could not count
  // itself in.
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
  ~PictureWriter() override;

  // On a new host picture, of sizes from 1 to kLargestPictureSide.
  bool NewPictureWriter(int32_t newWidth, int32_t newHeight);
  // The same with an alpha channel; its largest size is the host's. False where writes would land in a copy.
  bool NewPictureWriterWithAlphaChannel(int32_t newWidth, int32_t newHeight);
  // With an alpha channel if that is wanted and to be had.
  bool NewPictureWriter(int32_t newWidth, int32_t newHeight, bool alpha);
  // On the top-left part of an existing picture when it is large enough and can be opened, else on a new one.
  bool NewPictureWriter(REALpictureStruct* target, int32_t newWidth, int32_t newHeight);
  // As another editor's picture is: with alpha if it has it, at its size or the one given.
  bool NewPictureWriter(const PictureReader& like, int32_t newWidth, int32_t newHeight);
  bool NewPictureWriter(const PictureReader& like);
  bool NewPictureWriter(const PictureWriter& like);
  // Leaves the host picture for a zero-filled buffer of the writer's own. Row 0 of the result stays black, on
  // purpose: `row` is not moved to the buffer before the first AddPixelRow, and what is written to it until
  // then is dropped.
  bool NewPictureWriterLinux(int32_t newWidth, int32_t newHeight);

  // Ends the writing: the picture, with one reference for the caller, or null.
  REALpictureStruct* RenderPictureWriter();

 private:
  // Opens the top-left part of a picture; false also when its pixels turn out to be fewer than the host was
  // asked for, or than its properties promised.
  bool openFor(REALpictureStruct* target, int32_t newWidth, int32_t newHeight);

  Scratch discardedRow_;
};

// Locks a description in the wanted REALPictureType; cleans up after a failure. The caller unlocks.
bool REALLockPictureDescriptionX(REALpictureStruct* picture, REALpictureDescription* description,
                                 int32_t pictureType);
// Hosts before version 2012 leave a failed lock half taken; for later ones this does nothing.
void REALUnlockPictureDescriptionAfterFailure(REALpictureStruct* picture);
// The host's own count of locks on a picture, for debugging; 0 for null.
int32_t GetPictureLockCount(REALpictureStruct* picture);
