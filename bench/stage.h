// A host with the built library in it, and the pictures that calls work on.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "bench/contents.h"
#include "host/calls.h"
#include "host/host.h"
#include "host/objects.h"

namespace bench {

// How the host keeps pixels: in words (cairo surfaces), or in 3 bytes each (GDK drawables, read through a
// stand-in for GDK that takes them from where they lie).
enum class Pixels { words, rgb24 };
std::string nameOf(Pixels pixels);

// One stage at a time: there is one host in a process.
class Stage {
 public:
  Stage(Pixels pixels, const std::string& library);

  // The stage with these pixels and this library: the last one, if it is, else a new one.
  static Stage& of(Pixels pixels, const std::string& library);

  // A picture of this content; the same one each time until another size is asked for.
  host::PictureRef picture(Content content, const Size& size);
  host::PictureRef newPicture(const Size& size, const uint32_t* words);
  // Bytes that the pixels of a picture take without padding, and where they are.
  size_t bytesOf(const Size& size) const { return size.pixels() * (pixels_ == Pixels::words ? 4 : 3); }
  static const void* bytesOf(const host::PictureRef& picture) { return host::pictureRow(picture.get(), 0); }

  // The function behind a registered method with so many parameters.
  template <typename Signature>
  Signature* function(const std::string& name, size_t parameters) const {
    return reinterpret_cast<Signature*>(method(name, parameters).function);
  }
  const host::Method& method(const std::string& name, size_t parameters) const;
  // Likewise for a class of the plug-in.
  template <typename Signature>
  Signature* function(const std::string& className, const std::string& name) const {
    return reinterpret_cast<Signature*>(method(className, name).function);
  }
  const host::Method& method(const std::string& className, const std::string& name) const;

 private:
  void setRow(const host::PictureRef& picture, int y, const Size& size, const uint32_t* words) const;

  Pixels pixels_;
  std::string library_;
  std::unique_ptr<host::Plugin> plugin_;
  Size lastSize_{0, 0};
  std::map<Content, host::PictureRef> pictures_;
};

}  // namespace bench
