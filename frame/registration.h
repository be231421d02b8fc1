// Registering members with hosts of every version: flag translation and the records' old layout.
//
// Records are adjusted in place and belong to the host from then on: they, and the converted copies that
// hosts of control version 9 get, live as long as the process.
#pragma once

#include "frame/host_interface.h"

// Turns the plug-in's flag markers into the flags of the host that this is. Hosts before version 2010.029
// know no such flags: there the markers just go.
void FixConsoleFlags(REALmethodDefinition* method);
void FixConsoleFlags(REALmethodDefinition* methods, int32_t count);
void FixConsoleFlags(REALmoduleDefinition* definition);
void FixConsoleFlags(REALclassDefinition* definition);

// Identity of the plug-in, noted before anything is registered.
void MyPluginStart(const char* partName, const char* versionBanner);
void MyPluginEnde();  // end of registration: nothing to do

void MyREALRegisterMethod(REALmethodDefinition* method);
void MyREALRegisterMethodArray(REALmethodDefinition* methods, int32_t count);
// Also rounds the size of the instance data up to a multiple of 16.
void MyREALRegisterClass(REALclassDefinition* definition);
void MyREALRegisterClassExtension(REALclassDefinition* definition);
void MyREALRegisterModule(REALmoduleDefinition* definition);
void MyREALRegisterInterface(REALinterfaceDefinition* definition);
void MyREALRegisterControl(REALcontrolDefinition* definition);

// Copies in the old layout, to be freed with FreeMemoryNow; their arrays are new and stay. Null when memory
// is lacking.
REALclassDefinition* FixClass(REALclassDefinition* definition);
REALmoduleDefinition* FixModule(REALmoduleDefinition* definition);
REALinterfaceDefinition* FixInterface(REALinterfaceDefinition* definition);
REALcontrolDefinition* FixControl(REALcontrolDefinition* definition);

// Flags for registration code that doesn't carry them in its tables.
REALclassDefinition* SetClassConsoleSafe(REALclassDefinition* definition);  // returns the record
uint32_t SetClassWebOnly(REALclassDefinition* definition);                  // returns the new flags
