// The kind of host program, which decides the road to the pixels of its pictures. Determined once per
// process; never changes after that.
#pragma once

enum class ApplicationKind {
  unknown,
  desktop,
  console,  // or a web application
};

bool IsDesktop();
bool IsConsole();
void setApplicationKind(ApplicationKind kind);

// Sets the kind from the host program's application class; leaves it unknown if there is none.
void CheckApplication();
