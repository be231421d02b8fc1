// What crosses between the host and the plug-in: handles, records, codes. The layouts are the host's.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Handles. The host counts references; the plug-in never looks inside but where a function says so.
// Except for strings and class references, all are objects and may be locked and unlocked as such.
struct REALobjectStruct {};
struct REALpictureStruct : REALobjectStruct {};
struct REALgraphicsStruct : REALobjectStruct {};
struct REALmemoryBlockStruct : REALobjectStruct {};
struct REALarrayStruct : REALobjectStruct {};
struct REALfolderItemStruct : REALobjectStruct {};
struct REALcontrolStruct : REALobjectStruct {};
struct REALwindowStruct : REALobjectStruct {};
struct REALstringStruct {};
struct REALclassRefStruct {};

// A host boolean is one byte; the upper bytes of a register or stack slot that carries it mean nothing.
using RBBoolean = uint8_t;
// Red in bits 16-23, green in bits 8-15, blue in bits 0-7; the top byte is ignored.
using RBColor = uint32_t;
// The host's resolver: entry-point name to address, null for a name that the host does not offer.
using REALResolver = void* (*)(const char* name);

// Encoding codes of host strings.
enum : uint32_t {
  kEncodingMacRoman = 0,
  kEncodingUTF16 = 0x100,
  kEncodingWindows = 0x500,
  kEncodingASCII = 0x600,
  kEncodingNone = 0xFFFF,  // raw bytes; as an argument: the string's own encoding
  kEncodingUTF8 = 0x08000100,
  kEncodingUTF32 = 0x0C000100,
};

// Flags of methods, properties and classes.
enum : uint32_t {
  kFlagConsoleSafe = 0x4,      // host flag
  kFlagWebOnly = 0x8,          // host flag of members
  kFlagClassWebOnly = 0x100,   // host flag of classes
  kMarkConsoleSafe = 0x40000,  // plug-in marker, never reaches the host
  kMarkWebOnly = 0x80000,      // plug-in marker, never reaches the host
  kAllMarks = 0x1C0000,        // none of them reaches the host; that of 0x100000 has no meaning
};

// Kinds of picture description that can be asked for when a picture is locked.
enum REALPictureType : int32_t {
  kPictureTypeDrawable = 6,  // handle: GDK drawable
  kPictureTypeBitmap = 10,   // handle: REALbitmapRecord of console and web applications
  kPictureTypeCairo = 12,    // handle: cairo drawing context on an image surface
};

// Pixel types of REALBuildPictureFromBuffer.
enum RBPixelType : int32_t { kPixelTypeRGB24 = 1 /* three bytes red, green, blue */ };

// Filled by the host when a picture's pixels are locked. The plug-in reads the first four words; the
// words behind them are room for hosts that fill more.
struct REALpictureDescription {
  int32_t pictureType;
  void* handle;
  int32_t width;
  int32_t height;
  uint32_t reserved[12];
};

// The host's bitmap of console and web applications, as far as it is known: one 32-bit word a pixel,
// red in bits 16-23, green in bits 8-15, blue in bits 0-7.
struct REALbitmapRecord {
  uint32_t kind;  // 0
  int32_t width;
  int32_t height;
  uint32_t unknown[1803];
  void* required;      // never null in a usable bitmap
  uint8_t** rowTable;  // a row start for each row
};

// Where REALGetStringData leaves a string's bytes, terminated where the host does so.
struct REALstringData {
  void* data;
  int32_t length;  // bytes
  uint32_t encoding;
};

struct REALmethodDefinition {
  void* function;
  void* setter;             // or null
  const char* declaration;  // "InvertZVR as picture"
  uint32_t flags;
  uint32_t reserved[2];
};

// A getter or setter of this value marks a stored property: the host reads and writes the field itself,
// at byte `parameter` of the instance data.
inline void* const kStoredProperty = reinterpret_cast<void*>(~uintptr_t{0});

struct REALproperty {
  const char* group;
  const char* name;
  const char* type;
  uint32_t flags;
  void* getter;  // value (object, parameter)
  void* setter;  // nothing (object, parameter, value)
  uint32_t parameter;
  uint32_t reserved[5];
};

struct REALconstant {
  uint32_t words[5];
};

struct REALevent {
  const char* declaration;
  void* forOldHosts;  // on hosts of control version 9: the event's copy in the old layout
  uint32_t reserved[2];
};

struct REALclassDefinition {
  int32_t version;
  const char* name;
  const char* superName;
  int32_t dataSize;  // bytes of plug-in data in an instance
  void* forHost;
  void* constructor;
  void* destructor;
  REALproperty* properties;
  int32_t propertyCount;
  REALmethodDefinition* methods;
  int32_t methodCount;
  REALevent* events;
  int32_t eventCount;
  void* eventInstances;
  int32_t eventInstanceCount;
  const char* interfaces;
  uint32_t obsolete[2];
  REALconstant* constants;
  int32_t constantCount;
  uint32_t flags;
  REALproperty* sharedProperties;
  int32_t sharedPropertyCount;
  REALmethodDefinition* sharedMethods;
  int32_t sharedMethodCount;
};

// Records of kinds that this plug-in never registers; their layouts are assumed. Their arrays shrink on old
// hosts as those of classes do.
struct REALmoduleDefinition {
  int32_t version;
  const char* name;
  REALmethodDefinition* methods;
  int32_t methodCount;
  REALconstant* constants;
  int32_t constantCount;
  REALproperty* properties;
  int32_t propertyCount;
};

struct REALinterfaceDefinition {
  int32_t version;
  const char* name;
  REALmethodDefinition* methods;
  int32_t methodCount;
};

struct REALcontrolDefinition {
  int32_t version;
  const char* name;
  const char* superName;
  int32_t dataSize;
  void* forHost;
  void* constructor;
  void* destructor;
  REALproperty* properties;
  int32_t propertyCount;
  REALmethodDefinition* methods;
  int32_t methodCount;
  REALevent* events;
  int32_t eventCount;
};

// The shorter records of hosts whose control version is 9: the first words of those above.
struct REALoldMethodDefinition {
  uint32_t words[4];
};
struct REALoldProperty {
  uint32_t words[10];
};
struct REALoldConstant {
  uint32_t words[3];
};
struct REALoldEvent {
  uint32_t words[2];
};

static_assert(sizeof(void*) == 4, "the host is a 32-bit x86 program");
static_assert(offsetof(REALpictureDescription, handle) == 4 && offsetof(REALpictureDescription, width) == 8 &&
              offsetof(REALpictureDescription, height) == 12);
static_assert(offsetof(REALbitmapRecord, required) == 7224 && offsetof(REALbitmapRecord, rowTable) == 7228);
static_assert(sizeof(REALstringData) == 12);
static_assert(sizeof(REALmethodDefinition) == 24 && offsetof(REALmethodDefinition, declaration) == 8 &&
              offsetof(REALmethodDefinition, flags) == 12);
static_assert(sizeof(REALproperty) == 48 && offsetof(REALproperty, flags) == 12 &&
              offsetof(REALproperty, getter) == 16 && offsetof(REALproperty, parameter) == 24);
static_assert(sizeof(REALconstant) == 20 && sizeof(REALevent) == 16);
static_assert(
    sizeof(REALclassDefinition) == 100 && offsetof(REALclassDefinition, dataSize) == 12 &&
    offsetof(REALclassDefinition, forHost) == 16 && offsetof(REALclassDefinition, constructor) == 20 &&
    offsetof(REALclassDefinition, destructor) == 24 && offsetof(REALclassDefinition, properties) == 28 &&
    offsetof(REALclassDefinition, methods) == 36 && offsetof(REALclassDefinition, events) == 44 &&
    offsetof(REALclassDefinition, eventInstances) == 52 && offsetof(REALclassDefinition, interfaces) == 60 &&
    offsetof(REALclassDefinition, obsolete) == 64 && offsetof(REALclassDefinition, constants) == 72 &&
    offsetof(REALclassDefinition, flags) == 80 && offsetof(REALclassDefinition, sharedProperties) == 84 &&
    offsetof(REALclassDefinition, sharedMethods) == 92);
static_assert(sizeof(REALoldMethodDefinition) == 16 && sizeof(REALoldProperty) == 40 &&
              sizeof(REALoldConstant) == 12 && sizeof(REALoldEvent) == 8);
