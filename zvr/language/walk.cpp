#include "zvr/language/walk.h"

namespace zvr {

host::Outcome Walk::take(const Step& step) {
  const host::PictureRef receiver = step.takesReceiver() ? currentPicture() : host::PictureRef();
  std::vector<host::Value> arguments;
  for (size_t i = 0; i < step.arguments.size(); ++i) {
    arguments.push_back(valueOf(step.arguments[i], step.declaration.parameters[i].type));
  }
  const host::Value assigned =
      step.assigned ? valueOf(*step.assigned, step.declaration.result) : host::Value{};
  const bool mayChange = receiver && !step.makesCurrent();
  const size_t before = mayChange ? fingerprintOf(receiver.get()) : 0;
  host::Outcome outcome = callStep(step, receiver, std::move(arguments), assigned);
  hasResult_ = step.makesCurrent() || (mayChange && fingerprintOf(receiver.get()) != before);
  if (step.makesCurrent()) become(outcome.result);
  return outcome;
}

host::PictureRef Walk::currentPicture() {
  if (!picture_) {
    original_ = Original(path_, data_, options_, asOnHost_);
    picture_ = original_.takePicture();
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

void Walk::become(const host::Value& result) {
  if (const auto* picture = std::get_if<host::PictureRef>(&result)) {
    picture_ = *picture;
  } else {
    const std::string bytes = host::stringBytes(std::get<host::StringRef>(result).get());
    data_.assign(bytes.begin(), bytes.end());
  }
}

}  // namespace zvr
