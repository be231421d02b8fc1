// What is known of the host from the moment of entry on.
#pragma once

#include "frame/host_interface.h"

// The host's resolver; null before the entry. Only the entry-point layer calls it.
extern REALResolver gResolver;
// The host's version as it reports it (2013.03, say); 0 when it reports none.
extern double rbversion_rbversion;
// Layout of the registration records that the host understands: 9 (the old layout), 10, 11 or 12.
extern int32_t CurrentREALControlVersion;
// The control version of hosts that take records in the old, shorter layout.
constexpr int32_t kOldLayoutVersion = 9;
