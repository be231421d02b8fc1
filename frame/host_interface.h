// The binary interface between host and plug-in: handles, records and codes in the host's layouts.
//
// The host's interface defines the names that begin with REAL or RB and the spelling of the plug-in's
// routines; they are kept as they are.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Opaque handles, reference-counted by the host; the plug-in looks inside only where a function says so. All
// except strings and class references are objects and may be locked and unlocked as such.
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

// A host boolean is one byte; the upper bytes of its register or stack slot are undefined.
using RBBoolean = uint8_t;
// Red in bits 16-23, green in bits 8-15, blue in bits 0-7; the top byte is ignored.
using RBColor = uint32_t;
// The host's resolver: maps the name of an entry point to its address; null if the host does not offer it.
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
  kAllMarks = 0x1C0000,        // never reach the host; 0x100000 has no meaning
};

// Kinds of picture description that a lock can request.
enum REALPictureType : int32_t {
  kPictureTypeDrawable = 6,  // handle: GDK drawable
  kPictureTypeBitmap = 10,   // handle: REALbitmapRecord of console and web applications
  kPictureTypeCairo = 12,    // handle: cairo drawing context on an image surface
};

// Pixel types of REALBuildPictureFromBuffer.
enum RBPixelType : int32_t { kPixelTypeRGB24 = 1 /* bytes red, green, blue */ };

// Filled by the host when it locks a picture's pixels. The plug-in reads the first four words; the reserved
// words leave room for hosts that fill more.
struct REALpictureDescription {
  int32_t pictureType;
  void* handle;
  int32_t width;
  int32_t height;
  uint32_t reserved[12];
};

// The known part of the host bitmap of console and web applications: one 32-bit word per pixel, red in bits
// 16-23, green in bits 8-15, blue in bits 0-7.
struct REALbitmapRecord {
  uint32_t kind;  // 0
  int32_t width;
  int32_t height;
  uint32_t unknown[1803];
  void* required;      // never null in a usable bitmap
  uint8_t** rowTable;  // the start of each row
};

// The bytes of a string as REALGetStringData returns them; not every host terminates them.
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

// As getter or setter, marks a stored property: the host reads or writes the field itself, at byte
// `parameter` of the instance data.
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
  int32_t dataSize;  // bytes of instance data
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

// Records of kinds that this plug-in never registers; their layouts are assumed. On old hosts their arrays
// use the shorter records, as those of classes do.
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

// The shorter records of hosts with control version 9: the first words of those above.
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
