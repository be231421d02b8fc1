#include "plugin/plugin_main.h"

#include "frame/entry_points.h"
#include "frame/host_state.h"
#include "old_c_library/unwinding.h"

namespace {

// NaN fails every comparison and gets the oldest layout.
int32_t controlVersionFor(double hostVersion) {
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return 11;
  if (hostVersion >= 2012.0) return 10;
  return kOldLayoutVersion;
}

}  // namespace

void REALPluginMain(REALResolver resolver) {
  gResolver = resolver;
  readyUnwinder();
  const auto registerVersion = reinterpret_cast<void (*)(int32_t)>(HCallResolver("RegisterPluginVersion"));
  if (const auto askVersion = reinterpret_cast<double (*)()>(HCallResolver("REALGetRBVersion"))) {
    rbversion_rbversion = askVersion();
  }
  CurrentREALControlVersion = controlVersionFor(rbversion_rbversion);
  if (registerVersion) registerVersion(CurrentREALControlVersion);
  PluginEntry();
}
