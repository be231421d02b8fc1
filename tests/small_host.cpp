// A console host in one file: loads the library named on its command line, inverts a picture with any stack
// and passes an exception through the plug-in. It asks for nothing that the C library of an old system lacks,
// so that old_c_library.sh can run it there.

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "frame/host_interface.h"
#include "old_c_library/dynamic_loader.h"

namespace {

constexpr int kWidth = 37;

struct Picture : REALpictureStruct {
  uint32_t pixels[kWidth] = {};
  uint8_t* row = reinterpret_cast<uint8_t*>(pixels);
  REALbitmapRecord bitmap = {0, kWidth, 1, {}, this, &row};
};

int held;  // references and locks that the plug-in has taken
void* invert;
REALpictureStruct* nextPicture;  // null: the host throws
struct Refusal {};

// Inverts a picture with a stack that lies this many bytes below a multiple of 16.
REALpictureStruct* invertWithStack(uint32_t below, REALpictureStruct* picture) {
  REALpictureStruct* result;
  asm volatile(R"(
    movl %%esp, %%ebx
    andl $-16, %%esp
    subl %%ecx, %%esp
    pushl %%edx
    call *%%eax
    movl %%ebx, %%esp)"
               : "=a"(result), "+c"(below), "+d"(picture)
               : "a"(invert)
               : "ebx", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7", "memory", "cc");
  return result;
}

void check(bool isRight, const char* claim) {
  if (isRight) return;
  printf("Not so: %s\n", claim);
  exit(1);
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {

// ---- Services, found by their names ----

double REALGetRBVersion() { return 2013.03; }

void PluginRegisterClassExtension(REALclassDefinition* extension) {
  for (int32_t i = 0; i < extension->methodCount; ++i) {
    const REALmethodDefinition& method = extension->methods[i];
    if (strcmp(method.declaration, "InvertZVR as picture") == 0) invert = method.function;
  }
}

const char* pluginObjectType(const char* name) { return strcmp(name, "ConsoleApplication") ? nullptr : name; }

REALpictureStruct* newPicture(int32_t, int32_t, int32_t) {
  return nextPicture ? nextPicture : throw Refusal();
}

RBBoolean REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description,
                                     int32_t) {
  *description = {kPictureTypeBitmap, &static_cast<Picture*>(picture)->bitmap, kWidth, 1, {}};
  ++held;
  return 1;
}
void unlockPictureDescription(REALpictureStruct*) { --held; }
void REALLockObject(REALobjectStruct*) { ++held; }
void REALUnlockObject(REALobjectStruct*) { --held; }

// ---- The program ----

// Begins here, not in the C library, whose newest way to begin old ones lack: the loader leaves the words of
// the command line where a function has its arguments.
[[noreturn]] void start(const char*, const char* path) {
  void* library = openLibrary(path);
  check(library != nullptr, "the library can be loaded");
  const auto enter = reinterpret_cast<void (*)(REALResolver)>(findSymbol(library, "REALPluginMain"));
  enter([](const char* name) { return findSymbol(nullptr, name); });

  for (uint32_t below = 0; below < 16; below += 4) {
    Picture source, result;
    for (uint32_t x = 0; x < kWidth; ++x) source.pixels[x] = x * 0x060101;
    nextPicture = &result;
    check(invertWithStack(below, &source) == &result, "a picture is made");
    for (int x = 0; x < kWidth; ++x)
      check(((source.pixels[x] ^ result.pixels[x]) & 0xFFFFFF) == 0xFFFFFF, "every pixel is inverted");
  }

  Picture source;
  nextPicture = nullptr;
  try {
    reinterpret_cast<REALpictureStruct* (*)(REALpictureStruct*)>(invert)(&source);
    check(false, "an exception of the host passes through");
  } catch (const Refusal&) {
    check(held == 0, "references and locks are balanced");
  }
  exit(0);
}
}
