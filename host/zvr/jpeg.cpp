// JPEG through libjpeg. The library reports errors by a long jump; the functions that it jumps into hold
// nothing that has a destructor, what they work on belongs to their callers.

#include <csetjmp>
#include <cstdio>
#include <cstdlib>

// The library's header needs the one above.
#include <jerror.h>
#include <jpeglib.h>

#include "host/zvr/images.h"
#include "host/zvr/program.h"

namespace zvr {
namespace {

struct Problem {
  jpeg_error_mgr manager;
  jmp_buf jump;
  char text[JMSG_LENGTH_MAX] = "";
  bool isTooLong = false;
};

// Each scan takes time for the whole picture, however few bytes it has. Encoders make ten or so.
constexpr int kMostScans = 100;

[[noreturn]] void onError(j_common_ptr common) {
  auto* problem = reinterpret_cast<Problem*>(common->err);  // the manager is its first member
  common->err->format_message(common, problem->text);
  std::longjmp(problem->jump, 1);
}
// Missing data is an error; other oddities leave the pixels complete.
void onMessage(j_common_ptr common, int level) {
  const int code = common->err->msg_code;
  if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER)) onError(common);
}
// Called again and again while a file of several scans is read.
void onProgress(j_common_ptr common) {
  if (reinterpret_cast<j_decompress_ptr>(common)->input_scan_number <= kMostScans) return;
  auto* problem = reinterpret_cast<Problem*>(common->err);
  problem->isTooLong = true;
  std::longjmp(problem->jump, 1);
}
void prepare(Problem& problem) {
  jpeg_std_error(&problem.manager);
  problem.manager.error_exit = onError;
  problem.manager.emit_message = onMessage;
}

// ---- Reading ----

class Reader {
 public:
  Reader() {
    prepare(problem_);
    decoder_.err = &problem_.manager;
    progress_.progress_monitor = onProgress;
  }
  ~Reader() { jpeg_destroy_decompress(&decoder_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  Image image(const std::vector<uint8_t>& file) {
    if (!open(file)) fail();
    if (decoder_.num_components > 3)
      throw Failure("CMYK JPEG pictures are not supported; save it as RGB first");
    Image image;
    image.allocate(decoder_.image_width, decoder_.image_height);
    if (!readRows(image)) fail();
    return image;
  }

 private:
  bool open(const std::vector<uint8_t>& file) {
    if (setjmp(problem_.jump)) return false;
    jpeg_create_decompress(&decoder_);
    decoder_.progress = &progress_;
    jpeg_mem_src(&decoder_, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&decoder_, TRUE);
    return true;
  }

  bool readRows(const Image& image) {
    if (setjmp(problem_.jump)) return false;
    decoder_.out_color_space = JCS_RGB;
    jpeg_start_decompress(&decoder_);
    while (decoder_.output_scanline < decoder_.output_height) {
      JSAMPROW row = image.row(static_cast<int>(decoder_.output_scanline));
      jpeg_read_scanlines(&decoder_, &row, 1);
      widen(row, image.width);
    }
    jpeg_finish_decompress(&decoder_);
    return true;
  }

  // Three bytes a pixel become four, from the right so that nothing is overwritten unread.
  static void widen(uint8_t* row, int width) {
    for (int x = width - 1; x >= 0; --x) {
      const uint8_t r = row[x * 3], g = row[x * 3 + 1], b = row[x * 3 + 2];
      row[x * 4] = r;
      row[x * 4 + 1] = g;
      row[x * 4 + 2] = b;
      row[x * 4 + 3] = 255;
    }
  }

  [[noreturn]] void fail() const {
    if (!problem_.isTooLong) throw Failure(std::string("damaged JPEG: ") + problem_.text);
    throw Failure("a JPEG of more than " + std::to_string(kMostScans) +
                  " scans, which would take too long to read");
  }

  Problem problem_;
  jpeg_progress_mgr progress_{};
  jpeg_decompress_struct decoder_{};
};

// ---- Writing ----

class Writer {
 public:
  Writer() {
    prepare(problem_);
    encoder_.err = &problem_.manager;
  }
  ~Writer() {
    jpeg_destroy_compress(&encoder_);
    std::free(file_);
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  std::vector<uint8_t> file(const Image& image, int quality) {
    std::vector<uint8_t> row(static_cast<size_t>(image.width) * 3);
    if (!write(image, quality, row.data())) {
      throw Failure(std::string("can't be written as JPEG: ") + problem_.text);
    }
    return {file_, file_ + size_};
  }

 private:
  bool write(const Image& image, int quality, uint8_t* row) {
    if (setjmp(problem_.jump)) return false;
    jpeg_create_compress(&encoder_);
    jpeg_mem_dest(&encoder_, &file_, &size_);
    encoder_.image_width = static_cast<JDIMENSION>(image.width);
    encoder_.image_height = static_cast<JDIMENSION>(image.height);
    encoder_.input_components = 3;
    encoder_.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder_);
    jpeg_set_quality(&encoder_, quality, TRUE);
    jpeg_start_compress(&encoder_, TRUE);
    while (encoder_.next_scanline < encoder_.image_height) {
      narrow(image.row(static_cast<int>(encoder_.next_scanline)), image.width, row);
      jpeg_write_scanlines(&encoder_, &row, 1);
    }
    jpeg_finish_compress(&encoder_);
    return true;
  }

  // Blended with white by opacity.
  static void narrow(const uint8_t* source, int width, uint8_t* target) {
    for (int x = 0; x < width; ++x, source += 4, target += 3) {
      const unsigned opacity = source[3];
      for (int i = 0; i < 3; ++i) {
        target[i] = static_cast<uint8_t>((source[i] * opacity + 255 * (255 - opacity) + 127) / 255);
      }
    }
  }

  Problem problem_;
  jpeg_compress_struct encoder_{};
  unsigned char* file_ = nullptr;
  unsigned long size_ = 0;
};

}  // namespace

bool isJpeg(const std::vector<uint8_t>& file) {
  return file.size() >= 3 && file[0] == 0xFF && file[1] == 0xD8 && file[2] == 0xFF;
}

Image decodeJpeg(const std::vector<uint8_t>& file) { return Reader().image(file); }
std::vector<uint8_t> encodeJpeg(const Image& image, int quality) { return Writer().file(image, quality); }

}  // namespace zvr
