// A console host in one file: loads the library named on its command line, inverts a picture and passes an
// exception through the plug-in. It asks for nothing that the C library of an old system lacks, so that
// old_c_library.sh can run it there.

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "frame/host_interface.h"

asm(".symver dlopen, dlopen@GLIBC_2.1");
asm(".symver dlsym, dlsym@GLIBC_2.0");
asm(".symver dlerror, dlerror@GLIBC_2.0");
asm(".symver dlclose, dlclose@GLIBC_2.0");

// The way into a program that is linked with this machine's C library goes to that of older ones, which has
// the program run its initialisers.
extern "C" {
using Main = int (*)(int, char**, char**);
using Initialiser = void (*)(int, char**, char**);
int startAsEver(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
asm(".symver startAsEver, __libc_start_main@GLIBC_2.0");
extern __attribute__((visibility("hidden"))) const Initialiser __init_array_start[], __init_array_end[];

int __wrap___libc_start_main(Main main, int count, char** words, void (*init)(), void (*fini)(),
                             void (*linkerFini)(), void* stackEnd) {
  const auto initialise = [] {
    for (const Initialiser* i = __init_array_start; i != __init_array_end; ++i) (*i)(0, nullptr, nullptr);
  };
  return startAsEver(main, count, words, init ? init : initialise, fini, linkerFini, stackEnd);
}
}

namespace {

constexpr int kWidth = 37, kHeight = 5;

struct Picture : REALpictureStruct {
  uint32_t pixels[kHeight][kWidth];
  uint8_t* rows[kHeight];
  REALbitmapRecord bitmap;
  int references, locks;

  void begin() {
    for (int y = 0; y < kHeight; ++y) rows[y] = reinterpret_cast<uint8_t*>(pixels[y]);
    memset(pixels, 0, sizeof pixels);
    bitmap.kind = 0;
    bitmap.width = kWidth;
    bitmap.height = kHeight;
    bitmap.required = this;
    bitmap.rowTable = rows;
    references = 1;
    locks = 0;
  }
};
Picture source, result;

struct Refusal {};
bool refusesPictures;
REALpictureStruct* (*invert)(REALpictureStruct*);

Picture* from(REALobjectStruct* object) { return static_cast<Picture*>(object); }

double version() { return 2013.03; }

void registerExtension(REALclassDefinition* extension) {
  for (int32_t i = 0; i < extension->methodCount; ++i) {
    const REALmethodDefinition& method = extension->methods[i];
    if (strcmp(method.declaration, "InvertZVR as picture") != 0) continue;
    invert = reinterpret_cast<REALpictureStruct* (*)(REALpictureStruct*)>(method.function);
  }
}

void* classOf(const char* name) { return strcmp(name, "ConsoleApplication") == 0 ? &source : nullptr; }

REALpictureStruct* newPicture(int32_t width, int32_t height, int32_t) {
  if (refusesPictures) throw Refusal();
  if (width != kWidth || height != kHeight) return nullptr;
  result.begin();
  return &result;
}

RBBoolean lockPicture(REALpictureStruct* picture, REALpictureDescription* description, int32_t type) {
  if (type != kPictureTypeBitmap) return 0;
  description->pictureType = type;
  description->handle = &from(picture)->bitmap;
  description->width = kWidth;
  description->height = kHeight;
  ++from(picture)->locks;
  return 1;
}

void unlockPicture(REALpictureStruct* picture) { --from(picture)->locks; }
void lockObject(REALobjectStruct* object) { ++from(object)->references; }
void unlockObject(REALobjectStruct* object) { --from(object)->references; }

template <typename Function>
void* address(Function* function) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  const struct {
    const char* name;
    void* service;
  } services[] = {{"REALGetRBVersion", address(version)},
                  {"PluginRegisterClassExtension", address(registerExtension)},
                  {"pluginObjectType", address(classOf)},
                  {"newPicture", address(newPicture)},
                  {"REALLockPictureDescription", address(lockPicture)},
                  {"unlockPictureDescription", address(unlockPicture)},
                  {"REALLockObject", address(lockObject)},
                  {"REALUnlockObject", address(unlockObject)}};
  for (const auto& known : services) {
    if (strcmp(name, known.name) == 0) return known.service;
  }
  return nullptr;
}

bool isInverted() {
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      if (((source.pixels[y][x] ^ result.pixels[y][x]) & 0xFFFFFF) != 0xFFFFFF) return false;
    }
  }
  return true;
}

bool isBalanced(const Picture& picture) { return picture.references == 1 && picture.locks == 0; }

bool check(bool isRight, const char* claim) {
  printf("%s: %s\n", isRight ? "ok" : "WRONG", claim);
  return isRight;
}

}  // namespace

int main(int count, char** words) {
  void* library = count == 2 ? dlopen(words[1], RTLD_NOW) : nullptr;
  if (!library) {
    fprintf(stderr, "%s\n", count == 2 ? dlerror() : "Usage: old_c_library LIBRARY");
    return 2;
  }
  const auto enter = reinterpret_cast<void (*)(REALResolver)>(dlsym(library, "REALPluginMain"));
  if (!check(enter != nullptr, "the library has its entry")) return 1;
  enter(resolve);
  if (!check(invert != nullptr, "InvertZVR is registered")) return 1;

  source.begin();
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) source.pixels[y][x] = static_cast<uint32_t>(x * 0x060101 + y * 0x010832);
  }
  bool isRight = check(invert(&source) == &result && isInverted(), "every pixel is inverted");
  isRight &= check(isBalanced(source) && isBalanced(result), "references and locks are balanced");

  refusesPictures = true;
  bool isCaught = false;
  try {
    invert(&source);
  } catch (const Refusal&) {
    isCaught = true;
  }
  isRight &= check(isCaught, "an exception of the host passes through");
  isRight &= check(isBalanced(source), "and leaves references and locks balanced");
  return dlclose(library) == 0 && isRight ? 0 : 1;
}
