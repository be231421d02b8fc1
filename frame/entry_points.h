// One wrapper for each host service, named as the host's interface names it. A wrapper asks the host for the
// service on first use and answers null, zero, false or nothing while the host lacks it; nothing is reported.
// Objects and strings that a wrapper returns carry one reference for the caller unless it says otherwise.
#pragma once

#include "frame/host_entry.h"
#include "frame/host_interface.h"

// ---- Registration ----
void REALRegisterMethod(REALmethodDefinition* method);
void REALRegisterClass(REALclassDefinition* definition);
void REALRegisterClassExtension(REALclassDefinition* definition);
void REALRegisterModule(REALmoduleDefinition* definition);
void REALRegisterInterface(REALinterfaceDefinition* definition);
void REALRegisterControl(REALcontrolDefinition* definition);
// Calls `task(data)` periodically; the unit of `period` is the host's. Returns an id; -1 when the host lacks
// the service.
int32_t REALRegisterBackgroundTask(void (*task)(void*), uint32_t period, void* data);
void REALUnregisterBackgroundTask(int32_t id);

// ---- Objects and classes ----
// Instance data of an object of a plug-in class; owned by the object.
void* REALGetPluginData(REALobjectStruct* object, REALclassDefinition* definition);
// The class of that name; null when the program has none. Not counted.
REALclassRefStruct* REALGetClassRef(const char* className);
REALobjectStruct* REALnewInstance(const char* className);
// Null, too, for a null class reference.
REALobjectStruct* REALnewInstanceWithClass(REALclassRefStruct* classRef);
bool REALObjectIsA(REALobjectStruct* object, REALclassRefStruct* classRef);
// False for a null object and for an unknown class.
bool REALObjectIsA(REALobjectStruct* object, const char* className);
// Counts one reference up; false on a host that can't.
bool REALLockObject(REALobjectStruct* object);
void REALUnlockObject(REALobjectStruct* object);
// Leaves an exception pending in the host, which takes a reference of its own; returns to the caller.
void REALRaiseException(REALobjectStruct* exception);
// Addresses of functions and methods of the host language, by declaration; null when there is none.
void* REALLoadFrameworkMethod(const char* declaration);
void* REALLoadObjectMethod(REALobjectStruct* object, const char* declaration);
void* REALInterfaceRoutine(REALobjectStruct* object, const char* interfaceName, const char* routine);
void* REALGetDelegateInvoker(void* delegate);
// Whether an object is a memory block, or a folder item: told by a method that only that kind has.
bool IsMemoryBlock(REALobjectStruct* object);
bool IsFolderItem(REALobjectStruct* object);

// ---- The program ----
bool REALinRuntime();  // a built program rather than the development environment
bool REALInDebugMode();
void REALYieldToRB();  // lets the host run its event loop
void REALMessageBox(REALstringStruct* text);

// ---- Strings ----
// Bytes to a string without an encoding.
REALstringStruct* originalREALBuildString(const void* bytes, int32_t length);
// Counts one reference up; false on a host that can't.
bool REALLockString(REALstringStruct* string);
void REALUnlockString(REALstringStruct* string);
REALstringStruct* REALAddStrings(REALstringStruct* first, REALstringStruct* second);
int32_t REALCompareStrings(REALstringStruct* first, REALstringStruct* second);
uint32_t REALGetStringEncoding(REALstringStruct* string);
void REALSetStringEncoding(REALstringStruct* string, uint32_t encoding);
REALstringStruct* REALConvertString(REALstringStruct* string, uint32_t encoding);
// Fills the record with the string's bytes in an encoding (kEncodingNone: its own); clear the record first.
// True on success; then the record goes back through REALDisposeStringData. Works on hosts without the
// service by means of "StringGetCString" and LenB.
bool REALGetStringData(REALstringStruct* string, uint32_t encoding, REALstringData* record);
void REALDisposeStringData(REALstringData* record);
uint32_t REALGetFontEncoding(REALstringStruct* fontName);

// ---- Properties: true on success ----
bool REALGetPropValueInt32(REALobjectStruct* object, const char* name, int32_t* value);
bool REALGetPropValueString(REALobjectStruct* object, const char* name, REALstringStruct** value);
bool REALGetPropValueDouble(REALobjectStruct* object, const char* name, double* value);
bool REALGetPropValueObject(REALobjectStruct* object, const char* name, REALobjectStruct** value);
bool REALGetPropValueInt64(REALobjectStruct* object, const char* name, int64_t* value);
bool REALGetPropValueUInt64(REALobjectStruct* object, const char* name, uint64_t* value);
bool REALGetPropValueUInt32(REALobjectStruct* object, const char* name, uint32_t* value);
bool REALGetPropValueUInt16(REALobjectStruct* object, const char* name, uint16_t* value);
bool REALGetPropValueInt16(REALobjectStruct* object, const char* name, int16_t* value);
bool REALGetPropValueInt8(REALobjectStruct* object, const char* name, int8_t* value);
bool REALGetPropValueSingle(REALobjectStruct* object, const char* name, float* value);
// By the host's boolean getter.
bool REALGetPropValueUInt8(REALobjectStruct* object, const char* name, uint8_t* value);
bool REALSetPropValueInt32(REALobjectStruct* object, const char* name, int32_t value);
bool REALSetPropValueString(REALobjectStruct* object, const char* name, REALstringStruct* value);
bool REALSetPropValueDouble(REALobjectStruct* object, const char* name, double value);
bool REALSetPropValueObject(REALobjectStruct* object, const char* name, REALobjectStruct* value);
bool REALSetPropValueUInt32(REALobjectStruct* object, const char* name, uint32_t value);
bool REALSetPropValueUInt64(REALobjectStruct* object, const char* name, uint64_t value);
bool REALSetPropValueInt64(REALobjectStruct* object, const char* name, int64_t value);
bool REALSetPropValueInt16(REALobjectStruct* object, const char* name, int16_t value);
bool REALSetPropValueUInt16(REALobjectStruct* object, const char* name, uint16_t value);
bool REALSetPropValueInt8(REALobjectStruct* object, const char* name, int8_t value);
// By the host's boolean setter.
bool REALSetPropValueUInt8(REALobjectStruct* object, const char* name, uint8_t value);
bool REALSetPropValueBoolean(REALobjectStruct* object, const char* name, bool value);

// ---- Variants ----
REALobjectStruct* REALNewVariantString(REALstringStruct* value);
REALobjectStruct* REALNewVariantPtr(void* value);
REALobjectStruct* REALNewVariantInteger(int32_t value);
REALobjectStruct* REALNewVariantDouble(double value);
REALobjectStruct* REALNewVariantBoolean(bool value);
REALobjectStruct* REALNewVariantColor(RBColor value);
REALobjectStruct* REALNewVariantUInt32(uint32_t value);
REALobjectStruct* REALNewVariantInt64(int64_t value);
REALobjectStruct* REALNewVariantUInt64(uint64_t value);
REALobjectStruct* REALNewVariantSingle(float value);

// ---- Arrays: elements through the accessor of the array's own element type ----
REALarrayStruct* REALCreateArray(int32_t elementType, int32_t upperBound);
int32_t REALGetArrayUBound(REALarrayStruct* array);
// The element, also stored through `value` when that is not null. Zero, and nothing stored, without an
// accessor.
int64_t REALGetArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t* value);
int32_t REALGetArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t* value);
uint64_t REALGetArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t* value);
uint32_t REALGetArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t* value);
uint16_t REALGetArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t* value);
uint8_t REALGetArrayValueUInt8(REALarrayStruct* array, int32_t index, uint8_t* value);
float REALGetArrayValueSingle(REALarrayStruct* array, int32_t index, float* value);
double REALGetArrayValueDouble(REALarrayStruct* array, int32_t index, double* value);
REALstringStruct* REALGetArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct** value);
REALobjectStruct* REALGetArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct** value);
void REALSetArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t value);
void REALSetArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t value);
void REALSetArrayValueInt16(REALarrayStruct* array, int32_t index, int16_t value);
void REALSetArrayValueInt8(REALarrayStruct* array, int32_t index, int8_t value);
void REALSetArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t value);
void REALSetArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t value);
void REALSetArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t value);
void REALSetArrayValueUInt8(REALarrayStruct* array, int32_t index, uint8_t value);
void REALSetArrayValueSingle(REALarrayStruct* array, int32_t index, float value);
void REALSetArrayValueDouble(REALarrayStruct* array, int32_t index, double value);
void REALSetArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct* value);
void REALSetArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct* value);
void REALInsertArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t value);
void REALInsertArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t value);
void REALInsertArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t value);
void REALInsertArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t value);
void REALInsertArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t value);
void REALInsertArrayValueSingle(REALarrayStruct* array, int32_t index, float value);
void REALInsertArrayValueDouble(REALarrayStruct* array, int32_t index, double value);
void REALInsertArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct* value);
void REALInsertArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct* value);

// ---- Memory blocks ----
REALmemoryBlockStruct* REALNewMemoryBlockOriginal(int32_t size);
void* REALMemoryBlockGetPtr(REALmemoryBlockStruct* block);
int32_t REALMemoryBlockGetSize(REALmemoryBlockStruct* block);
REALmemoryBlockStruct* REALPtrToMemoryBlock(void* bytes);

// ---- Pictures ----
REALpictureStruct* REALNewPicture(int32_t width, int32_t height, int32_t depth);
// `buffer` holds `height` rows of `rowBytes` bytes in the RBPixelType given.
REALpictureStruct* REALBuildPictureFromBuffer(int32_t width, int32_t height, int32_t pixelType, void* buffer,
                                              int32_t rowBytes);
REALpictureStruct* REALBuildPictureFromGWorld(void* platformImage);
bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description);
// Asks for one REALPictureType.
bool REALLockPictureDescription(REALpictureStruct* picture, REALpictureDescription* description,
                                int32_t pictureType);
void REALUnlockPictureDescription(REALpictureStruct* picture);
// The pixels changed: drops the host's cached rendering.
void REALPictureClearCache(REALpictureStruct* picture);
// The mask, made when there is none and `create` is set.
REALpictureStruct* REALGetPictureMask(REALpictureStruct* picture, bool create);
REALgraphicsStruct* REALGetPictureGraphics(REALpictureStruct* picture);

// ---- Graphics ----
void* REALGraphicsDC(REALgraphicsStruct* graphics);
void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture, const void* rectangle,
                              int32_t options);
void REALDrawPicturePrimitive(REALgraphicsStruct* graphics, REALpictureStruct* picture,
                              const void* rectangle);
void GraphicsDrawLine(REALgraphicsStruct* graphics, int32_t x1, int32_t y1, int32_t x2, int32_t y2);
void REALGraphicsDrawString(REALgraphicsStruct* graphics, REALstringStruct* text, int32_t x, int32_t y);

// ---- Controls and files ----
void REALGetControlBounds(REALcontrolStruct* control, void* rectangle);
REALgraphicsStruct* REALGetControlGraphics(REALcontrolStruct* control);
REALwindowStruct* REALGetControlWindow(REALcontrolStruct* control);
bool REALGetTabPanelVisible(REALcontrolStruct* control);
// The handler of an event in a control; hands the host the event's second word, not the record.
void* REALGetEventInstance(REALcontrolStruct* control, REALevent* event);
REALstringStruct* REALpathFromFolderItem(REALfolderItemStruct* item);
