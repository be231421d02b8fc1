// A host with the built library loaded, and the pictures that calls work on.
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

// How the host stores pixels: as words in one block (cairo surfaces), as words in rows of their own (bitmaps
// of console hosts), or as RGB24 (GDK drawables, through a stand-in for GDK that reads them in place).
enum class Pixels { words, rows, rgb24 };
std::string nameOf(Pixels pixels);

// One stage at a time: there is one host in a process.
class Stage {
 public:
  Stage(Pixels pixels, const std::string& library);

  // The stage with these pixels and this library: the previous one if it matches, else a new one.
  static Stage& of(Pixels pixels, const std::string& library);

  // A picture of this content; cached until another size is requested.
  host::PictureRef picture(Content content, const Size& size);
  host::PictureRef newPicture(const Size& size, const uint32_t* words);
  // The function behind a registered method with this many parameters.
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
