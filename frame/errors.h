// Errors, reported the only way the host offers: an exception object of a host class, raised for the calling
// code of the host program. Raising returns to the caller, who cleans up and answers its null result. A host
// that lacks the class gets a "RuntimeException"; one that lacks that too, or can't raise, gets nothing.
// Where the message can't be built or set, the exception comes without.
#pragma once

#include "frame/entry_points.h"

constexpr char kNilObjectException[] = "NilObjectException";
constexpr char kOutOfMemoryException[] = "OutOfMemoryException";
constexpr char kOutOfBoundsException[] = "OutOfBoundsException";

// A message that the caller goes on owning; null for none.
void RaiseException(const char* exceptionClass, REALstringStruct* message);
// Terminated 8-bit text in an encoding; null for none.
void RaiseException(const char* exceptionClass, const char* message, uint32_t encoding = kEncodingASCII);
// The concatenation of three; nulls allowed.
void RaiseException(const char* exceptionClass, REALstringStruct* first, REALstringStruct* second,
                    REALstringStruct* third);
void RaiseException(const char* exceptionClass, const char* first, const char* second, const char* third,
                    uint32_t encoding);

// Says that a value lies outside minimum .. limit - 1. The caller decides that it does; a value that is not
// below the minimum is called too big. Null names show as "?".
void RaiseOutOfBoundsException(int64_t value, int64_t minimum, int64_t limit, const char* parameter,
                               const char* method);

// A new memory block; null for a size below 0 or above 0x7FFFFFFE (the host is not asked) and when the host
// has none. Raises nothing.
REALmemoryBlockStruct* REALNewMemoryBlock(int64_t size);
// A new block holding a copy of the bytes; the caller owns one reference. Null for no bytes; raises
// "OutOfMemoryException" when the block can't be had.
REALmemoryBlockStruct* REALBuildMemoryblock(const void* bytes, int32_t length);

// Writes the text as one line to the standard error stream.
void DebugLog(REALstringStruct* text);
