#include "frame/host_state.h"

REALResolver gResolver;
double rbversion_rbversion;
int32_t CurrentREALControlVersion;
