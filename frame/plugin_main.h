// The way in: what the host calls when it loads the plug-in, and what is known from then on.
#pragma once

#include "frame/host_interface.h"

// The host's resolver, from the moment of entry. Only the entry-point layer uses it.
extern REALResolver gResolver;
// The host's version as it reports it (2013.03, say); 0 when it reports none.
extern double rbversion_rbversion;
// Layout of the registration records that the host understands: 9, 10, 11 or 12.
extern int32_t CurrentREALControlVersion;
// Kind of program that the host is. At most one of the two becomes 1, and never goes back.
extern uint8_t IsConsole;  // web or console application
extern uint8_t IsDesktop;  // desktop application

// The only function that the host finds by name; called once, before anything else.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver);

// Registers every class and method with the host. Defined beside the tables.
void PluginEntry();

// Sets `IsDesktop` or `IsConsole` from the application class that the host program has; neither when it has
// none.
void CheckApplication();
