// The kind of program that the host is, which decides the road to the pixels of its pictures. It becomes
// known once in a process and never changes after that.
#pragma once

enum class ApplicationKind {
  unknown,
  desktop,
  console,  // or a web application
};

bool IsDesktop();
bool IsConsole();
void setApplicationKind(ApplicationKind kind);

// Sets the kind by the application class that the host program has; leaves it unknown when it has none.
void CheckApplication();
