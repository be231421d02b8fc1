// The dynamic loader, by the first versions of its functions.
#pragma once

// A library that stays open; null when it can't be opened.
void* openLibrary(const char* name);
// The address of a symbol; null when the library lacks it.
void* findSymbol(void* library, const char* symbol);
