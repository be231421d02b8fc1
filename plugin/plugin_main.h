// The entry point, which the host finds by name.
#pragma once

#include "frame/host_interface.h"

// The host calls this once, before anything else; the resolver must stay valid as long as the process lives.
// Reads the host's version and registers every member.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver);

// Registers every class and method with the host. Defined next to their tables.
void PluginEntry();
