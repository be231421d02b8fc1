// The host that is played: which kind, which version, what it refuses, what the plug-in registered with
// it and what is still held. One host a process; `start` begins it anew.
#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/host_interface.h"
#include "host/declarations.h"

namespace host {

// How the host keeps and shows the pixels of its pictures.
enum class Road {
  cairo,    // desktop: cairo image surfaces
  gdk,      // older desktop: GDK drawables (needs an X display)
  console,  // console and web: bitmap records with a row table
};

struct Settings {
  Road road = Road::cairo;
  // The answer of "REALGetRBVersion"; nullopt: the host does not offer that entry point.
  std::optional<double> version = 2013.03;
  // The application class that the program has, or empty: "Application", "WebApplication",
  // "ConsoleApplication". nullopt: the one that fits the road.
  std::optional<std::string> applicationClass;
  // Word that every pixel of a new picture holds.
  uint32_t freshPixel = 0xFFFFFFFF;
  // Bytes between the end of a row's pixels and the start of the next row (a multiple of 4).
  int32_t rowPadding = 0;
  // Pixel buffers, and the bytes of memory blocks and of string data, end at a page that may not be touched.
  bool guardPages = false;
  // New pictures that the plug-in asks for are wider and higher by this many pixels (smaller when negative).
  int32_t newPicturesGrowBy = 0;

  // ---- For measuring ----

  // Large buffers of released objects (mostly pixels) are reused for requests of the same size, contents
  // included: nothing is cleared, freshPixel is not filled in, and no page is touched for the first time
  // while the plug-in works.
  bool recyclesBuffers = false;
  // Road::gdk without an X display: drawables are host/shims/plain_drawable.h records of RGB24 pixels. Only
  // the stand-in for GDK in host/shims/plain_gdk.cpp can read them. `pictureRow(picture, 0)` then points to
  // those pixels, and a picture that is built from a buffer shows that buffer.
  bool plainDrawables = false;
  // Told when the plug-in enters (true) and leaves (false) a service or the resolver; null: nobody.
  void (*serviceWatcher)(bool entered) = nullptr;
};

// A library of the road's toolkit that is not installed, or too old.
struct MissingLibrary : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Begins a new host: no members, no faults, no pending exception. Throws std::runtime_error when the road
// can't be had (no X display; a MissingLibrary). Objects of the host before must be gone.
void start(const Settings& settings);
const Settings& settings();

// The resolver that is handed to the plug-in.
void* resolve(const char* name);

// ---- The plug-in ----

// A loaded plug-in library, entered through REALPluginMain with our resolver. Throws std::runtime_error
// with the loader's words when it can't be loaded. The library is closed by the destructor.
class Plugin {
 public:
  explicit Plugin(const std::string& path);
  ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

 private:
  void* library_;
};

struct Flagged {
  uint32_t flags = 0;
  bool consoleSafe() const { return (flags & kFlagConsoleSafe) != 0; }
};

// A method as registered. For an extension of a host class the first argument is the host object; for a
// class of the plug-in it is the instance.
struct Method : Flagged {
  Declaration declaration;
  std::string text;  // the declaration as registered
  void* function = nullptr;
  void* setter = nullptr;  // or null
};

struct Property : Flagged {
  std::string name, type;
  void* getter = nullptr;  // kStoredProperty: a field at `offset` of the instance data
  void* setter = nullptr;
  uint32_t offset = 0;
};

struct Class : Flagged {
  std::string name;
  int32_t dataSize = 0;
  void* constructor = nullptr;
  void* destructor = nullptr;
  std::vector<Property> properties;
  std::vector<Method> methods;
  const void* record = nullptr;  // the record that was registered
};

// One call of a registration entry point, in the order of the calls. `version` is the record's version
// word (0 for a method).
struct Registration {
  std::string entryPoint;  // "PluginRegisterClass"
  std::string name;        // class or method name
  int32_t version = 0;
  const void* record = nullptr;
};

// Everything that the plug-in registered.
struct Members {
  int32_t controlVersion = 0;  // as told to "RegisterPluginVersion"; 0 before
  std::vector<Method> globals;
  std::vector<Method> pictureMethods;
  std::vector<Class> classes;
  std::vector<Registration> journal;
};
const Members& members();

// ---- Exceptions ----

struct RaisedException {
  std::string className, message;
};
// The exception that the plug-in raised since the last call.
std::optional<RaisedException> takeException();

// ---- Faults ----

// A failure that is planned for an entry point.
enum class Fault {
  none,
  null,    // answers null, false or 0
  unwind,  // throws Unwound through the plug-in
};
struct Unwound {};

// The names that this host can resolve, in a fixed order.
std::vector<std::string> entryPointNames();
// The declarations of the host-language methods that it gives through "REALLoadGlobalMethod" and
// "REALLoadObjectMethod", in a fixed order. They may be removed, counted and made to fail like entry points.
std::vector<std::string> hostMethodNames();
// In the functions below a name is an entry point or a host method; one that the host does not have is
// refused with std::invalid_argument.
// From now on the resolver (for a method: the entry point that gives it) answers null for this name (what the
// plug-in has resolved before stays resolved).
void removeEntryPoint(const std::string& name);
// The nth use (1 for the first) of an entry point from now on meets the fault; later ones work again.
void failAt(const std::string& name, int nth, Fault fault = Fault::null);
// The nth use of any entry point, whatever its name, meets the fault.
void failAnyAt(int nth, Fault fault = Fault::null);
// Uses of an entry point (of all, for an empty name) since `start` or `clearFaults`.
int uses(const std::string& name = {});
// The same of all that were used.
std::map<std::string, int> usesByName();
// How often the resolver was asked for a name (for an empty one: for anything) since `start`.
int resolverCalls(const std::string& name = {});
// Restores removed names, and clears faults and counters.
void clearFaults();

// ---- Requests of the plug-in that have nothing to do with pictures ----

struct ProgramLog {
  std::vector<std::string> messages;         // "RuntimeMsgBox"
  std::vector<std::string> drawnTexts;       // "RuntimeGraphicsDrawString"
  int yields = 0;                            // "REALYieldToRB"
  std::map<int32_t, void*> backgroundTasks;  // functions of the registered tasks, by id
};
const ProgramLog& programLog();

// ---- Held objects ----

struct Ledger {
  int objects = 0;  // live host objects of every kind, pictures included
  int strings = 0;
  int descriptionLocks = 0;  // picture descriptions locked and not unlocked
  int stringData = 0;        // string data given out and not disposed
  int errors = 0;            // releases of what was not held, unlocks without a lock, handles that are dead
  bool operator==(const Ledger& o) const {
    return objects == o.objects && strings == o.strings && descriptionLocks == o.descriptionLocks &&
           stringData == o.stringData && errors == o.errors;
  }
};
Ledger held();
// One line for each thing that is held or went wrong, for messages.
std::string describeHeld();

}  // namespace host
