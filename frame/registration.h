// Registers members with hosts of every version: translates flags and converts records to the old layout.
//
// Records are adjusted in place and belong to the host from then on. They live as long as the process, and so
// do the converted copies for hosts of control version 9.
#pragma once

#include "frame/host_interface.h"

// Translates the plug-in's flag markers to host flags. Hosts before version 2010.029 have no such flags:
// there the markers are only removed.
void FixConsoleFlags(REALmethodDefinition* method);
void FixConsoleFlags(REALmethodDefinition* methods, int32_t count);
void FixConsoleFlags(REALmoduleDefinition* definition);
void FixConsoleFlags(REALclassDefinition* definition);

// Records the plug-in's identity before anything is registered.
void MyPluginStart(const char* partName, const char* versionBanner);
void MyPluginEnde();  // end of registration: a no-op

void MyREALRegisterMethod(REALmethodDefinition* method);
void MyREALRegisterMethodArray(REALmethodDefinition* methods, int32_t count);
// Also rounds up the size of the instance data to a multiple of 16.
void MyREALRegisterClass(REALclassDefinition* definition);
void MyREALRegisterClassExtension(REALclassDefinition* definition);
void MyREALRegisterModule(REALmoduleDefinition* definition);
void MyREALRegisterInterface(REALinterfaceDefinition* definition);
void MyREALRegisterControl(REALcontrolDefinition* definition);

// Copies in the old layout; free them with FreeMemoryNow. Their new arrays are never freed. Null if memory
// runs out.
REALclassDefinition* FixClass(REALclassDefinition* definition);
REALmoduleDefinition* FixModule(REALmoduleDefinition* definition);
REALinterfaceDefinition* FixInterface(REALinterfaceDefinition* definition);
REALcontrolDefinition* FixControl(REALcontrolDefinition* definition);

// Set flags for registration code that doesn't list them in its tables.
REALclassDefinition* SetClassConsoleSafe(REALclassDefinition* definition);  // returns the record
uint32_t SetClassWebOnly(REALclassDefinition* definition);                  // returns the new flags
