// Errors are reported the only way the host offers: an exception object of a host class, raised in the
// calling code of the host program. Raising returns to the caller, which cleans up and returns its null
// result. On a host without the class this raises a "RuntimeException"; without that too, or on a host that
// can't raise, it is a no-op. If the message can't be built or set, the exception has none.
#pragma once

#include "frame/entry_points.h"

constexpr char kNilObjectException[] = "NilObjectException";
constexpr char kOutOfMemoryException[] = "OutOfMemoryException";
constexpr char kOutOfBoundsException[] = "OutOfBoundsException";

// `message` may be null; the caller keeps ownership.
void RaiseException(const char* exceptionClass, REALstringStruct* message);
// `message` is null-terminated text in an 8-bit encoding; null for none.
void RaiseException(const char* exceptionClass, const char* message, uint32_t encoding = kEncodingASCII);
// Concatenates three parts; any may be null.
void RaiseException(const char* exceptionClass, REALstringStruct* first, REALstringStruct* second,
                    REALstringStruct* third);
void RaiseException(const char* exceptionClass, const char* first, const char* second, const char* third,
                    uint32_t encoding);

// Reports that a value lies outside minimum .. limit - 1. The caller has checked the range; a value that is
// not below the minimum is called too big. Null names show as "?".
void RaiseOutOfBoundsException(int64_t value, int64_t minimum, int64_t limit, const char* parameter,
                               const char* method);

// A new memory block; null for a size below 0 or above 0x7FFFFFFE (without calling the host), and if the host
// fails. Raises nothing.
REALmemoryBlockStruct* REALNewMemoryBlock(int64_t size);
// A new block with a copy of the bytes; the caller owns one reference. Null for no bytes. Raises
// "OutOfMemoryException" if the allocation fails.
REALmemoryBlockStruct* REALBuildMemoryblock(const void* bytes, int32_t length);

// Prints the text as one line to stderr.
void DebugLog(REALstringStruct* text);
