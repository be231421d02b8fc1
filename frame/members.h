// The tables of registered members, as far as others need them.
#pragma once

#include "frame/host_interface.h"

// The records of the two filter classes, by which the host hands out their instances' data.
extern REALclassDefinition gLut3DClass;
extern REALclassDefinition gSepiaClass;
