// The access paths to a picture's pixels: cairo, GDK and host bitmap.

#include "picture/editor.h"

#include "frame/application.h"
#include "picture/description_lock.h"
#include "picture/pictures.h"

namespace {

// Bytes per pixel and the offsets of red, green and blue, by format code. The editor uses 8, 11, 14 and 15.
struct PixelLayout {
  uint8_t bytes, red, green, blue;
};
constexpr PixelLayout kLayouts[] = {
    {0, 0, 0, 0}, {4, 0, 1, 2}, {4, 1, 2, 3}, {4, 0, 1, 2}, {4, 1, 2, 3}, {4, 0, 1, 2},
    {4, 1, 2, 3}, {0, 0, 0, 0}, {4, 2, 1, 0}, {4, 2, 1, 0}, {3, 2, 1, 0}, {3, 0, 1, 2},
    {3, 0, 1, 2}, {4, 1, 2, 3}, {4, 2, 1, 0}, {4, 2, 1, 0}, {4, 2, 1, 0},
};

const PixelLayout& layoutOf(int32_t format) {
  return kLayouts[static_cast<uint32_t>(format) < sizeof kLayouts / sizeof *kLayouts ? format : kFormatNone];
}

// Whether a bitmap record is complete, not smaller than its description (a host may leave its size at 0), and
// of a size that fits into memory. Checks every row now, since a missing one would only show when touched.
bool isUsable(const REALbitmapRecord* bitmap, int32_t width, int32_t height) {
  if (width < 0 || width > INT32_MAX / 4 || height < 0) return false;
  if (!bitmap || bitmap->kind != 0 || !bitmap->rowTable || !bitmap->required) return false;
  if (bitmap->width != 0 && bitmap->width < width) return false;
  if (bitmap->height != 0 && bitmap->height < height) return false;
  for (int32_t y = 0; y < height; ++y) {
    if (!bitmap->rowTable[y]) return false;
  }
  return true;
}

}  // namespace

// ---- PictureEditor ----

PictureEditor::~PictureEditor() noexcept(false) { clear(); }

bool PictureEditor::GetPictureEditor(REALpictureStruct* source, bool needsPixels, bool changesPixels) {
  clear();
  if (!source) return false;
  readAccess = needsPixels;
  writeAccess = changesPixels;
  return open(source, Copies::allowed);
}

bool PictureEditor::GetPictureEditor(REALpictureStruct* source) {
  return GetPictureEditor(source, true, true) && format != kFormatRGB24;
}

bool PictureEditor::open(REALpictureStruct* source, Copies copies) {
  if (!IsConsole() && !IsDesktop()) CheckApplication();
  hasAlpha = PictureHasAlphaChannel(source);
  if (IsConsole()) return openBitmap(source);
  return hasAlpha ? openWithAlpha(source) : openWithoutAlpha(source, copies);
}

bool PictureEditor::openWithAlpha(REALpictureStruct* source) {
  DescriptionLock lock(source, &description, kPictureTypeCairo);
  if (!lock) return !IsDesktop() && openBitmap(source);
  setApplicationKind(ApplicationKind::desktop);
  const bool opened = openCairo(source, kFormatCairoAlpha);
  // On failure the description stays locked, unlike without alpha, on purpose.
  lock.keep();
  return opened;
}

bool PictureEditor::openWithoutAlpha(REALpictureStruct* source, Copies copies) {
  if (DescriptionLock lock(source, &description, kPictureTypeCairo); lock) {
    setApplicationKind(ApplicationKind::desktop);
    if (!openCairo(source, kFormatCairoOpaque)) return false;
    lock.keep();
    return true;
  }
  if (DescriptionLock lock(source, &description, kPictureTypeDrawable); lock) {
    setApplicationKind(ApplicationKind::desktop);
    if (!openDrawable(source)) return false;
    lock.keep();
    return true;
  }
  // A picture that can't be locked is read through a copy that the host can lock.
  if (readAccess && !writeAccess && copies == Copies::allowed) {
    if (Held<REALpictureStruct> copy(ClonePicture(source)); copy) {
      if (!open(copy.get(), Copies::none)) return false;
      takeOver(copy);
      return true;
    }
  }
  return !IsDesktop() && openBitmap(source);
}

bool PictureEditor::openCairo(REALpictureStruct* source, PixelFormat surfaceFormat) {
  if (!description.handle || description.pictureType != kPictureTypeCairo || !LoadCairo()) return false;
  cairo_surface_t* surface = _cairo_get_target(static_cast<cairo_t*>(description.handle));
  if (!surface) return false;
  uint8_t* pixels = _cairo_image_surface_get_data(surface);
  const int32_t w = _cairo_image_surface_get_width(surface);
  const int32_t h = _cairo_image_surface_get_height(surface);
  const int32_t stride = _cairo_image_surface_get_stride(surface);
  // Rejects surfaces whose pixels are narrower than words.
  if (w < 1 || h < 1 || stride < int64_t{w} * 4 || !pixels) return false;
  show(source, surfaceFormat, pixels, w, h, stride);
  return true;
}

bool PictureEditor::openDrawable(REALpictureStruct* source) {
  if (!description.handle || description.pictureType != kPictureTypeDrawable || !LoadGTK()) return false;
  // GDK would print a warning to stderr, or take a negative size to mean the whole drawable.
  if (description.width < 1 || description.height < 1) return false;
  GdkPixbuf* copy = _gdk_pixbuf_get_from_drawable(nullptr, static_cast<GdkDrawable*>(description.handle),
                                                  nullptr, 0, 0, 0, 0, description.width, description.height);
  if (!copy) return false;
  uint8_t* pixels = _gdk_pixbuf_get_pixels(copy);
  // A copy without pixels is leaked, on purpose: the editor owns it only from here on.
  if (!pixels) return false;
  pixbuf = copy;
  show(source, kFormatRGB24, pixels, description.width, description.height, _gdk_pixbuf_get_rowstride(copy));
  return true;
}

bool PictureEditor::openBitmap(REALpictureStruct* source) {
  DescriptionLock lock(source, &description, kPictureTypeBitmap);
  if (!lock) return false;
  setApplicationKind(ApplicationKind::console);
  const auto* bitmap = static_cast<const REALbitmapRecord*>(description.handle);
  if (description.pictureType != kPictureTypeBitmap ||
      !isUsable(bitmap, description.width, description.height))
    return false;
  rowTable = bitmap->rowTable;
  uint8_t* pixels = description.height > 0 ? rowTable[0] : nullptr;
  show(source, kFormatHostBitmap, pixels, description.width, description.height, description.width * 4);
  lock.keep();
  return true;
}

void PictureEditor::show(REALpictureStruct* source, PixelFormat shownFormat, uint8_t* pixels, int32_t w,
                         int32_t h, int32_t stride) {
  setPicture(source);
  descriptionLocked = true;
  format = shownFormat;
  bytesPerPixel = GetBytesPerPixel();
  firstRow = row = pixels;
  width = w;
  height = h;
  rowBytes = stride;
  rowIndex = 0;
}

void PictureEditor::setPicture(REALpictureStruct* newPicture) {
  reference_ = Held<REALpictureStruct>::share(newPicture);
  picture = newPicture;
}

void PictureEditor::takeOver(Held<REALpictureStruct>& made) {
  if (!reference_.isCounted()) reference_ = static_cast<Held<REALpictureStruct>&&>(made);
}

void PictureEditor::clear() {
  // Releases in reverse order, each step even if the host throws from the one before.
  const Held<REALpictureStruct> reference(static_cast<Held<REALpictureStruct>&&>(reference_));
  REALpictureStruct* const cleared = picture;
  picture = nullptr;
  const AtExit dropCache([&] {
    if (writeAccess && cleared) REALPictureClearCache(cleared);
  });
  const bool isLocked = descriptionLocked;
  descriptionLocked = false;
  const AtExit unlock([&] {
    if (isLocked && cleared) REALUnlockPictureDescription(cleared);
  });
  GdkPixbuf* const copy = pixbuf;
  pixbuf = nullptr;
  if (copy && _gdk_pixbuf_unref) _gdk_pixbuf_unref(copy);
}

uint8_t* PictureEditor::GetRow(int32_t y) {
  rowIndex = y;
  if (y >= height) return firstRow;
  return format == kFormatHostBitmap ? rowTable[y] : rowAt(firstRow, y, rowBytes);
}

uint8_t* PictureEditor::AddPixelRow() { return row = GetRow(rowIndex + 1); }

int32_t PictureEditor::GetBytesPerPixel() const { return layoutOf(format).bytes; }
int32_t PictureEditor::GetRedOffset() const { return layoutOf(format).red; }
int32_t PictureEditor::GetGreenOffset() const { return layoutOf(format).green; }
int32_t PictureEditor::GetBlueOffset() const { return layoutOf(format).blue; }

// ---- PictureWriter ----

PictureWriter::~PictureWriter() { FreeMemoryNow(buffer); }

bool PictureWriter::openFor(REALpictureStruct* target, int32_t newWidth, int32_t newHeight) {
  if (!GetPictureEditor(target, false, true)) return false;
  // The size of a GDK copy doesn't matter: the writer replaces it by its own buffer.
  if (format != kFormatRGB24 && (width < newWidth || height < newHeight)) {
    clear();  // while the picture lives: on a host without reference counting the caller's reference is the
              // only one
    return false;
  }
  width = newWidth;
  height = newHeight;
  return true;
}

bool PictureWriter::NewPictureWriter(int32_t newWidth, int32_t newHeight) {
  if (newWidth < 1 || newWidth > kLargestPictureSide || newHeight < 1 || newHeight > kLargestPictureSide)
    return false;
  Held<REALpictureStruct> made(REALNewPicture(newWidth, newHeight, 32));
  if (!made || !openFor(made.get(), newWidth, newHeight)) return false;
  if (format == kFormatRGB24) return NewPictureWriterLinux(newWidth, newHeight);
  takeOver(made);
  return true;
}

bool PictureWriter::NewPictureWriterWithAlphaChannel(int32_t newWidth, int32_t newHeight) {
  Held<REALpictureStruct> made(NewPictureWithAlphaChannel(newWidth, newHeight));
  if (!made || !openFor(made.get(), newWidth, newHeight)) return false;
  if (format == kFormatRGB24) {
    clear();
    return false;
  }
  takeOver(made);
  return true;
}

bool PictureWriter::NewPictureWriter(int32_t newWidth, int32_t newHeight, bool alpha) {
  return (alpha && NewPictureWriterWithAlphaChannel(newWidth, newHeight)) ||
         NewPictureWriter(newWidth, newHeight);
}

bool PictureWriter::NewPictureWriter(REALpictureStruct* target, int32_t newWidth, int32_t newHeight) {
  // On a host without reference counting there would be no reference on the target for the caller.
  if (target && GetPictureWidth(target) >= newWidth && GetPictureHeight(target) >= newHeight &&
      openFor(target, newWidth, newHeight) && reference_.isCounted()) {
    return format != kFormatRGB24 || NewPictureWriterLinux(newWidth, newHeight);
  }
  return NewPictureWriter(newWidth, newHeight);
}

bool PictureWriter::NewPictureWriter(const PictureReader& like, int32_t newWidth, int32_t newHeight) {
  return NewPictureWriter(newWidth, newHeight, like.hasAlpha);
}

bool PictureWriter::NewPictureWriter(const PictureReader& like) {
  return NewPictureWriter(like.width, like.height, like.hasAlpha);
}

bool PictureWriter::NewPictureWriter(const PictureWriter& like) {
  return NewPictureWriter(like.width, like.height, like.hasAlpha);
}

bool PictureWriter::NewPictureWriterLinux(int32_t newWidth, int32_t newHeight) {
  clear();
  FreeMemoryNow(buffer);
  // One extra row: processing RGB24 rows may run past a row's end.
  const int64_t stride = int64_t{newWidth} * 3;
  buffer = static_cast<uint8_t*>(AllocateClearMemory(stride * (int64_t{newHeight} + 1)));
  // Columns are 4 bytes apart from the row's start, so writes to an RGB24 row reach that far.
  if (!buffer || !discardedRow_.allocate(int64_t{newWidth} * 4)) return false;
  width = newWidth;
  height = newHeight;
  rowBytes = static_cast<int32_t>(stride);
  bytesPerPixel = 3;
  firstRow = buffer;
  row = discardedRow_.get();
  format = kFormatRGB24;
  rowIndex = 0;
  return true;
}

REALpictureStruct* PictureWriter::RenderPictureWriter() {
  Held<REALpictureStruct> result;
  if (picture) {
    result = Held<REALpictureStruct>::share(picture);
    REALPictureClearCache(picture);
    // On a host without reference counting the caller gets the editor's own reference.
    if (!result.isCounted()) reference_.forget();
  } else if (buffer) {
    result =
        Held<REALpictureStruct>(REALBuildPictureFromBuffer(width, height, kPixelTypeRGB24, buffer, rowBytes));
    // The host now owns the buffer, on purpose even if it returned no picture; a host without the service
    // never saw it.
    if (result || HCallResolver("REALBuildPictureFromBuffer")) buffer = nullptr;
  }
  clear();
  return result.release();
}

int32_t GetPictureLockCount(REALpictureStruct* picture) {
  return picture ? reinterpret_cast<const int32_t*>(picture)[3] : 0;
}
