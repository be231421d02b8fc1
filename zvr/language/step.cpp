#include "zvr/language/step.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <new>

#include "zvr/files/look.h"
#include "zvr/language/arguments.h"
#include "zvr/language/causes.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

using host::Type;

constexpr const char *kSource = "SourcePicture", *kDestination = "DestinationPicture", *kRun = "Run",
                     *kTable = "Table";
constexpr int64_t kTableSide = 16;  // entries along an axis of the table that the class uses
constexpr double kFull = 255;

bool isFixed(const host::Property& property) {
  return host::equalNames(property.name, kSource) || host::equalNames(property.name, kDestination);
}

// Null for a class that lacks it.
const host::Method* findMethod(const host::Class& type, const char* name) {
  for (const host::Method& method : type.methods) {
    if (host::equalNames(method.declaration.name, name)) return &method;
  }
  return nullptr;
}

bool filtersPictures(const host::Class& type) {
  return findMethod(type, kRun) &&
         std::count_if(type.properties.begin(), type.properties.end(), isFixed) == 2;
}

Step classStep(const host::Class& type) {
  Step step;
  step.name = step.declaration.name = type.name;
  step.declaration.result = Type::picture;
  step.type = &type;
  for (const host::Property& property : type.properties) {
    if (isFixed(property)) continue;
    host::Parameter parameter;
    parameter.name = property.name;
    parameter.type = host::parseDeclaration(property.name + " as " + property.type).result;
    parameter.hasDefault = true;
    step.declaration.parameters.push_back(parameter);
  }
  return step;
}

// ---- Looks ----

// Three curves, which TransformColorsZVR applies exactly, in the order red, blue, green.
std::vector<Argument> curvesOf(const Look& look) {
  std::array<Bytes, 3> curves;
  for (int value = 0; value <= kFull; ++value) {
    const double input = value / kFull;
    const Look::Color color = look.map({input, input, input});
    for (size_t x = 0; x < 3; ++x) {
      curves[x].push_back(static_cast<uint8_t>(std::lround(std::clamp(color[x], 0.0, 1.0) * kFull)));
    }
  }
  const auto block = [&](size_t x) { return valueOfBytes(curves[x], Type::memoryBlock); };
  return {block(0), block(2), block(1), host::Value{}};
}

host::ObjectRef newFilter(const host::Class& type) {
  host::ObjectRef filter = host::newInstance(type.name);
  if (!filter) throw std::bad_alloc();
  return filter;
}

host::ObjectRef filledFilter(const host::Class& type, const Look& look) {
  constexpr double kLast = kTableSide - 1;
  constexpr double kHalf = 0.5001;  // the class truncates: with it, results are rounded, and halves always up
  host::ObjectRef filter = newFilter(type);
  const host::Method& table = *findMethod(type, kTable);
  for (int64_t i = 0; i < kTableSide * kTableSide * kTableSide; ++i) {
    const std::array<int64_t, 3> at{i / kTableSide / kTableSide, i / kTableSide % kTableSide, i % kTableSide};
    const auto input = [&](size_t axis) { return static_cast<double>(at[axis]) / kLast; };
    const Look::Color color = look.map({input(0), input(1), input(2)});
    for (int64_t x = 0; x < 3; ++x) {
      host::assign(table, filter.get(), {at[0], at[1], at[2], x},
                   color[static_cast<size_t>(x)] * kFull + kHalf);
    }
  }
  return filter;
}

// ---- Calls ----

host::Outcome checked(const std::string& name, host::Outcome outcome) {
  if (!outcome.exception) return outcome;
  throw Failure(name + ": " + outcome.exception->className + ": " + outcome.exception->message);
}

host::Outcome runFilter(const Step& step, const host::PictureRef& source,
                        std::vector<host::Value> arguments) {
  const host::ObjectRef instance = step.filled ? step.filled : newFilter(*step.type);
  for (size_t i = 0; i < arguments.size(); ++i) {
    host::setProperty(instance.get(), step.declaration.parameters[i].name, arguments[i]);
  }
  host::setProperty(instance.get(), kSource, source);
  const std::string run = step.type->name + "." + kRun;
  const host::Outcome outcome = checked(run, host::call(*findMethod(*step.type, kRun), instance.get(), {}));
  if (const bool* done = std::get_if<bool>(&outcome.result); done && !*done) {
    throw Failure(run + " answered false for SourcePicture = " + valueText(source) + "." +
                  manualOnFailure(step.type->name));
  }
  host::Value result = host::getProperty(instance.get(), kDestination);
  // It would keep both pictures until its next run.
  if (step.filled) host::call(*findMethod(*step.type, "Close"), instance.get(), {});
  return {std::move(result), std::move(arguments), {}};
}

}  // namespace

bool Step::hasTable() const { return type && findMethod(*type, kTable); }

bool Step::isConsoleSafe() const { return method ? method->consoleSafe() : type->consoleSafe(); }

bool Step::concernsTransparency() const {
  const auto isMaskScrolled = [](const host::Parameter& p) { return host::equalNames(p.name, "scrollmask"); };
  return name == "EmbeddedMaskZVR" || name == "HasMaskZVR" ||
         std::any_of(declaration.parameters.begin(), declaration.parameters.end(), isMaskScrolled);
}

bool Step::makesCurrent() const {
  return !assigned && (declaration.result == Type::picture || declaration.result == Type::string);
}

bool isLook(const std::string& word) {
  return host::equalNames(std::filesystem::path(word).extension().string(), ".cube");
}

std::vector<Step> stepsNamed(const std::string& word) {
  std::vector<Step> steps;
  for (const host::Method* method : host::findMethods(word)) {
    steps.emplace_back();
    steps.back().name = method->declaration.name;
    steps.back().declaration = method->declaration;
    steps.back().method = method;
  }
  for (const host::Class& type : host::members().classes) {
    if (host::equalNames(type.name, word) && filtersPictures(type)) steps.push_back(classStep(type));
  }
  return steps;
}

Step lookStep(const std::string& path) {
  const Look look = loadLook(path);
  Step step = stepsNamed(look.isCurves ? "TransformColorsZVR" : "PictureLut3DZVR").at(0);
  step.name = std::filesystem::path(path).stem();
  step.look = path;
  if (look.isCurves) {
    step.arguments = curvesOf(look);
  } else {
    step.declaration.parameters.clear();
    step.filled = filledFilter(*step.type, look);
  }
  return step;
}

host::Outcome callStep(const Step& step, const host::PictureRef& receiver, std::vector<host::Value> arguments,
                       const host::Value& assigned) {
  host::Outcome outcome = step.type ? runFilter(step, receiver, std::move(arguments))
                          : step.assigned
                              ? host::assign(*step.method, receiver.get(), std::move(arguments), assigned)
                              : host::call(*step.method, receiver.get(), std::move(arguments));
  outcome = checked(step.declaration.name, std::move(outcome));
  const auto* picture = std::get_if<host::PictureRef>(&outcome.result);
  const auto* string = std::get_if<host::StringRef>(&outcome.result);
  if (step.makesCurrent() && (picture ? !*picture : !*string))
    throw Failure(nilText(step.declaration, receiver, outcome.arguments));
  return outcome;
}

}  // namespace zvr
