#include "zvr/language/filters.h"

#include <new>
#include <stdexcept>

#include "zvr/files/files.h"
#include "zvr/language/causes.h"
#include "zvr/language/original.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

constexpr const char *kSource = "SourcePicture", *kDestination = "DestinationPicture", *kRun = "Run";

template <typename Range, typename NameOf>
std::string listed(const Range& range, NameOf nameOf) {
  std::string text;
  for (const auto& one : range) text += (text.empty() ? "" : ", ") + nameOf(one);
  return text;
}

const host::Class& findClass(const std::string& name) {
  const std::vector<host::Class>& classes = host::members().classes;
  for (const host::Class& type : classes) {
    if (host::equalNames(type.name, name)) return type;
  }
  throw UsageError("no class '" + name + "'; there are " +
                   listed(classes, [](const host::Class& type) { return type.name; }));
}

}  // namespace

Filter::Filter(const std::string& className) : type_(&findClass(className)) {
  method(kRun);
  for (const char* needed : {kSource, kDestination}) {
    if (!findProperty(needed)) throw UsageError(name() + " has no property " + needed);
  }
  instance_ = host::newInstance(name());
  if (!instance_) throw std::bad_alloc();
}

const host::Property* Filter::findProperty(const std::string& property) const {
  for (const host::Property& candidate : type_->properties) {
    if (host::equalNames(candidate.name, property)) return &candidate;
  }
  return nullptr;
}

void Filter::set(const std::string& property, const std::string& word) {
  const host::Property* found = findProperty(property);
  if (!found) {
    throw UsageError(name() + " has no property '" + property + "'; it has " +
                     listed(type_->properties, [](const host::Property& p) { return p.name; }));
  }
  host::Parameter parameter;
  parameter.name = found->name;
  parameter.type = host::parseDeclaration(found->name + " as " + found->type).result;
  if (parameter.type == host::Type::picture && !host::equalNames(word, "nil")) {
    files_.push_back(word);
    return host::setProperty(instance_.get(), found->name, toPicture(loadImage(word)));
  }
  try {
    host::setProperty(instance_.get(), found->name, host::parseValue(parameter, word));
  } catch (const std::invalid_argument& error) {
    throw UsageError(name() + ": " + error.what());
  }
}

const host::Method& Filter::method(const std::string& methodName) const {
  for (const host::Method& candidate : type_->methods) {
    if (host::equalNames(candidate.declaration.name, methodName)) return candidate;
  }
  throw UsageError(name() + " has no method " + methodName);
}

host::Value Filter::answer(const host::Method& method, const host::Outcome& outcome) const {
  if (!outcome.exception) return outcome.result;
  throw Failure(name() + "." + method.declaration.name + ": " + outcome.exception->className + ": " +
                outcome.exception->message);
}

host::Value Filter::call(const host::Method& method, std::vector<host::Value> arguments) {
  return answer(method, host::call(method, instance_.get(), std::move(arguments)));
}

void Filter::assign(const host::Method& method, std::vector<host::Value> arguments, host::Value value) {
  isFilled_ = true;
  answer(method, host::assign(method, instance_.get(), std::move(arguments), std::move(value)));
}

host::PictureRef Filter::run(const host::PictureRef& source) {
  for (const host::Method& table : type_->methods) {
    if (table.setter && !isFilled_)
      throw Failure(name() + "." + table.declaration.name +
                    " is empty; `zvr lut` fills it from a .cube file");
  }
  host::setProperty(instance_.get(), kSource, source);
  const host::Value done = call(method(kRun));
  if (const bool* answered = std::get_if<bool>(&done); answered && !*answered) {
    throw Failure(name() + "." + kRun + " answered false for SourcePicture = " + valueText(source) + "." +
                  manualOnFailure(name()));
  }
  const host::Value result = host::getProperty(instance_.get(), kDestination);
  const auto* picture = std::get_if<host::PictureRef>(&result);
  if (!picture || !*picture) throw Failure(name() + "." + kDestination + " is nil");
  return *picture;
}

void runOnFile(Filter& filter, const std::string& input, const std::string& output,
               const PictureOptions& options) {
  Original original(input, readFile(input), options);
  const host::PictureRef result = filter.run(original.takePicture());
  filter.set(kSource, "nil");  // a large picture's room is needed
  saveImage(original.finished(fromPicture(result.get())), output, options.writing);
}

}  // namespace zvr
