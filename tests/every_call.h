// Every member that the plug-in registered, called with arguments made from its declaration.
#pragma once

#include "tests/support.h"

// A call of one member. Members are found by their text, so a call outlives the host that it was gathered in.
struct Call {
  enum class Kind { call, assign, getProperty, setProperty };

  std::string owner;  // empty for a global method, "Picture", or a class of the plug-in
  std::string text;   // the declaration, or a property's name
  Kind kind = Kind::call;
  // How the arguments differ from the usual.
  bool alpha = false;          // pictures have an alpha channel
  int nilArgument = kNothing;  // kReceiver, or an argument by its number
  bool spare = false;          // byref blocks are given; outlines are thin; nothing wraps round
  static constexpr int kNothing = -2, kReceiver = -1;

  std::string name() const;  // of the member
  std::string describe() const;
};

// All members, each with usual arguments, with alpha, with each nil object in turn, and with spare ones. Asks
// the host for what is registered.
std::vector<Call> everyCall();

// The arguments and the outcome of one call, all held until the scene dies.
class Scene {
 public:
  // Makes host objects. The plug-in that registered the member must be loaded.
  explicit Scene(const Call& call);
  // Host exceptions of our own (Unwound) pass through.
  void run();

  // The picture arguments: receiver or source first, masks among them.
  std::vector<host::PictureRef> pictures;
  // Contents of every object among the arguments, one text each.
  std::vector<std::string> inputs() const;
  // The result, byref arguments included.
  std::string answer() const;
  bool answersNull() const;
  bool raised() const { return outcome_.exception.has_value(); }

 private:
  host::Value make(const host::Parameter& parameter, int number);
  host::PictureRef newPicture(uint32_t seed);

  const Call& call_;
  const host::Method* method_ = nullptr;
  host::ObjectRef instance_;
  std::vector<host::MemoryBlockRef> blocks_;
  std::vector<host::Value> arguments_;
  host::Value assigned_;
  host::Outcome outcome_;
};
