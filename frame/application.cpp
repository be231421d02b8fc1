#include "frame/application.h"

#include "frame/entry_points.h"

namespace {

ApplicationKind gKind = ApplicationKind::unknown;

}  // namespace

bool IsDesktop() { return gKind == ApplicationKind::desktop; }
bool IsConsole() { return gKind == ApplicationKind::console; }
void setApplicationKind(ApplicationKind kind) { gKind = kind; }

void CheckApplication() {
  const bool desktop = REALGetClassRef("Application") != nullptr;
  const bool web = REALGetClassRef("WebApplication") != nullptr;
  const bool console = REALGetClassRef("ConsoleApplication") != nullptr;
  if (!desktop && !web && !console) return;
  setApplicationKind(desktop ? ApplicationKind::desktop : ApplicationKind::console);
}
