// Calls of every member that the plug-in registered, as plain data, and their outcome in the host that is
// played.
#pragma once

#include "host/calls.h"
#include "tests/pictures.h"

// A method, or what assigns to it. Found by its text, so it outlives the host in which it was registered.
struct Member {
  std::string owner;  // empty for a global method, "Picture", or a class of the plug-in
  std::string text;   // the declaration
  bool assigns = false;

  std::string name() const { return text.substr(0, text.find_first_of("( ")); }
  bool isOfClass() const { return !owner.empty() && owner != "Picture"; }
  // The name of its definition (tests/models.h): a class by itself stands for its Run.
  std::string definition() const { return isOfClass() ? name() == "Run" ? owner : "" : name(); }
  bool operator==(const Member& o) const {
    return owner == o.owner && text == o.text && assigns == o.assigns;
  }
  // The method that is registered in the present host; throws when there is none.
  const host::Method& method() const;
};

// All that are registered in the present host.
std::vector<Member> everyMember();

struct Call {
  Member member;
  // One for each of parametersOf(member).
  std::vector<Value> arguments;

  std::string name() const { return member.name(); }
  std::string describe() const;
};

// The table of a PictureLut3DZVR, an argument of its members like the properties: where it lies in the
// instance's data, its entries of three numbers each, and where one begins.
constexpr size_t kTableOffset = 24, kTableSide = 18, kTableEntries = kTableSide * kTableSide * kTableSide;
inline size_t tableIndex(int r, int g, int b) {
  return ((static_cast<size_t>(r) * kTableSide + static_cast<size_t>(g)) * kTableSide +
          static_cast<size_t>(b)) *
         3;
}

// All that a call takes: first the receiver of a Picture method, or the properties of a class; at last the
// value that is assigned.
std::vector<host::Parameter> parametersOf(const Member& member);

// The words of a case line (tests/cases/README.md) without its comment.
std::vector<std::string> splitWords(const std::string& line);
// A method's name and its arguments; of overloads the one that takes so many. Arguments that are left
// out have their defaults.
Call parsedCall(std::vector<std::string> words);
// Arguments by their declared types: often ordinary, sometimes adversarial. Pictures are at most that large.
Call makeCall(const Member& member, Random& random, int longestSide);

// All that a call leaves behind.
struct Outcome {
  std::vector<Value> arguments;  // those of the call, as they are afterwards
  Value result;
  std::string raised;  // class and message of an exception
};
// The parts in which they differ, a line each; of pictures that have one size only the first pixel. Empty for
// none.
std::string difference(const Outcome& wanted, const Outcome& got);
// Nil, false, 0, and the count of -1.
bool isNull(const Call& call, const Outcome& outcome);

// The host objects of one call, held until the scene dies.
class Scene {
 public:
  // The plug-in that registered the member must be loaded; throws when its class isn't registered.
  explicit Scene(const Call& call);
  // Host exceptions of our own (Unwound) pass through.
  void run();
  // Before `run` only the arguments.
  Outcome outcome() const;

  // From now on all blocks report a size of 0.
  void reportNoSizes();
  // All pictures among the arguments, masks behind their pictures.
  std::vector<host::PictureRef> pictures() const;

 private:
  host::Value make(const Value& value, host::Type type);

  const Member member_;
  std::vector<host::Parameter> parameters_;
  std::vector<host::Value> arguments_;
  host::ObjectRef instance_;
  host::Value result_;
  std::string raised_;
};
