// PNG through libpng. The library reports errors by a long jump; the functions that it jumps into hold
// nothing that has a destructor, what they work on belongs to their callers.

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <new>

#include "zvr/files/images.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

struct Problem {
  char text[160] = "";
};

[[noreturn]] void onError(png_structp png, png_const_charp message) {
  auto* problem = static_cast<Problem*>(png_get_error_ptr(png));
  if (!problem->text[0]) std::strncpy(problem->text, message, sizeof(problem->text) - 1);
  png_longjmp(png, 1);
}
void onWarning(png_structp, png_const_charp) {}

// ---- Reading ----

class Reader {
 public:
  explicit Reader(const std::vector<uint8_t>& file)
      : file_(file),
        png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &problem_, onError, onWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {}
  ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  Image image() {
    if (!info_) throw std::bad_alloc();
    Image image;
    if (!readHeader()) fail();
    image.allocate(png_get_image_width(png_, info_), png_get_image_height(png_, info_));
    image.hasAlpha = hasAlpha_;
    if (!readRows(image.pixels.get(), image.rowBytes(), image.height)) fail();
    return image;
  }

 private:
  static void onRead(png_structp png, png_bytep target, size_t count) {
    auto* reader = static_cast<Reader*>(png_get_io_ptr(png));
    if (count > reader->file_.size() - reader->position_) png_error(png, "the file ends too early");
    std::memcpy(target, reader->file_.data() + reader->position_, count);
    reader->position_ += count;
  }

  // Everything becomes four bytes a pixel.
  bool readHeader() {
    if (setjmp(png_jmpbuf(png_))) return false;
    png_set_read_fn(png_, this, onRead);
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // too large sides get our own message
    png_read_info(png_, info_);
    hasAlpha_ = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_ALPHA) != 0 ||
                png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
    passes_ = png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    return true;
  }

  bool readRows(uint8_t* pixels, size_t rowBytes, int height) {
    if (setjmp(png_jmpbuf(png_))) return false;
    for (int pass = 0; pass < passes_; ++pass) {
      for (int y = 0; y < height; ++y) {
        png_read_row(png_, pixels + static_cast<size_t>(y) * rowBytes, nullptr);
      }
    }
    png_read_end(png_, nullptr);
    return true;
  }

  [[noreturn]] void fail() const { throw Failure(std::string("damaged PNG: ") + problem_.text); }

  Problem problem_;
  const std::vector<uint8_t>& file_;
  size_t position_ = 0;
  png_structp png_;
  png_infop info_;
  int passes_ = 1;
  bool hasAlpha_ = false;
};

// ---- Writing ----

class Writer {
 public:
  Writer()
      : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &problem_, onError, onWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {}
  ~Writer() { png_destroy_write_struct(&png_, &info_); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  std::vector<uint8_t> file(const Image& image) {
    if (!info_) throw std::bad_alloc();
    if (!write(image)) throw Failure(std::string("can't be written as PNG: ") + problem_.text);
    return std::move(file_);
  }

 private:
  static void onWrite(png_structp png, png_bytep bytes, size_t count) {
    auto* writer = static_cast<Writer*>(png_get_io_ptr(png));
    if (!writer->append(bytes, count)) png_error(png, "not enough memory");
  }
  // No exception may pass through the library.
  bool append(const uint8_t* bytes, size_t count) {
    try {
      file_.insert(file_.end(), bytes, bytes + count);
      return true;
    } catch (const std::bad_alloc&) {
      return false;
    }
  }

  bool write(const Image& image) {
    if (setjmp(png_jmpbuf(png_))) return false;
    png_set_write_fn(png_, this, onWrite, [](png_structp) {});
    const int type = image.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height),
                 8, type, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png_, info_);
    if (!image.hasAlpha) png_set_filler(png_, 0, PNG_FILLER_AFTER);
    for (int y = 0; y < image.height; ++y) png_write_row(png_, image.row(y));
    png_write_end(png_, nullptr);
    return true;
  }

  Problem problem_;
  std::vector<uint8_t> file_;
  png_structp png_;
  png_infop info_;
};

}  // namespace

bool isPng(const std::vector<uint8_t>& file) {
  constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  return file.size() >= sizeof(kSignature) && std::memcmp(file.data(), kSignature, sizeof(kSignature)) == 0;
}

Image decodePng(const std::vector<uint8_t>& file) { return Reader(file).image(); }
std::vector<uint8_t> encodePng(const Image& image) { return Writer().file(image); }

}  // namespace zvr
