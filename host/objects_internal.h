// The entities behind the host's handles, and the registry of those that are alive.
#pragma once

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "frame/host_interface.h"
#include "host/buffers.h"
#include "host/host.h"
#include "host/objects.h"
#include "host/strings.h"

namespace host {

// A handle is the address of these words, the part of an object's memory that the plug-in reads.
struct HandleWords {
  uint32_t unused = 0;
  const uint8_t* beforeBytes = nullptr;  // strings: one byte before the bytes
  void* elements = nullptr;              // arrays
  int32_t count = 0;                     // strings: bytes; pictures: description locks
};
static_assert(sizeof(HandleWords) == 16 && offsetof(HandleWords, beforeBytes) == 4 &&
              offsetof(HandleWords, elements) == 8 && offsetof(HandleWords, count) == 12);

// Anything with a handle and a count of references.
class Entity {
 public:
  Entity() = default;
  Entity(const Entity&) = delete;
  Entity& operator=(const Entity&) = delete;
  virtual ~Entity() = default;
  // Kind and size, for messages.
  virtual std::string describe() const = 0;
  // Last act before destruction, the handle still being alive.
  virtual void die() {}

  HandleWords* words = nullptr;  // set by the registry
  int references = 1;
  bool dying = false;
};

struct String : Entity {
  std::string describe() const override;

  Buffer buffer;  // one byte, the text's bytes, the terminator
  size_t length = 0;
  uint32_t encoding = kEncodingUTF8;
  bool terminated = true;
  std::string bytes() const { return {reinterpret_cast<const char*>(buffer.data()) + 1, length}; }
};

struct Text {
  std::string bytes;
  uint32_t encoding = kEncodingUTF8;
};
using PropertyValue = std::variant<int64_t, double, bool, Text, ObjectRef>;

// Every entity except strings.
struct Object : Entity {
  explicit Object(std::string name) : className(std::move(name)) {}
  std::string describe() const override { return className; }
  // Answers false for a property that the object lacks or that can't be read.
  virtual bool readProperty(const std::string& name, PropertyValue& value) const;

  std::string className;
  std::map<std::string, PropertyValue> properties;  // those that can be written, with their values
};

// How a road shows a locked picture's pixels; lives as long as the lock.
class PixelView {
 public:
  PixelView() = default;
  PixelView(const PixelView&) = delete;
  PixelView& operator=(const PixelView&) = delete;
  virtual ~PixelView() = default;
  virtual void* handle() = 0;
};

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

struct Picture : Object {
  Picture() : Object("Picture") {}
  std::string describe() const override;
  void die() override;
  bool readProperty(const std::string& name, PropertyValue& value) const override;
  // Gives an empty picture its pixels; false and still empty when that can't be.
  bool allocate(int32_t newWidth, int32_t newHeight, bool hasAlpha);
  uint32_t* row(int32_t y) const;
  // Size of what a lock shows.
  int32_t shownWidth() const { return oddities.shownWidth != -1 ? oddities.shownWidth : width; }
  int32_t shownHeight() const { return oddities.shownHeight != -1 ? oddities.shownHeight : height; }

  int32_t width = 0, height = 0, stride = 0;  // stride in bytes
  bool alpha = false;
  Buffer pixels;  // rows of 32-bit words; the last row has no padding behind it
  PictureOddities oddities;
  PictureRef mask;
  std::unique_ptr<PixelView> view;  // while locked
  int32_t halfLocks = 0;            // locks that failed on an old host, part of words->count
  std::unique_ptr<void, FreeMemory> takenOverBuffer;  // what the picture was built from
};

struct Graphics : Object {
  explicit Graphics(PictureRef target);
  PictureRef picture;
};

struct MemoryBlock : Object {
  MemoryBlock() : Object("MemoryBlock") {}
  std::string describe() const override;
  uint8_t* data() const { return wrapped ? wrapped : buffer.data(); }

  Buffer buffer;
  uint8_t* wrapped = nullptr;  // memory that another owns, of unknown size
  int32_t reportedSize = 0;
};

struct Instance : Object {
  explicit Instance(const Class& registered);
  void die() override;

  const void* record;
  void* destructor;
  Buffer data;
};

struct Array : Object {
  Array(int32_t type, size_t width) : Object("Array"), elementType(type), elementWidth(width) {}
  std::string describe() const override;
  void die() override;
  int32_t count() const { return static_cast<int32_t>(bytes.size() / elementWidth); }

  int32_t elementType;
  size_t elementWidth;
  std::vector<uint8_t> bytes;
};

// ---- The registry ----

// Makes a handle for an entity with one reference. Handles of dead entities are not reused soon, so that
// a stale one is recognised.
void enroll(std::unique_ptr<Entity> entity);
template <typename T>
T* enrollNew(std::unique_ptr<T> entity) {
  T* enrolled = entity.get();
  enroll(std::move(entity));
  return enrolled;
}

// The live entity of a handle, or null; counts no error.
Entity* peek(const void* handle);
// Counts an error, with a line for describeHeld.
void noteError(const std::string& what);
// The live entity of a handle; null for a null handle. Counts an error for a handle that is dead, unknown or
// of another kind, naming what it was wanted for.
template <typename T>
T* find(const void* handle, const char* purpose) {
  if (!handle) return nullptr;
  Entity* entity = peek(handle);
  if (auto* wanted = dynamic_cast<T*>(entity)) return wanted;
  noteError(std::string(purpose) +
            (entity ? " got another kind: " + entity->describe() : " got a dead handle"));
  return nullptr;
}
template <typename Handle>
Handle* handleOf(const Entity* entity) {
  return entity ? reinterpret_cast<Handle*>(entity->words) : nullptr;
}

// Room for some bytes before a text, the text, and one unit of zero (or of something else) behind it.
Buffer textBuffer(size_t before, const std::string& bytes, uint32_t encoding, bool terminated);
// Pieces of string data given out; data null when memory runs out.
REALstringData giveStringData(const std::string& bytes, uint32_t encoding, bool terminated);
void takeStringDataBack(REALstringData* data);

// Makes a pending exception, as the host's own services do.
void raise(const std::string& className, const std::string& message);
void raise(REALobjectStruct* exception);
// A new object of a host or plug-in class with one reference; null for a class that can't be made.
REALobjectStruct* makeInstance(const std::string& className);
// Whether a class (host's own, application class or registered) is known.
bool isKnownClass(const std::string& className);
// Whether a class is the other one or derived from it.
bool isDerived(const std::string& className, const std::string& ancestor);

// ---- Pictures ----

bool lockPicture(REALpictureStruct* picture, REALpictureDescription* description, int32_t type);
void unlockPicture(REALpictureStruct* picture);
// Leaves the lock that an old host leaves when locking fails.
void leaveHalfLocked(REALpictureStruct* picture);
// Copies the source rectangle into the target rectangle, nearest pixel when scaled, clipped to both pictures.
struct Rectangle {
  int32_t x, y, width, height;
};
void drawPicture(Picture& target, const Picture& source, Rectangle to, Rectangle from);

// Adds a text that was drawn with a graphics object to the program's log.
void noteDrawnText(const std::string& text);

// `start` resets each part of the host.
void resetRegistry();
void resetFaults();
void resetRegistration();
void resetProgram();

}  // namespace host
