#include "fuzz/played_host.h"

#include <cstdio>
#include <cstdlib>

#include "frame/application.h"
#include "frame/host_state.h"
#include "plugin/plugin_main.h"

namespace fuzz {

void play(host::Road kind) {
  setRoad(kind);
  host::Settings settings = settingsForRoad();
  settings.guardPages = false;  // the sanitizer watches
  host::start(settings);
  // In a real process the kind of host never changes.
  setApplicationKind(ApplicationKind::unknown);
  REALPluginMain(host::resolve);
}

void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

}  // namespace fuzz
