// The wrappers of entry_points.h; strings' data and array elements have files of their own.

#include "frame/entry_points.h"

#include "frame/plugin_main.h"

void* HCallResolver(const char* name) { return gResolver ? gResolver(name) : nullptr; }

// ---- Registration ----

void REALRegisterMethod(REALmethodDefinition* method) {
  static HostEntry<void(REALmethodDefinition*)> entry{"PluginRegisterMethod"};
  entry(method);
}

void REALRegisterClass(REALclassDefinition* definition) {
  static HostEntry<void(REALclassDefinition*)> entry{"PluginRegisterClass"};
  entry(definition);
}

void REALRegisterClassExtension(REALclassDefinition* definition) {
  static HostEntry<void(REALclassDefinition*)> entry{"PluginRegisterClassExtension"};
  entry(definition);
}

void REALRegisterModule(REALmoduleDefinition* definition) {
  static HostEntry<void(REALmoduleDefinition*)> entry{"PluginRegisterModule"};
  entry(definition);
}

void REALRegisterInterface(REALinterfaceDefinition* definition) {
  static HostEntry<void(REALinterfaceDefinition*)> entry{"PluginRegisterInterface"};
  entry(definition);
}

void REALRegisterControl(REALcontrolDefinition* definition) {
  static HostEntry<void(REALcontrolDefinition*)> entry{"PluginRegisterControl"};
  entry(definition);
}

int32_t REALRegisterBackgroundTask(void (*task)(void*), uint32_t period, void* data) {
  static HostEntry<int32_t(void (*)(void*), uint32_t, void*)> entry{"PluginRegisterBackgroundTask"};
  return entry.offered() ? entry(task, period, data) : -1;
}

void REALUnregisterBackgroundTask(int32_t id) {
  static HostEntry<void(int32_t)> entry{"PluginUnregisterBackgroundTask"};
  entry(id);
}

// ---- Objects and classes ----

void* REALGetPluginData(REALobjectStruct* object, REALclassDefinition* definition) {
  static HostEntry<void*(REALobjectStruct*, REALclassDefinition*)> entry{"PluginGetPluginData"};
  return entry(object, definition);
}

REALclassRefStruct* REALGetClassRef(const char* className) {
  static HostEntry<REALclassRefStruct*(const char*)> entry{"pluginObjectType"};
  return entry(className);
}

REALobjectStruct* REALnewInstance(const char* className) {
  static HostEntry<REALobjectStruct*(const char*)> entry{"PluginNewInstance"};
  return entry(className);
}

REALobjectStruct* REALnewInstanceWithClass(REALclassRefStruct* classRef) {
  static HostEntry<REALobjectStruct*(REALclassRefStruct*)> entry{"CreateInstance"};
  return entry.offered() && classRef ? entry(classRef) : nullptr;
}

bool REALObjectIsA(REALobjectStruct* object, REALclassRefStruct* classRef) {
  static HostEntry<RBBoolean(REALobjectStruct*, REALclassRefStruct*)> entry{"RuntimeObjectIsa"};
  return entry(object, classRef) != 0;
}

bool REALObjectIsA(REALobjectStruct* object, const char* className) {
  if (!object) return false;
  REALclassRefStruct* classRef = REALGetClassRef(className);
  return classRef && REALObjectIsA(object, classRef);
}

bool REALLockObject(REALobjectStruct* object) {
  static HostEntry<void(REALobjectStruct*)> entry{"REALLockObject"};
  if (!entry.offered()) return false;
  entry(object);
  return true;
}

void REALUnlockObject(REALobjectStruct* object) {
  static HostEntry<void(REALobjectStruct*)> entry{"REALUnlockObject"};
  entry(object);
}

void REALRaiseException(REALobjectStruct* exception) {
  static HostEntry<void(REALobjectStruct*)> entry{"RuntimeRaiseException"};
  entry(exception);
}

void* REALLoadFrameworkMethod(const char* declaration) {
  static HostEntry<void*(const char*)> entry{"REALLoadGlobalMethod"};
  return entry(declaration);
}

void* REALLoadObjectMethod(REALobjectStruct* object, const char* declaration) {
  static HostEntry<void*(REALobjectStruct*, const char*)> entry{"REALLoadObjectMethod"};
  return entry(object, declaration);
}

void* REALInterfaceRoutine(REALobjectStruct* object, const char* interfaceName, const char* routine) {
  static HostEntry<void*(REALobjectStruct*, const char*, const char*)> entry{"GetInterfaceRoutine"};
  return entry(object, interfaceName, routine);
}

void* REALGetDelegateInvoker(void* delegate) {
  static HostEntry<void*(void*)> entry{"PluginGetDelegateInvoker"};
  return entry(delegate);
}

bool IsMemoryBlock(REALobjectStruct* object) {
  return REALLoadObjectMethod(object, "Constructor(bytes as Integer)") != nullptr;
}

bool IsFolderItem(REALobjectStruct* object) {
  return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

// ---- The program ----

bool REALinRuntime() {
  static HostEntry<RBBoolean()> entry{"REALinRuntime"};
  return entry() != 0;
}

bool REALInDebugMode() {
  static HostEntry<RBBoolean()> entry{"REALInDebugMode"};
  return entry() != 0;
}

void REALYieldToRB() {
  static HostEntry<void()> entry{"REALYieldToRB"};
  entry();
}

void REALMessageBox(REALstringStruct* text) {
  static HostEntry<void(REALstringStruct*)> entry{"RuntimeMsgBox"};
  entry(text);
}

// ---- Strings ----

REALstringStruct* originalREALBuildString(const void* bytes, int32_t length) {
  static HostEntry<REALstringStruct*(const void*, int32_t)> entry{"REALBuildString"};
  return entry(bytes, length);
}

bool REALLockString(REALstringStruct* string) {
  static HostEntry<void(REALstringStruct*)> entry{"REALLockString"};
  if (!entry.offered()) return false;
  entry(string);
  return true;
}

void REALUnlockString(REALstringStruct* string) {
  static HostEntry<void(REALstringStruct*)> entry{"REALUnlockString"};
  entry(string);
}

REALstringStruct* REALAddStrings(REALstringStruct* first, REALstringStruct* second) {
  static HostEntry<REALstringStruct*(REALstringStruct*, REALstringStruct*)> entry{"RuntimeAddString"};
  return entry(first, second);
}

int32_t REALCompareStrings(REALstringStruct* first, REALstringStruct* second) {
  static HostEntry<int32_t(REALstringStruct*, REALstringStruct*)> entry{"RuntimeStringCompare"};
  return entry(first, second);
}

uint32_t REALGetStringEncoding(REALstringStruct* string) {
  static HostEntry<uint32_t(REALstringStruct*)> entry{"REALGetStringEncoding"};
  return entry(string);
}

void REALSetStringEncoding(REALstringStruct* string, uint32_t encoding) {
  static HostEntry<void(REALstringStruct*, uint32_t)> entry{"REALSetStringEncoding"};
  entry(string, encoding);
}

REALstringStruct* REALConvertString(REALstringStruct* string, uint32_t encoding) {
  static HostEntry<REALstringStruct*(REALstringStruct*, uint32_t)> entry{"REALConvertString"};
  return entry(string, encoding);
}

uint32_t REALGetFontEncoding(REALstringStruct* fontName) {
  static HostEntry<uint32_t(REALstringStruct*)> entry{"REALGetFontEncoding"};
  return entry(fontName);
}

// ---- Properties ----

bool REALGetPropValueInt32(REALobjectStruct* object, const char* name, int32_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int32_t*)> entry{"REALGetPropValueInt"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueString(REALobjectStruct* object, const char* name, REALstringStruct** value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, REALstringStruct**)> entry{
      "REALGetPropValueString"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueDouble(REALobjectStruct* object, const char* name, double* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, double*)> entry{"REALGetPropValueDouble"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueObject(REALobjectStruct* object, const char* name, REALobjectStruct** value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, REALobjectStruct**)> entry{
      "REALGetPropValueObject"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueInt64(REALobjectStruct* object, const char* name, int64_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int64_t*)> entry{"REALGetPropValueInt64"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueUInt64(REALobjectStruct* object, const char* name, uint64_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint64_t*)> entry{"REALGetPropValueUInt64"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueUInt32(REALobjectStruct* object, const char* name, uint32_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint32_t*)> entry{"REALGetPropValueUInt32"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueUInt16(REALobjectStruct* object, const char* name, uint16_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint16_t*)> entry{"REALGetPropValueUInt16"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueInt16(REALobjectStruct* object, const char* name, int16_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int16_t*)> entry{"REALGetPropValueInt16"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueInt8(REALobjectStruct* object, const char* name, int8_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int8_t*)> entry{"REALGetPropValueInt8"};
  return entry(object, name, value) != 0;
}

bool REALGetPropValueSingle(REALobjectStruct* object, const char* name, float* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, float*)> entry{"REALGetPropValueSingle"};
  return entry(object, name, value) != 0;
}

// The unsigned byte getter is the host's boolean getter.
bool REALGetPropValueUInt8(REALobjectStruct* object, const char* name, uint8_t* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint8_t*)> entry{"REALGetPropValueBool"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueInt32(REALobjectStruct* object, const char* name, int32_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int32_t)> entry{"REALSetPropValueInt"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueString(REALobjectStruct* object, const char* name, REALstringStruct* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, REALstringStruct*)> entry{
      "REALSetPropValueString"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueDouble(REALobjectStruct* object, const char* name, double value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, double)> entry{"REALSetPropValueDouble"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueObject(REALobjectStruct* object, const char* name, REALobjectStruct* value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, REALobjectStruct*)> entry{
      "REALSetPropValueObject"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueUInt32(REALobjectStruct* object, const char* name, uint32_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint32_t)> entry{"REALSetPropValueUInt32"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueUInt64(REALobjectStruct* object, const char* name, uint64_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint64_t)> entry{"REALSetPropValueUInt64"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueInt64(REALobjectStruct* object, const char* name, int64_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int64_t)> entry{"REALSetPropValueInt64"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueInt16(REALobjectStruct* object, const char* name, int16_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int16_t)> entry{"REALSetPropValueInt16"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueUInt16(REALobjectStruct* object, const char* name, uint16_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint16_t)> entry{"REALSetPropValueUInt16"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueInt8(REALobjectStruct* object, const char* name, int8_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, int8_t)> entry{"REALSetPropValueInt8"};
  return entry(object, name, value) != 0;
}

// Both of these are the host's boolean setter.
bool REALSetPropValueUInt8(REALobjectStruct* object, const char* name, uint8_t value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, uint8_t)> entry{"REALSetPropValueBoolean"};
  return entry(object, name, value) != 0;
}

bool REALSetPropValueBoolean(REALobjectStruct* object, const char* name, bool value) {
  static HostEntry<RBBoolean(REALobjectStruct*, const char*, RBBoolean)> entry{"REALSetPropValueBoolean"};
  return entry(object, name, value) != 0;
}

// ---- Variants ----

REALobjectStruct* REALNewVariantString(REALstringStruct* value) {
  static HostEntry<REALobjectStruct*(REALstringStruct*)> entry{"StringToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantPtr(void* value) {
  static HostEntry<REALobjectStruct*(void*)> entry{"PtrToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantInteger(int32_t value) {
  static HostEntry<REALobjectStruct*(int32_t)> entry{"Int32ToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantDouble(double value) {
  static HostEntry<REALobjectStruct*(double)> entry{"DoubleToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantBoolean(bool value) {
  static HostEntry<REALobjectStruct*(RBBoolean)> entry{"BooleanToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantColor(RBColor value) {
  static HostEntry<REALobjectStruct*(RBColor)> entry{"ColorToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantUInt32(uint32_t value) {
  static HostEntry<REALobjectStruct*(uint32_t)> entry{"UInt32ToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantInt64(int64_t value) {
  static HostEntry<REALobjectStruct*(int64_t)> entry{"Int64ToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantUInt64(uint64_t value) {
  static HostEntry<REALobjectStruct*(uint64_t)> entry{"UInt64ToVariant"};
  return entry(value);
}

REALobjectStruct* REALNewVariantSingle(float value) {
  static HostEntry<REALobjectStruct*(float)> entry{"SingleToVariant"};
  return entry(value);
}

// ---- Memory blocks ----

REALmemoryBlockStruct* REALNewMemoryBlockOriginal(int32_t size) {
  static HostEntry<REALmemoryBlockStruct*(int32_t)> entry{"newMemoryBlock"};
  return entry(size);
}

void* REALMemoryBlockGetPtr(REALmemoryBlockStruct* block) {
  static HostEntry<void*(REALmemoryBlockStruct*)> entry{"memoryBlockGetPtr"};
  return entry(block);
}

int32_t REALMemoryBlockGetSize(REALmemoryBlockStruct* block) {
  static HostEntry<int32_t(REALmemoryBlockStruct*)> entry{"memoryBlockGetSize"};
  return entry(block);
}

REALmemoryBlockStruct* REALPtrToMemoryBlock(void* bytes) {
  static HostEntry<REALmemoryBlockStruct*(void*)> entry{"PtrToMemoryBlock"};
  return entry(bytes);
}

// ---- Pictures ----

REALpictureStruct* REALNewPicture(int32_t width, int32_t height, int32_t depth) {
  static HostEntry<REALpictureStruct*(int32_t, int32_t, int32_t)> entry{"newPicture"};
  return entry(width, height, depth);
}

REALpictureStruct* REALBuildPictureFromBuffer(int32_t width, int32_t height, int32_t pixelType, void* buffer,
                                              int32_t rowBytes) {
  static HostEntry<REALpictureStruct*(int32_t, int32_t, int32_t, void*, int32_t)> entry{
      "REALBuildPictureFromBuffer"};
  return entry(width, height, pixelType, buffer, rowBytes);
}

REALpictureStruct* REALBuildPictureFromGWorld(void* platformImage) {
  static HostEntry<REALpictureStruct*(void*)> entry{"REALBuildPictureFromGWorld"};
  return entry(platformImage);
}

bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description) {
  static HostEntry<RBBoolean(REALpictureStruct*, REALpictureDescription*)> entry{"lockPictureDescription"};
  return entry(picture, description) != 0;
}

bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description,
                                int32_t pictureType) {
  static HostEntry<RBBoolean(REALpictureStruct*, REALpictureDescription*, int32_t)> entry{
      "REALLockPictureDescription"};
  return entry(picture, description, pictureType) != 0;
}

void REALUnlockPictureDescription(REALpictureStruct* picture) {
  static HostEntry<void(REALpictureStruct*)> entry{"unlockPictureDescription"};
  entry(picture);
}

void REALPictureClearCache(REALpictureStruct* picture) {
  static HostEntry<void(REALpictureStruct*)> entry{"REALPictureClearCache"};
  entry(picture);
}

REALpictureStruct* REALGetPictureMask(REALpictureStruct* picture, bool create) {
  static HostEntry<REALpictureStruct*(REALpictureStruct*, RBBoolean)> entry{"REALGetPictureMask"};
  return entry(picture, create);
}

REALgraphicsStruct* REALGetPictureGraphics(REALpictureStruct* picture) {
  static HostEntry<REALgraphicsStruct*(REALpictureStruct*)> entry{"pluginPictureGraphicsGetter"};
  return entry(picture);
}

// ---- Graphics ----

void* REALGraphicsDC(REALgraphicsStruct* graphics) {
  static HostEntry<void*(REALgraphicsStruct*)> entry{"REALGraphicsDC"};
  return entry(graphics);
}

void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture, const void* rectangle,
                              int32_t transparent) {
  static HostEntry<void(REALgraphicsStruct*, REALpictureStruct*, const void*, int32_t)> entry{
      "REALDrawPicturePrimitive"};
  entry(graphics, picture, rectangle, transparent);
}

void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture,
                              const void* rectangle) {
  REALDrawPicturePrimitive(graphics, picture, rectangle, 0);
}

void GraphicsDrawLine(REALgraphicsStruct* graphics, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  static HostEntry<void(REALgraphicsStruct*, int32_t, int32_t, int32_t, int32_t)> entry{
      "RuntimeGraphicsDrawLine"};
  entry(graphics, x1, y1, x2, y2);
}

void REALGraphicsDrawString(REALgraphicsStruct* graphics, REALstringStruct* text, int32_t x, int32_t y) {
  static HostEntry<void(REALgraphicsStruct*, REALstringStruct*, int32_t, int32_t)> entry{
      "RuntimeGraphicsDrawString"};
  entry(graphics, text, x, y);
}

// ---- Controls and files ----

void REALGetControlBounds(REALcontrolStruct* control, void* rectangle) {
  static HostEntry<void(REALcontrolStruct*, void*)> entry{"GetControlBounds"};
  entry(control, rectangle);
}

REALgraphicsStruct* REALGetControlGraphics(REALcontrolStruct* control) {
  static HostEntry<REALgraphicsStruct*(REALcontrolStruct*)> entry{"REALGetControlGraphics"};
  return entry(control);
}

REALwindowStruct* REALGetControlWindow(REALcontrolStruct* control) {
  static HostEntry<REALwindowStruct*(REALcontrolStruct*)> entry{"getControlWindow"};
  return entry(control);
}

bool REALGetTabPanelVisible(REALcontrolStruct* control) {
  static HostEntry<RBBoolean(REALcontrolStruct*)> entry{"GetTabPanelVisible"};
  return entry(control) != 0;
}

void* REALGetEventInstance(REALcontrolStruct* control, REALevent* event) {
  static HostEntry<void*(REALcontrolStruct*, void*)> entry{"GetEventInstance"};
  void* word = event->forOldHosts;
  if (CurrentREALControlVersion == 9) {
    // On these hosts the record's second word points to its copy in the old layout, which holds the event's
    // own.
    word = reinterpret_cast<void*>(static_cast<REALoldEvent*>(word)->words[1]);
  }
  return entry(control, word);
}

REALstringStruct* REALpathFromFolderItem(REALfolderItemStruct* item) {
  static HostEntry<REALstringStruct*(REALfolderItemStruct*)> entry{"REALpathFromFolderItem"};
  return entry(item);
}
