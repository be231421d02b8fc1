// The dynamic loader, bound to the oldest versions of its functions.
#pragma once

// Opens a library, which stays open; null on failure.
void* openLibrary(const char* name);
// The address of a symbol; null if the library lacks it.
void* findSymbol(void* library, const char* symbol);
