// String data, on hosts with and without the service for it.

#include <string.h>

#include "frame/entry_points.h"
#include "frame/held.h"
#include "frame/memory.h"

namespace {

HostEntry<RBBoolean(REALstringStruct*, uint32_t, REALstringData*)> getStringData{"PluginGetStringData"};

// The two services that replace it on older hosts: a string's bytes and its length.
HostEntry<const void*(REALstringStruct*)> bytesOf{"StringGetCString"};
int32_t (*lengthOf)(REALstringStruct*);

bool hasOldServices() {
  if (!lengthOf) {
    lengthOf = reinterpret_cast<int32_t (*)(REALstringStruct*)>(
        REALLoadFrameworkMethod("LenB( s as string ) as integer"));
  }
  return bytesOf.offered() && lengthOf;
}

// Copies the string's bytes to a buffer of at least `room` bytes, followed by four zero bytes.
bool copyOut(REALstringStruct* string, uint32_t encoding, int32_t room, REALstringData* record) {
  const int32_t length = lengthOf(string);
  const void* bytes = bytesOf(string);
  if (length < 0 || (!bytes && length > 0)) return false;
  auto* copy = static_cast<uint8_t*>(AllocateClearMemory(int64_t{length > room ? length : room} + 4));
  if (!copy) return false;
  if (length > 0) memcpy(copy, bytes, static_cast<size_t>(length));
  *record = {copy, length, encoding};
  return true;
}

}  // namespace

bool REALGetStringData(REALstringStruct* string, uint32_t encoding, REALstringData* record) {
  if (getStringData.offered()) return getStringData(string, encoding, record) != 0;
  if (!string || !hasOldServices()) return false;
  // The record's length on entry counts too, on purpose: callers clear it first.
  if (encoding == kEncodingNone) return copyOut(string, encoding, record->length, record);
  if (encoding == REALGetStringEncoding(string)) return copyOut(string, encoding, 0, record);
  Held<REALstringStruct> converted(REALConvertString(string, encoding));
  return converted && copyOut(converted.get(), encoding, 0, record);
}

void REALDisposeStringData(REALstringData* record) {
  static HostEntry<void(REALstringData*)> entry{"PluginDisposeStringData"};
  // The fallback's buffer belongs to the plug-in, even on a host that has only the disposing service. Data
  // from a host that has only the other one is not the plug-in's to free.
  if (getStringData.offered()) {
    entry(record);
  } else {
    FreeMemoryNow(record->data);
  }
}
