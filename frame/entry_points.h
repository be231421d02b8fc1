// One wrapper per host service, named as in the host's interface and called like a function. A wrapper looks
// up the service on first use; while the host lacks it, the wrapper returns null, zero, false or nothing and
// reports no error. The caller owns one reference on returned objects and strings unless stated otherwise.
//
// The list is complete on purpose: a service that no operation uses costs nothing, because the linker drops
// wrappers that nobody calls.
#pragma once

#include "frame/array_elements.h"
#include "frame/host_entry.h"
#include "frame/host_interface.h"

// ---- Registration ----
inline HostEntry<void(REALmethodDefinition* method)> REALRegisterMethod{"PluginRegisterMethod"};
inline HostEntry<void(REALclassDefinition* definition)> REALRegisterClass{"PluginRegisterClass"};
inline HostEntry<void(REALclassDefinition* definition)> REALRegisterClassExtension{
    "PluginRegisterClassExtension"};
inline HostEntry<void(REALmoduleDefinition* definition)> REALRegisterModule{"PluginRegisterModule"};
inline HostEntry<void(REALinterfaceDefinition* definition)> REALRegisterInterface{"PluginRegisterInterface"};
inline HostEntry<void(REALcontrolDefinition* definition)> REALRegisterControl{"PluginRegisterControl"};
// Calls `task(data)` periodically; the host defines the unit of `period`. Returns an id, or -1 if the host
// lacks the service.
int32_t REALRegisterBackgroundTask(void (*task)(void*), uint32_t period, void* data);
inline HostEntry<void(int32_t id)> REALUnregisterBackgroundTask{"PluginUnregisterBackgroundTask"};

// ---- Objects and classes ----
// The instance data of an object of a plug-in class; owned by the object.
inline HostEntry<void*(REALobjectStruct* object, REALclassDefinition* definition)> REALGetPluginData{
    "PluginGetPluginData"};
// The class of that name; null if the program has none. A borrowed reference.
inline HostEntry<REALclassRefStruct*(const char* className)> REALGetClassRef{"pluginObjectType"};
inline HostEntry<REALobjectStruct*(const char* className)> REALnewInstance{"PluginNewInstance"};
// Also null for a null class reference.
REALobjectStruct* REALnewInstanceWithClass(REALclassRefStruct* classRef);
bool REALObjectIsA(REALobjectStruct* object, REALclassRefStruct* classRef);
// False for a null object and for an unknown class.
bool REALObjectIsA(REALobjectStruct* object, const char* className);
// One reference more, one fewer.
inline HostEntry<void(REALobjectStruct* object)> REALLockObject{"REALLockObject"};
inline HostEntry<void(REALobjectStruct* object)> REALUnlockObject{"REALUnlockObject"};
// Leaves an exception pending in the host, which takes its own reference; returns to the caller.
inline HostEntry<void(REALobjectStruct* exception)> REALRaiseException{"RuntimeRaiseException"};
// The address of a function or method of the host language, by declaration; null if there is none.
inline HostEntry<void*(const char* declaration)> REALLoadFrameworkMethod{"REALLoadGlobalMethod"};
inline HostEntry<void*(REALobjectStruct* object, const char* declaration)> REALLoadObjectMethod{
    "REALLoadObjectMethod"};
inline HostEntry<void*(REALobjectStruct* object, const char* interfaceName, const char* routine)>
    REALInterfaceRoutine{"GetInterfaceRoutine"};
inline HostEntry<void*(void* delegate)> REALGetDelegateInvoker{"PluginGetDelegateInvoker"};
// Whether an object is a memory block, or a folder item: detected by a method that only that class has.
bool IsMemoryBlock(REALobjectStruct* object);
bool IsFolderItem(REALobjectStruct* object);

// ---- The program ----
// Whether this is a built program rather than the development environment.
inline HostEntry<RBBoolean()> REALinRuntime{"REALinRuntime"};
inline HostEntry<RBBoolean()> REALInDebugMode{"REALInDebugMode"};
inline HostEntry<void()> REALYieldToRB{"REALYieldToRB"};  // lets the host run its event loop
inline HostEntry<void(REALstringStruct* text)> REALMessageBox{"RuntimeMsgBox"};

// ---- Strings ----
// A string of these bytes, without an encoding.
inline HostEntry<REALstringStruct*(const void* bytes, int32_t length)> originalREALBuildString{
    "REALBuildString"};
// One reference more, one fewer.
inline HostEntry<void(REALstringStruct* string)> REALLockString{"REALLockString"};
inline HostEntry<void(REALstringStruct* string)> REALUnlockString{"REALUnlockString"};
inline HostEntry<REALstringStruct*(REALstringStruct* first, REALstringStruct* second)> REALAddStrings{
    "RuntimeAddString"};
inline HostEntry<int32_t(REALstringStruct* first, REALstringStruct* second)> REALCompareStrings{
    "RuntimeStringCompare"};
inline HostEntry<uint32_t(REALstringStruct* string)> REALGetStringEncoding{"REALGetStringEncoding"};
inline HostEntry<void(REALstringStruct* string, uint32_t encoding)> REALSetStringEncoding{
    "REALSetStringEncoding"};
inline HostEntry<REALstringStruct*(REALstringStruct* string, uint32_t encoding)> REALConvertString{
    "REALConvertString"};
// Fills the record with the string's bytes in an encoding (kEncodingNone: its own); clear the record first.
// After success release the record with REALDisposeStringData. On hosts without the service uses
// "StringGetCString" and LenB.
bool REALGetStringData(REALstringStruct* string, uint32_t encoding, REALstringData* record);
void REALDisposeStringData(REALstringData* record);
inline HostEntry<uint32_t(REALstringStruct* fontName)> REALGetFontEncoding{"REALGetFontEncoding"};

// ---- Properties: true on success ----
template <typename T>
using PropertyGetter = HostEntry<RBBoolean(REALobjectStruct* object, const char* name, T* value)>;
template <typename T>
using PropertySetter = HostEntry<RBBoolean(REALobjectStruct* object, const char* name, T value)>;
inline PropertyGetter<int32_t> REALGetPropValueInt32{"REALGetPropValueInt"};
inline PropertyGetter<REALstringStruct*> REALGetPropValueString{"REALGetPropValueString"};
inline PropertyGetter<double> REALGetPropValueDouble{"REALGetPropValueDouble"};
inline PropertyGetter<REALobjectStruct*> REALGetPropValueObject{"REALGetPropValueObject"};
inline PropertyGetter<int64_t> REALGetPropValueInt64{"REALGetPropValueInt64"};
inline PropertyGetter<uint64_t> REALGetPropValueUInt64{"REALGetPropValueUInt64"};
inline PropertyGetter<uint32_t> REALGetPropValueUInt32{"REALGetPropValueUInt32"};
inline PropertyGetter<uint16_t> REALGetPropValueUInt16{"REALGetPropValueUInt16"};
inline PropertyGetter<int16_t> REALGetPropValueInt16{"REALGetPropValueInt16"};
inline PropertyGetter<int8_t> REALGetPropValueInt8{"REALGetPropValueInt8"};
inline PropertyGetter<float> REALGetPropValueSingle{"REALGetPropValueSingle"};
// Uses the host's boolean getter.
inline PropertyGetter<uint8_t> REALGetPropValueUInt8{"REALGetPropValueBool"};
inline PropertySetter<int32_t> REALSetPropValueInt32{"REALSetPropValueInt"};
inline PropertySetter<REALstringStruct*> REALSetPropValueString{"REALSetPropValueString"};
inline PropertySetter<double> REALSetPropValueDouble{"REALSetPropValueDouble"};
inline PropertySetter<REALobjectStruct*> REALSetPropValueObject{"REALSetPropValueObject"};
inline PropertySetter<uint32_t> REALSetPropValueUInt32{"REALSetPropValueUInt32"};
inline PropertySetter<uint64_t> REALSetPropValueUInt64{"REALSetPropValueUInt64"};
inline PropertySetter<int64_t> REALSetPropValueInt64{"REALSetPropValueInt64"};
inline PropertySetter<int16_t> REALSetPropValueInt16{"REALSetPropValueInt16"};
inline PropertySetter<uint16_t> REALSetPropValueUInt16{"REALSetPropValueUInt16"};
inline PropertySetter<int8_t> REALSetPropValueInt8{"REALSetPropValueInt8"};
// Uses the host's boolean setter.
inline PropertySetter<uint8_t> REALSetPropValueUInt8{"REALSetPropValueBoolean"};
inline PropertySetter<RBBoolean> REALSetPropValueBoolean{"REALSetPropValueBoolean"};

// ---- Variants: new objects ----
template <typename T>
using VariantMaker = HostEntry<REALobjectStruct*(T value)>;
inline VariantMaker<REALstringStruct*> REALNewVariantString{"StringToVariant"};
inline VariantMaker<void*> REALNewVariantPtr{"PtrToVariant"};
inline VariantMaker<int32_t> REALNewVariantInteger{"Int32ToVariant"};
inline VariantMaker<double> REALNewVariantDouble{"DoubleToVariant"};
inline VariantMaker<RBBoolean> REALNewVariantBoolean{"BooleanToVariant"};
inline VariantMaker<RBColor> REALNewVariantColor{"ColorToVariant"};
inline VariantMaker<uint32_t> REALNewVariantUInt32{"UInt32ToVariant"};
inline VariantMaker<int64_t> REALNewVariantInt64{"Int64ToVariant"};
inline VariantMaker<uint64_t> REALNewVariantUInt64{"UInt64ToVariant"};
inline VariantMaker<float> REALNewVariantSingle{"SingleToVariant"};

// ---- Arrays ----
inline HostEntry<REALarrayStruct*(int32_t elementType, int32_t upperBound)> REALCreateArray{
    "RuntimeArrayCreateSingleDimBoundedArray"};
inline HostEntry<int32_t(REALarrayStruct* array)> REALGetArrayUBound{"RuntimeUBound"};

inline ElementGetter<int64_t> REALGetArrayValueInt64;
inline ElementGetter<int32_t> REALGetArrayValueInt32;
inline ElementGetter<uint64_t> REALGetArrayValueUInt64;
inline ElementGetter<uint32_t> REALGetArrayValueUInt32;
inline ElementGetter<uint16_t> REALGetArrayValueUInt16;
inline ElementGetter<uint8_t> REALGetArrayValueUInt8;
inline ElementGetter<float> REALGetArrayValueSingle;
inline ElementGetter<double> REALGetArrayValueDouble;
inline ElementGetter<REALstringStruct*> REALGetArrayValueString;
inline ElementGetter<REALobjectStruct*> REALGetArrayValueObject;

inline ElementSetter<int64_t> REALSetArrayValueInt64;
inline ElementSetter<int32_t> REALSetArrayValueInt32;
inline ElementSetter<int16_t> REALSetArrayValueInt16;
inline ElementSetter<int8_t> REALSetArrayValueInt8;
inline ElementSetter<uint64_t> REALSetArrayValueUInt64;
inline ElementSetter<uint32_t> REALSetArrayValueUInt32;
inline ElementSetter<uint16_t> REALSetArrayValueUInt16;
inline ElementSetter<uint8_t> REALSetArrayValueUInt8;
inline ElementSetter<float> REALSetArrayValueSingle;
inline ElementSetter<double> REALSetArrayValueDouble;
inline ElementSetter<REALstringStruct*> REALSetArrayValueString;
inline ElementSetter<REALobjectStruct*> REALSetArrayValueObject;

inline ElementInserter<int64_t> REALInsertArrayValueInt64;
inline ElementInserter<int32_t> REALInsertArrayValueInt32;
inline ElementInserter<uint64_t> REALInsertArrayValueUInt64;
inline ElementInserter<uint32_t> REALInsertArrayValueUInt32;
inline ElementInserter<uint16_t> REALInsertArrayValueUInt16;
inline ElementInserter<float> REALInsertArrayValueSingle;
inline ElementInserter<double> REALInsertArrayValueDouble;
inline ElementInserter<REALstringStruct*> REALInsertArrayValueString;
inline ElementInserter<REALobjectStruct*> REALInsertArrayValueObject;

// ---- Memory blocks ----
inline HostEntry<REALmemoryBlockStruct*(int32_t size)> REALNewMemoryBlockOriginal{"newMemoryBlock"};
inline HostEntry<void*(REALmemoryBlockStruct* block)> REALMemoryBlockGetPtr{"memoryBlockGetPtr"};
inline HostEntry<int32_t(REALmemoryBlockStruct* block)> REALMemoryBlockGetSize{"memoryBlockGetSize"};
inline HostEntry<REALmemoryBlockStruct*(void* bytes)> REALPtrToMemoryBlock{"PtrToMemoryBlock"};

// ---- Pictures ----
inline HostEntry<REALpictureStruct*(int32_t width, int32_t height, int32_t depth)> REALNewPicture{
    "newPicture"};
// `buffer` holds `height` rows of `rowBytes` bytes in the given RBPixelType.
inline HostEntry<REALpictureStruct*(int32_t width, int32_t height, int32_t pixelType, void* buffer,
                                    int32_t rowBytes)>
    REALBuildPictureFromBuffer{"REALBuildPictureFromBuffer"};
inline HostEntry<REALpictureStruct*(void* platformImage)> REALBuildPictureFromGWorld{
    "REALBuildPictureFromGWorld"};
bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description);
// Requests one REALPictureType.
bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description,
                                int32_t pictureType);
inline HostEntry<void(REALpictureStruct* picture)> REALUnlockPictureDescription{"unlockPictureDescription"};
// Drops the host's cached rendering after the pixels changed.
inline HostEntry<void(REALpictureStruct* picture)> REALPictureClearCache{"REALPictureClearCache"};
// The mask; creates one if there is none and `create` is set.
inline HostEntry<REALpictureStruct*(REALpictureStruct* picture, RBBoolean create)> REALGetPictureMask{
    "REALGetPictureMask"};
inline HostEntry<REALgraphicsStruct*(REALpictureStruct* picture)> REALGetPictureGraphics{
    "pluginPictureGraphicsGetter"};

// ---- Graphics ----
inline HostEntry<void*(REALgraphicsStruct* graphics)> REALGraphicsDC{"REALGraphicsDC"};
void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture, const void* rectangle,
                              int32_t options);
void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture,
                              const void* rectangle);
inline HostEntry<void(REALgraphicsStruct* graphics, int32_t x1, int32_t y1, int32_t x2, int32_t y2)>
    GraphicsDrawLine{"RuntimeGraphicsDrawLine"};
inline HostEntry<void(REALgraphicsStruct* graphics, REALstringStruct* text, int32_t x, int32_t y)>
    REALGraphicsDrawString{"RuntimeGraphicsDrawString"};

// ---- Controls and files ----
inline HostEntry<void(REALcontrolStruct* control, void* rectangle)> REALGetControlBounds{"GetControlBounds"};
inline HostEntry<REALgraphicsStruct*(REALcontrolStruct* control)> REALGetControlGraphics{
    "REALGetControlGraphics"};
inline HostEntry<REALwindowStruct*(REALcontrolStruct* control)> REALGetControlWindow{"getControlWindow"};
inline HostEntry<RBBoolean(REALcontrolStruct* control)> REALGetTabPanelVisible{"GetTabPanelVisible"};
// The handler of an event in a control. Passes the host the event's second word, not the record.
void* REALGetEventInstance(REALcontrolStruct* control, REALevent* event);
inline HostEntry<REALstringStruct*(REALfolderItemStruct* item)> REALpathFromFolderItem{
    "REALpathFromFolderItem"};
