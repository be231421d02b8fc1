#include "tests/calls.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char *kLut = "PictureLut3DZVR", *kTable = "table";

const std::vector<host::Method>& methodsOf(const std::string& owner) {
  if (owner.empty()) return host::members().globals;
  if (owner == "Picture") return host::members().pictureMethods;
  for (const host::Class& type : host::members().classes) {
    if (type.name == owner) return type.methods;
  }
  throw std::runtime_error("no class " + owner);
}

host::Parameter parameter(const std::string& name, const std::string& type) {
  return host::parseDeclaration("Sub(" + name + " as " + type + ")").parameters.at(0);
}

// Its properties, which may be left out, and the table that one of the classes has.
std::vector<host::Parameter> parametersOf(const host::Class& type) {
  std::vector<host::Parameter> all;
  for (const host::Property& property : type.properties)
    all.push_back(parameter(property.name, property.type));
  if (type.name == kLut) all.push_back(parameter(kTable, "MemoryBlock"));
  for (host::Parameter& one : all) {
    one.hasDefault = true;
    one.defaultText = mayBeNil(one.type) ? "nil" : "0";
  }
  return all;
}

// ---- Arguments ----

// Whole numbers that have a meaning of their own; others are places in a picture, and a little beyond.
int64_t makeNumber(const std::string& name, Random& random, int side) {
  const auto places = [&] { return random.between(-9, side + 9); };
  if (name == "Bits") return random.among({7, 8, 8, 15, 16, 16, 7, 15, 9});
  if (name == "Smooth") return random.among({INT32_MIN, -2, -1, 0, 1, 1, 1, 2, 3, 20, INT32_MAX});
  if (name == "outlinewidth") return random.among({-1, 0, 0, 1, 1, 1, 2, 3, 8});
  if (name == "SampleCount") return random.chance(60) ? 0 : random.between(1, 400);
  if (name == "Width" || name == "Height")
    return random.chance(5) ? random.between(-1, 0) : random.between(1, side);
  if (name.substr(0, 3) == "Min" || name.substr(0, 3) == "Max") {
    if (random.chance(75)) return 0;
  }
  if (name == "Amount" || name.substr(0, 5) == "Sepia") {
    // The processor's ways of dividing change where factors (amount + 255) get large or negative.
    constexpr int32_t kEdges[] = {
        0,       -255,    -256,      255,       0x7EFF,          0x7F00,          0x7F01,        -0x80FE,
        -0x80FF, -0x8100, INT32_MIN, INT32_MAX, INT32_MAX - 255, INT32_MAX - 254, 8421504 - 255, 200000,
        -200000, 8421505, -8421505,  0x8000};
    return random.chance(33)   ? random.among(kEdges)
           : random.chance(50) ? random.between(-600, 600)
                               : static_cast<int32_t>(random.word());
  }
  constexpr int32_t kFar[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, 0, 1, -1};
  return random.chance(10) ? random.among(kFar) : places();
}

double makeReal(Random& random) {
  constexpr double kOdd[] = {NAN,  INFINITY, -INFINITY, 1e300, -1e300, 2147483647.5, -2147483648.5, 32,
                             -0.0, 1e-300,   -255,      255,   -1,     4294967296.0, 1e10,          -32};
  return random.chance(75) ? random.between(-300, 300) * random.among({1.0, 0.01, 1 / 3.0})
                           : random.among(kOdd);
}

// A colour that is there, or one next to it, or a base of tints; each with any top byte.
host::Color makeColor(Random& random, const Pixels* first) {
  // Thirds and fifths give whole values, which rounding decides.
  const Rgb bases[] = {0x555555, 0xFFFFFF, 0xAA5533, 0x336699, 0x000000, 0xFF0000};
  Rgb color = random.chance(40) ? random.among(bases) : random.color();
  if (first && random.chance(60)) color = first->color(0, 0);
  if (random.chance(20)) color ^= 1u << random.between(0, 23);
  return {(color & 0xFFFFFF) | random.word() << 24};
}

// Entries of three kinds: numbers in `parts` of one within, just beyond or far beyond the range of colours;
// numbers that are hard to calculate with among others; and sums at and just below whole results. Entries
// that may not be read are no numbers.
Bytes makeTable(Random& random) {
  constexpr double kHard[] = {NAN, INFINITY, -INFINITY, 1e308, -1e308, 5e-324, 255.5, 256, -1e-9, -4e9};
  const bool isWhole = random.chance(30), isStepped = !isWhole && random.chance(20);
  const int parts = isWhole ? 1 : random.among({1, 64}), low = isWhole ? 0 : random.among({-1, 0, -100}),
            high = isWhole ? 255 : random.among({255, 256, 266, 600});
  const int hard = isWhole ? 0 : random.among({0, 0, 0, 5, 50});
  const int first = random.between(1, 241);
  std::vector<double> table(kTableEntries * 3, NAN);
  for (int i = 0; i < 16 * 16 * 16; ++i) {
    const double whole = first + i % 16;
    const double below[] = {whole, std::nextafter(whole, 0), std::nextafter(std::nextafter(whole, 0), 0)};
    for (size_t x = 0; x < 3; ++x) {
      double& entry = table[tableIndex(i >> 8, i >> 4 & 15, i & 15) + x];
      entry = random.between(parts * low, parts * high) / static_cast<double>(parts);
      if (random.chance(hard)) entry = random.among(kHard);
      if (isStepped) entry = below[x];
    }
  }
  const auto* bytes = reinterpret_cast<const uint8_t*>(table.data());
  return {bytes, bytes + table.size() * sizeof(double)};
}

Bytes makeBytes(const host::Parameter& parameter, Random& random) {
  if (parameter.name == kTable) return makeTable(random);
  if (parameter.name == "Samples") return random.bytes(random.between(0, random.chance(50) ? 40 : 5000));
  return random.bytes(random.chance(60) ? parameter.byRef ? 1024 : 256
                                        : random.between(0, random.chance(50) ? 9 : 1100));
}

Pixels cut(const Pixels& picture, int left, int top, int width, int height) {
  Pixels part(width, height, Rgb{0});
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) part.at(x, y) = picture.at(left + x, top + y);
  }
  return part;
}

Pixels makePicture(const host::Parameter& parameter, Random& random, const Pixels* first, int longestSide) {
  const auto side = [&] { return std::min(random.side(), longestSide); };
  Pixels picture;
  if (!first) {
    picture = random.words(side(), std::min(side(), 40));
    // Large enough to be worked on in another way.
    if (parameter.name == "SourcePicture" && longestSide > 201 && random.chance(50))
      picture = random.words(201, 131);
  } else if (parameter.name == "pic" && random.chance(80)) {
    const int width = random.between(1, random.chance(50) ? first->width : std::min(first->width, 20));
    const int height = random.between(1, first->height);
    picture = cut(*first, random.between(0, first->width - width), random.between(0, first->height - height),
                  width, height);
    if (random.chance(20)) picture.at(width - 1, height - 1) ^= 1u << random.between(0, 23);
  } else {
    const int more = random.chance(80) ? 0 : random.between(-1, 2);
    picture = random.words(std::max(first->width + more, 1),
                           std::max(first->height + (random.chance(90) ? more : 1), 1));
  }
  picture.alpha = random.chance(40);
  return picture;
}

std::string makeString(Random& random) {
  std::string bytes = encoded(random.pixels(random.between(1, 9), random.between(1, 9)));
  const auto at = [&] { return static_cast<size_t>(random.between(0, static_cast<int>(bytes.size()) - 1)); };
  const auto putLength = [&] {
    for (size_t i = 0; i < 4; ++i) bytes[4 + i] = static_cast<char>(bytes.size() >> (24 - 8 * i));
  };
  if (random.chance(30)) bytes.resize(at());
  if (random.chance(30)) bytes += "more";
  if (bytes.size() >= 8 && random.chance(80)) putLength();
  if (!bytes.empty() && random.chance(40)) {
    char& flipped = bytes[random.chance(70) ? at() % 24 : at()];
    flipped = static_cast<char>(flipped ^ 1 << random.between(0, 7));
  }
  return bytes;
}

Value makeValue(const host::Parameter& parameter, Random& random, const Pixels* first, int longestSide) {
  using host::Type;
  if (mayBeNil(parameter.type) && random.chance(parameter.byRef ? 40 : 4)) return {};
  switch (parameter.type) {
    case Type::uint32:
      return int64_t{random.chance(80) ? static_cast<uint32_t>(random.between(0, 19)) : random.word()};
    case Type::integer:
      return makeNumber(parameter.name, random, first ? first->width : longestSide);
    case Type::real:
      return makeReal(random);
    case Type::boolean:
      return random.chance(50);
    case Type::color:
      return makeColor(random, first);
    case Type::string:
      return makeString(random);
    case Type::memoryBlock:
      return makeBytes(parameter, random);
    case Type::picture:
      return makePicture(parameter, random, first, longestSide);
    case Type::object:
    case Type::none:
      break;
  }
  throw std::runtime_error("no argument for " + parameter.name);
}

// ---- Differences ----

std::string writtenBeside(const Value& value, const Value& other) {
  const auto *picture = std::get_if<Pixels>(&value), *second = std::get_if<Pixels>(&other);
  if (!picture || !second || picture->width != second->width || picture->height != second->height ||
      picture->colors == second->colors)
    return written(value);
  const auto place = std::mismatch(picture->colors.begin(), picture->colors.end(), second->colors.begin());
  const auto at = static_cast<int>(place.first - picture->colors.begin());
  const int x = at % picture->width, y = at / picture->width;
  return written(Pixels(1, 1, *place.first)) + " at " + std::to_string(x) + " " + std::to_string(y);
}

}  // namespace

const host::Method& Member::method() const {
  for (const host::Method& method : methodsOf(owner)) {
    if (method.text == text) return method;
  }
  throw std::runtime_error("no method " + text);
}

std::vector<Member> everyMember() {
  std::vector<Member> members;
  const auto addMethods = [&](const std::string& owner) {
    for (const host::Method& method : methodsOf(owner)) {
      members.push_back({owner, method.text});
      if (method.setter) members.push_back({owner, method.text, true});
    }
  };
  addMethods("");
  addMethods("Picture");
  for (const host::Class& type : host::members().classes) addMethods(type.name);
  return members;
}

std::string Call::describe() const {
  std::string all = member.owner + "." + member.name() + (member.assigns ? " =" : "");
  for (const Value& argument : arguments) all += " " + written(argument);
  return all;
}

std::vector<host::Parameter> parametersOf(const Member& member) {
  std::vector<host::Parameter> all;
  if (member.owner == "Picture") all = {parameter("receiver", "Picture")};
  for (const host::Class& type : host::members().classes) {
    if (type.name == member.owner) all = parametersOf(type);
  }
  const host::Declaration& declaration = member.method().declaration;
  all.insert(all.end(), declaration.parameters.begin(), declaration.parameters.end());
  if (member.assigns) all.push_back(parameter("value", host::typeName(declaration.result)));
  return all;
}

std::vector<std::string> splitWords(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word && word != "#";) words.push_back(word);
  return words;
}

Call parsedCall(std::vector<std::string> words) {
  const auto equals = std::find(words.begin(), words.end(), "=");
  const bool assigns = equals != words.end();
  if (assigns) words.erase(equals);
  for (const Member& member : everyMember()) {
    if (member.definition() != words[0] || member.assigns != assigns) continue;
    const std::vector<host::Parameter> parameters = parametersOf(member);
    Call call{member, {}};
    for (size_t i = 0; i < parameters.size(); ++i) {
      if (i + 1 >= words.size() && !parameters[i].hasDefault) break;
      call.arguments.push_back(
          parsed(parameters[i], i + 1 < words.size() ? words[i + 1] : parameters[i].defaultText));
    }
    if (call.arguments.size() == parameters.size() && words.size() <= parameters.size() + 1) return call;
  }
  throw std::invalid_argument("no method " + words[0] + " takes so many words");
}

Call makeCall(const Member& member, Random& random, int longestSide) {
  Call call{member, {}};
  std::shared_ptr<Pixels> first;
  for (const host::Parameter& parameter : parametersOf(member)) {
    call.arguments.push_back(makeValue(parameter, random, first.get(), longestSide));
    auto* picture = std::get_if<Pixels>(&call.arguments.back());
    if (!picture || first) continue;
    first = std::make_shared<Pixels>(*picture);
    if (!member.owner.empty() && random.chance(50))
      picture->mask = std::make_shared<Pixels>(random.words(picture->width, picture->height));
  }
  // A second run of the sepia class loses the old destination, on purpose.
  if (member.owner == "PictureSepiaZVR") call.arguments[1] = {};
  return call;
}

std::string difference(const Outcome& wanted, const Outcome& got) {
  std::string text;
  const auto compare = [&](const std::string& part, const Value& a, const Value& b) {
    if (!areSame(a, b))
      text += part + " wanted: " + writtenBeside(a, b) + "\ngot: " + writtenBeside(b, a) + "\n";
  };
  compare("exception", wanted.raised, got.raised);
  compare("result", wanted.result, got.result);
  for (size_t i = 0; i < wanted.arguments.size(); ++i)
    compare("argument " + std::to_string(i), wanted.arguments[i], got.arguments[i]);
  return text;
}

bool isNull(const Call& call, const Outcome& outcome) {
  const auto isNullValue = [](const Value& value) {
    return isNil(value) || value == Value(false) || value == Value(0.0) || value == Value(int64_t{0}) ||
           value == Value(int64_t{-1});
  };
  bool isNull = isNullValue(outcome.result);
  const std::vector<host::Parameter> parameters = parametersOf(call.member);
  for (size_t i = 0; i < parameters.size(); ++i) {
    if (parameters[i].byRef && parameters[i].type == host::Type::integer)
      isNull &= isNullValue(outcome.arguments[i]);
  }
  return isNull;
}

// ---- Scenes ----

Scene::Scene(const Call& call) : member_(call.member), parameters_(parametersOf(call.member)) {
  if (parameters_.size() != call.arguments.size()) throw std::runtime_error("no class " + member_.owner);
  for (size_t i = 0; i < parameters_.size(); ++i)
    arguments_.push_back(make(call.arguments[i], parameters_[i].type));
  if (!member_.isOfClass()) return;
  instance_ = host::newInstance(member_.owner);
  for (size_t i = 0; i < arguments_.size() && parameters_[i].hasDefault; ++i) {
    if (parameters_[i].name != kTable) {
      host::setProperty(instance_.get(), parameters_[i].name, arguments_[i]);
    } else if (const auto* table = std::get_if<Bytes>(&call.arguments[i])) {
      // As its setter stores it, which takes longer.
      std::copy(table->begin(), table->end(), host::instanceData(instance_.get()) + kTableOffset);
    }
  }
}

host::Value Scene::make(const Value& value, host::Type type) {
  if (const auto* picture = std::get_if<Pixels>(&value)) return pictureOf(*picture);
  if (const auto* bytes = std::get_if<Bytes>(&value))
    return host::newMemoryBlock(bytes->data(), bytes->size());
  if (const auto* text = std::get_if<std::string>(&value))
    return host::newString(*text, kEncodingNone, false);
  if (type == host::Type::picture) return host::PictureRef();
  if (type == host::Type::memoryBlock) return host::MemoryBlockRef();
  if (type == host::Type::string) return host::StringRef();
  return scalarOf<host::Value>(value);
}

void Scene::run() {
  REALobjectStruct* receiver = instance_.get();
  if (member_.owner == "Picture") receiver = std::get<host::PictureRef>(arguments_[0]).get();
  const host::Method& method = member_.method();
  const auto end = arguments_.end() - member_.assigns;
  const auto declared = end - static_cast<std::ptrdiff_t>(method.declaration.parameters.size());
  host::Outcome outcome = member_.assigns ? host::assign(method, receiver, {declared, end}, arguments_.back())
                                          : host::call(method, receiver, {declared, end});
  result_ = std::move(outcome.result);
  if (outcome.exception) raised_ = outcome.exception->className + ": " + outcome.exception->message;
  std::copy(outcome.arguments.begin(), outcome.arguments.end(), declared);
}

Outcome Scene::outcome() const {
  Outcome outcome{{}, plainValue(result_), raised_};
  for (size_t i = 0; i < arguments_.size(); ++i) {
    const bool isProperty = parameters_[i].hasDefault && instance_ && parameters_[i].name != kTable;
    outcome.arguments.push_back(
        plainValue(isProperty ? host::getProperty(instance_.get(), parameters_[i].name) : arguments_[i]));
  }
  return outcome;
}

void Scene::reportNoSizes() {
  for (const host::Value& argument : arguments_) {
    if (const auto* block = std::get_if<host::MemoryBlockRef>(&argument)) {
      if (*block) host::setReportedSize(block->get(), 0);
    }
  }
}

std::vector<host::PictureRef> Scene::pictures() const {
  std::vector<host::PictureRef> all;
  for (const host::Value& argument : arguments_) {
    const auto* picture = std::get_if<host::PictureRef>(&argument);
    if (!picture || !*picture) continue;
    all.push_back(*picture);
    if (REALpictureStruct* mask = host::pictureMask(picture->get())) {
      host::retain(mask);
      all.push_back(host::PictureRef::adopt(mask));
    }
  }
  return all;
}
