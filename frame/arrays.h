// Typed access to the host's arrays. Hosts up to version 2013.9 allow direct access to the element storage;
// on later ones each element goes through the host.
#pragma once

#include "frame/entry_points.h"

// New arrays with the given upper bound (-1: empty). The caller owns one reference; null on failure.
REALarrayStruct* REALCreateArrayInteger(int32_t upperBound);
REALarrayStruct* REALCreateArraySingle(int32_t upperBound);
REALarrayStruct* REALCreateArrayDouble(int32_t upperBound);
REALarrayStruct* REALCreateArrayString(int32_t upperBound);
REALarrayStruct* REALCreateArrayObject(int32_t upperBound);
REALarrayStruct* REALCreateArrayDictionary(int32_t upperBound);
REALarrayStruct* REALCreateArrayVariant(int32_t upperBound);
REALarrayStruct* REALCreateArrayFolderItem(int32_t upperBound);
REALarrayStruct* REALCreateArrayUInt16(int32_t upperBound);
REALarrayStruct* REALCreateArrayUInt32(int32_t upperBound);
REALarrayStruct* REALCreateArrayUInt64(int32_t upperBound);
REALarrayStruct* REALCreateArrayInt64(int32_t upperBound);

// Reads one element into `value`. A null array, or a host without an accessor, leaves `value` unchanged. The
// index is not checked. The caller owns one reference on a string or object.
void REALGetArrayValue(REALarrayStruct* array, int32_t index, int32_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint32_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint16_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint8_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, int64_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint64_t* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, float* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, double* value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct** value);
void REALGetArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct** value);

// Stores one element. The array takes its own reference on a string or object.
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int32_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint32_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int16_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint16_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int8_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint8_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int64_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint64_t value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, float value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, double value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct* value);
void REALSetArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct* value);

// For old array handles: returns the element; 0 or null for a null array.
int32_t REALGetArrayInt(REALarrayStruct* array, int32_t index);
REALstringStruct* REALGetArrayString(REALarrayStruct* array, int32_t index);
REALobjectStruct* REALGetArrayObject(REALarrayStruct* array, int32_t index);

// Inserts one element before the index.
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, int32_t value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint32_t value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint16_t value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, int64_t value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint64_t value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, float value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, double value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct* value);
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct* value);
// Appends an element; a no-op for a null array.
void REALAppendArrayValue(REALarrayStruct* array, REALstringStruct* value);
void REALAppendArrayValue(REALarrayStruct* array, REALobjectStruct* value);
