#include "zvr/language/walk.h"

#include <algorithm>

#include "zvr/language/causes.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {

Walk::Walk(const std::string& input, std::string label, const PictureOptions& options, bool asOnHost)
    : input_(input),
      label_(std::move(label)),
      data_(readBytes(input)),
      options_(options),
      asOnHost_(asOnHost) {}

std::map<size_t, Bytes> Walk::take(const Step& step, const std::vector<size_t>& kept) {
  const host::Method& method = *step.method;
  const host::Declaration& declaration = method.declaration;
  const host::PictureRef receiver = host::takesReceiver(method) ? currentPicture() : host::PictureRef();
  std::vector<host::Value> arguments;
  for (size_t i = 0; i < step.arguments.size(); ++i) {
    arguments.push_back(valueOf(step.arguments[i], declaration.parameters[i].type));
  }
  host::Outcome outcome = step.assigned ? host::assign(method, receiver.get(), std::move(arguments),
                                                       valueOf(*step.assigned, declaration.result))
                                        : host::call(method, receiver.get(), std::move(arguments));
  if (outcome.exception) {
    throw Failure(declaration.name + ": " + outcome.exception->className + ": " + outcome.exception->message);
  }
  if (!step.assigned) become(declaration, receiver, outcome);
  return report(declaration, outcome.arguments, kept);
}

std::map<size_t, Bytes> Walk::report(const host::Declaration& declaration,
                                     const std::vector<host::Value>& arguments,
                                     const std::vector<size_t>& kept) const {
  std::map<size_t, Bytes> blocks;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const host::Parameter& parameter = declaration.parameters[i];
    if (!parameter.byRef) continue;
    if (std::find(kept.begin(), kept.end(), i) == kept.end()) {
      print(parameter.name, arguments[i]);
      continue;
    }
    blocks[i] = bytesOf(arguments[i]);
    if (blocks[i].empty()) throw Failure(declaration.name + " left no bytes in " + parameter.name);
  }
  return blocks;
}

bool Walk::hasResult() const {
  return hasAnswered_ || (picture_ && fingerprintOf(picture_.get()) != before_);
}

host::PictureRef Walk::currentPicture() {
  if (!picture_) {
    original_ = Original(input_, data_, options_, asOnHost_);
    picture_ = original_.takePicture();
    before_ = fingerprintOf(picture_.get());
    data_ = {};  // no step takes it as bytes any more
  }
  return picture_;
}

host::Value Walk::valueOf(const Argument& argument, host::Type type) {
  if (std::holds_alternative<Current>(argument)) {
    if (type == host::Type::picture) return currentPicture();
    return valueOfBytes(data_, type);
  }
  if (const auto* file = std::get_if<ArgumentFile>(&argument))
    return valueOfFile(file->path, type, options_, asOnHost_);
  return std::get<host::Value>(argument);
}

// Pictures and strings become @; everything else is printed.
void Walk::become(const host::Declaration& declaration, const host::PictureRef& receiver,
                  const host::Outcome& outcome) {
  const auto* picture = std::get_if<host::PictureRef>(&outcome.result);
  const auto* string = std::get_if<host::StringRef>(&outcome.result);
  if (!picture && !string) {
    if (declaration.result != host::Type::none) print(declaration.name, outcome.result);
    return;
  }
  if (picture ? !*picture : !*string) throw Failure(nilText(declaration, receiver, outcome.arguments));
  hasAnswered_ = true;
  if (picture) {
    picture_ = *picture;
  } else {
    const std::string bytes = host::stringBytes(string->get());
    data_.assign(bytes.begin(), bytes.end());
  }
}

void Walk::print(const std::string& name, const host::Value& value) const {
  terminal::print(terminal::escaped(label_ + name + " = " + valueText(value)));
}

}  // namespace zvr
