// State of the host, set when it enters the plug-in.
#pragma once

#include "frame/host_interface.h"

// The host's resolver; null before entry. Only the entry-point layer calls it.
extern REALResolver gResolver;
// The version that the host reports, for example 2013.03; 0 if it reports none.
extern double rbversion_rbversion;
// The layout of registration records that the host expects: 9 (the old layout), 10, 11 or 12.
extern int32_t CurrentREALControlVersion;
// The control version of hosts that expect the old, shorter layout.
constexpr int32_t kOldLayoutVersion = 9;
