// The way in: the function that the host finds by name.
#pragma once

#include "frame/host_interface.h"

// Called once, before anything else; the resolver must stay callable as long as the process lives. Learns the
// host's version and registers every member.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALResolver resolver);

// Registers every class and method with the host. Defined beside their tables.
void PluginEntry();
