#include "tests/every_call.h"

#include <map>

namespace {

constexpr int kWidth = 7, kHeight = 5;
constexpr size_t kBlockBytes = 1024;

const host::Class* findClass(const std::string& name) {
  for (const host::Class& type : host::members().classes) {
    if (type.name == name) return &type;
  }
  return nullptr;
}

const std::vector<host::Method>& methodsOf(const std::string& owner) {
  if (owner.empty()) return host::members().globals;
  if (owner == "Picture") return host::members().pictureMethods;
  const host::Class* type = findClass(owner);
  if (!type) throw std::runtime_error("no class " + owner);
  return type->methods;
}

const host::Method& findMethod(const Call& call) {
  for (const host::Method& method : methodsOf(call.owner)) {
    if (method.text == call.text) return method;
  }
  throw std::runtime_error("no method " + call.text);
}

bool isObject(host::Type type) {
  return type == host::Type::picture || type == host::Type::memoryBlock || type == host::Type::string;
}

// Whole numbers that make a method work; 2 for others.
int64_t usualNumber(const host::Parameter& parameter, bool spare) {
  static const std::map<std::string, int64_t> numbers = {
      {"left", 1},  {"top", 1},    {"width", 5}, {"height", 4},  {"SampleCount", 12},
      {"Width", 6}, {"Height", 4}, {"Bits", 8},  {"Amount", 60}, {"threshold", 10}};
  if (spare && parameter.name == "outlinewidth") return 1;
  const auto found = numbers.find(parameter.name);
  return found == numbers.end() ? 2 : found->second;
}

// A picture of 2 x 2 pixels as BinaryStringtoPictureZVR reads it.
host::StringRef binaryString() {
  std::string bytes = "PPIC";
  for (const int word : {52, 2, 2, 32, 40, 0, 0, 0, 0}) bytes += {'\0', '\0', '\0', static_cast<char>(word)};
  return host::newString(bytes + "abcdefghijkl", kEncodingNone);
}

std::string show(const host::PictureRef& picture) {
  std::string text = "picture " + std::to_string(host::pictureWidth(picture.get()));
  for (const uint32_t color : colorsOf(picture).colors) text += ' ' + std::to_string(color);
  return text;
}

std::string show(const host::MemoryBlockRef& block) {
  const auto* bytes = reinterpret_cast<const char*>(host::memoryBlockBytes(block.get()));
  return "block " + std::string(bytes, host::memoryBlockSize(block.get()));
}

std::string show(const host::Value& value) {
  if (const auto* picture = std::get_if<host::PictureRef>(&value)) return *picture ? show(*picture) : "nil";
  if (const auto* block = std::get_if<host::MemoryBlockRef>(&value)) return *block ? show(*block) : "nil";
  if (const auto* string = std::get_if<host::StringRef>(&value))
    return *string ? host::stringBytes(string->get()) : "nil";
  if (const auto* number = std::get_if<int64_t>(&value)) return std::to_string(*number);
  if (const auto* number = std::get_if<double>(&value)) return std::to_string(*number);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
  return "nothing";
}

// Nil, false, 0 and the count of -1.
bool isNull(const host::Value& value) {
  const std::string text = show(value);
  return text == "nil" || text == "false" || text == "nothing" || text == "-1" || text == "0" ||
         text == std::to_string(0.0);
}

}  // namespace

std::string Call::name() const { return text.substr(0, text.find_first_of("( ")); }

std::string Call::describe() const {
  static constexpr const char* kinds[] = {"", " =", " getter", " setter"};
  std::string all = owner + "." + text + kinds[static_cast<int>(kind)];
  if (alpha) all += ", alpha";
  if (spare) all += ", spare";
  if (nilArgument != kNothing) all += ", nil " + std::to_string(nilArgument);
  return all;
}

std::vector<Call> everyCall() {
  std::vector<Call> calls;
  const auto addTwisted = [&](Call call, const std::vector<host::Parameter>& parameters) {
    calls.push_back(call);
    call.alpha = true;
    if (road() != host::Road::gdk) calls.push_back(call);
    call.alpha = false;
    call.spare = true;
    calls.push_back(call);
    call.spare = false;
    if (call.owner == "Picture") {
      call.nilArgument = Call::kReceiver;
      calls.push_back(call);
    }
    for (size_t i = 0; i < parameters.size(); ++i) {
      call.nilArgument = static_cast<int>(i);
      if (isObject(parameters[i].type) && !parameters[i].byRef) calls.push_back(call);
    }
  };
  const auto addMethods = [&](const std::string& owner) {
    for (const host::Method& method : methodsOf(owner)) {
      addTwisted({owner, method.text}, method.declaration.parameters);
      if (method.setter) addTwisted({owner, method.text, Call::Kind::assign}, {});
    }
  };
  addMethods("");
  addMethods("Picture");
  for (const host::Class& type : host::members().classes) {
    addMethods(type.name);
    for (const host::Property& property : type.properties) {
      if (property.getter == kStoredProperty) continue;
      calls.push_back({type.name, property.name, Call::Kind::getProperty});
      calls.push_back({type.name, property.name, Call::Kind::setProperty});
    }
  }
  return calls;
}

Scene::Scene(const Call& call) : call_(call) {
  const bool ofClass = !call.owner.empty() && call.owner != "Picture";
  if (ofClass || call.owner == "Picture") {
    const host::PictureRef source = newPicture(1), mask = newPicture(2);
    host::setPictureMask(source.get(), mask.get());
  }
  if (ofClass) {
    instance_ = host::newInstance(call.owner);
    host::setProperty(instance_.get(), "SourcePicture", pictures[0]);
    // A second run of the sepia class loses the old destination, on purpose.
    if (call.owner != "PictureSepiaZVR")
      host::setProperty(instance_.get(), "DestinationPicture", pictures[1]);
  }
  if (call.kind == Call::Kind::getProperty || call.kind == Call::Kind::setProperty) return;
  method_ = &findMethod(call);
  int number = 0;
  for (const host::Parameter& parameter : method_->declaration.parameters)
    arguments_.push_back(make(parameter, number++));
  if (call.kind == Call::Kind::assign) {
    host::Parameter value;
    value.type = method_->declaration.result;
    assigned_ = make(value, number);
  }
}

host::PictureRef Scene::newPicture(uint32_t seed) {
  pictures.push_back(makePicture(Random(seed).pixels(kWidth, kHeight), call_.alpha));
  return pictures.back();
}

host::Value Scene::make(const host::Parameter& parameter, int number) {
  const auto seed = static_cast<uint32_t>(number) + 3;
  if (number == call_.nilArgument || (parameter.byRef && !call_.spare)) return {};
  switch (parameter.type) {
    case host::Type::integer:
      return usualNumber(parameter, call_.spare);
    case host::Type::uint32:
      return int64_t{1};
    case host::Type::real:
      return 0.5;
    case host::Type::boolean:
      return parameter.name != "wrap" || !call_.spare;
    case host::Type::color:
      return host::Color{seed * 0x123457 & 0xFFFFFF};
    case host::Type::string:
      return binaryString();
    case host::Type::picture:
      return newPicture(parameter.name == "pic" ? 1 : seed);  // a needle that is there
    case host::Type::memoryBlock:
      blocks_.push_back(host::newMemoryBlock(std::string(kBlockBytes, '\x47').data(), kBlockBytes));
      return blocks_.back();
    default:
      throw std::runtime_error("no argument for " + parameter.name);
  }
}

void Scene::run() {
  REALobjectStruct* receiver = instance_.get();
  if (call_.owner == "Picture" && call_.nilArgument != Call::kReceiver) receiver = pictures[0].get();
  switch (call_.kind) {
    case Call::Kind::call:
      outcome_ = host::call(*method_, receiver, arguments_);
      break;
    case Call::Kind::assign:
      outcome_ = host::assign(*method_, receiver, arguments_, assigned_);
      break;
    case Call::Kind::getProperty:
      outcome_.result = host::getProperty(receiver, call_.text);
      break;
    case Call::Kind::setProperty:
      host::setProperty(receiver, call_.text, 0.25);
      break;
  }
}

std::vector<std::string> Scene::inputs() const {
  std::vector<std::string> all;
  for (const host::PictureRef& picture : pictures) all.push_back(show(picture));
  for (const host::MemoryBlockRef& block : blocks_) all.push_back(show(block));
  return all;
}

std::string Scene::answer() const {
  std::string text = show(outcome_.result);
  for (size_t i = 0; i < outcome_.arguments.size(); ++i) {
    if (method_ && method_->declaration.parameters[i].byRef) text += "; " + show(outcome_.arguments[i]);
  }
  return text;
}

// Blocks that were made for the caller are kept whatever follows.
bool Scene::answersNull() const {
  bool allNull = isNull(outcome_.result);
  for (size_t i = 0; i < outcome_.arguments.size(); ++i) {
    const host::Parameter& parameter = method_->declaration.parameters[i];
    if (parameter.byRef && parameter.type == host::Type::integer) allNull &= isNull(outcome_.arguments[i]);
  }
  return allNull;
}
