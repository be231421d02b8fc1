// String data, on hosts that hand it out and on those that don't.

#include <string.h>

#include "frame/entry_points.h"
#include "frame/held.h"
#include "frame/memory.h"

namespace {

HostEntry<RBBoolean(REALstringStruct*, uint32_t, REALstringData*)> getStringData{"PluginGetStringData"};

// Old hosts give a string's bytes and its length through two services.
struct OldStringAccess {
  const void* bytes;
  int32_t length;
};

bool oldAccess(REALstringStruct* string, OldStringAccess* access) {
  static HostEntry<const void*(REALstringStruct*)> bytesOf{"StringGetCString"};
  static void* lengthOf;
  if (!lengthOf) lengthOf = REALLoadFrameworkMethod("LenB( s as string ) as integer");
  if (!bytesOf.offered() || !lengthOf || !string) return false;
  access->length = reinterpret_cast<int32_t (*)(REALstringStruct*)>(lengthOf)(string);
  access->bytes = bytesOf(string);
  return access->length >= 0 && (access->bytes || access->length == 0);
}

// A copy of the string's bytes with four zero bytes behind them.
bool copyOut(REALstringStruct* string, uint32_t encoding, int32_t roomFor, REALstringData* record) {
  OldStringAccess access;
  if (!oldAccess(string, &access)) return false;
  const int32_t room = access.length > roomFor ? access.length : roomFor;
  auto* copy = static_cast<uint8_t*>(AllocateClearMemory(int64_t{room} + 4));
  if (!copy) return false;
  if (access.length > 0) memcpy(copy, access.bytes, static_cast<size_t>(access.length));
  record->data = copy;
  record->length = access.length;
  record->encoding = encoding;
  return true;
}

}  // namespace

bool REALGetStringData(REALstringStruct* string, uint32_t encoding, REALstringData* record) {
  if (getStringData.offered()) return getStringData(string, encoding, record) != 0;
  // The length that already stands in the record counts too: callers clear it first. The copy itself never
  // runs past its buffer.
  if (encoding == kEncodingNone) return copyOut(string, encoding, record->length, record);
  OldStringAccess access;
  if (!oldAccess(string, &access)) return false;
  if (encoding == REALGetStringEncoding(string)) return copyOut(string, encoding, 0, record);
  Held<REALstringStruct> converted(REALConvertString(string, encoding));
  return copyOut(converted.get(), encoding, 0, record);
}

void REALDisposeStringData(REALstringData* record) {
  static HostEntry<void(REALstringData*)> entry{"PluginDisposeStringData"};
  // What the fallback above made is the plug-in's own, also on a host that disposes but does not give. What a
  // host gives but does not take back is not the plug-in's to free.
  if (getStringData.offered()) {
    entry(record);
  } else {
    FreeMemoryNow(record->data);
  }
}
