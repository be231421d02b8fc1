// Entry from the host.

#include "frame/plugin_main.h"

#include <unwind.h>

#include "frame/entry_points.h"

REALResolver gResolver;
double rbversion_rbversion;
int32_t CurrentREALControlVersion;
uint8_t IsConsole;
uint8_t IsDesktop;

namespace {

// A version that is not a number fails every comparison and gets the oldest layout.
int32_t controlVersionFor(double hostVersion) {
  if (hostVersion >= 2013.03) return 12;
  if (hostVersion >= 2013.0) return 11;
  if (hostVersion >= 2012.0) return 10;
  return 9;
}

// The unwinder is linked in and readies itself when it is first used to unwind from here. A host's exception
// that passes through the plug-in is unwound by the host's own, which then calls into ours.
void readyUnwinder() {
  _Unwind_Backtrace([](_Unwind_Context*, void*) { return _URC_END_OF_STACK; }, nullptr);
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

void CheckApplication() {
  const bool desktop = REALGetClassRef("Application") != nullptr;
  const bool web = REALGetClassRef("WebApplication") != nullptr;
  const bool console = REALGetClassRef("ConsoleApplication") != nullptr;
  if (!desktop && !web && !console) return;
  (desktop ? IsDesktop : IsConsole) = 1;
}
