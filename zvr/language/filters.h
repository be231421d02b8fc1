// Instances of the plug-in's filter classes: a picture in, a picture out.
#pragma once

#include <string>
#include <vector>

#include "host/calls.h"
#include "zvr/language/outputs.h"

namespace zvr {

class Filter {
 public:
  // A new instance of a class, named in any case. Throws UsageError for a class that is not registered or
  // filters no pictures.
  explicit Filter(const std::string& className);

  const std::string& name() const { return type_->name; }
  // Throws UsageError for a property that the class lacks and for a word that does not fit it. Pictures are
  // given as file names or nil.
  void set(const std::string& property, const std::string& word);
  // The files that were given.
  const std::vector<std::string>& files() const { return files_; }
  // A method by name; throws UsageError when the class lacks it.
  const host::Method& method(const std::string& methodName) const;
  // Calls a method, or what assigns to it. Throws Failure for an exception that was raised.
  host::Value call(const host::Method& method, std::vector<host::Value> arguments = {});
  void assign(const host::Method& method, std::vector<host::Value> arguments, host::Value value);
  // Makes the picture the source, runs and answers the destination. Throws Failure when there is none, and
  // for a class with a table to which nothing was assigned.
  host::PictureRef run(const host::PictureRef& source);

 private:
  const host::Property* findProperty(const std::string& property) const;
  host::Value answer(const host::Method& method, const host::Outcome& outcome) const;

  const host::Class* type_ = nullptr;
  host::ObjectRef instance_;
  std::vector<std::string> files_;
  bool isFilled_ = false;
};

// Runs it on a picture file and writes the result with what the file adds to it. Throws Failure.
void runOnFile(Filter& filter, const std::string& input, const std::string& output,
               const PictureOptions& options);

}  // namespace zvr
