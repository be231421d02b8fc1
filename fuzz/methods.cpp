// Fuzzes every registered method and both filter classes on small pictures of every format, with any
// arguments.

#include <stdexcept>
#include <string>

#include "fuzz/played_host.h"

namespace {

// Has its own target.
constexpr char kDrawsSamples[] = "RenderSamplesZVR";

// Picks the pictures of one call, often of the receiver's size, which several methods require.
class Pictures {
 public:
  explicit Pictures(FuzzedDataProvider& data) : data_(data), first_(fuzz::takePicture(data)) {
    host::PictureOddities& odd = host::oddities(first_.get());
    switch (data.ConsumeIntegralInRange(0, 19)) {
      case 0:
        odd.refusesLock = true;
        odd.copiesRefuseToo = data.ConsumeBool();
        break;
      case 1:
        odd.hidesSize = true;
        break;
      case 2:
        odd.noGraphics = true;
        break;
      case 3:
        host::setPictureMask(first_.get(), next().get());
        break;
    }
  }

  const host::PictureRef& first() const { return first_; }
  host::PictureRef next() {
    switch (data_.ConsumeIntegralInRange(0, 7)) {
      case 0:
        return {};
      case 1:
        return first_;
      case 2:
        return fuzz::takePicture(data_);
      default:
        return fuzz::takePicture(data_, host::pictureWidth(first_.get()), host::pictureHeight(first_.get()));
    }
  }

 private:
  FuzzedDataProvider& data_;
  host::PictureRef first_;
};

host::Value takeValue(FuzzedDataProvider& data, Pictures& pictures, host::Type type) {
  switch (type) {
    case host::Type::integer:
      return int64_t{fuzz::takeInteger(data)};
    case host::Type::uint32:
      return int64_t{static_cast<uint32_t>(fuzz::takeInteger(data))};
    case host::Type::real:
      return fuzz::takeReal(data);
    case host::Type::boolean:
      return data.ConsumeBool();
    case host::Type::color:
      return host::Color{data.ConsumeIntegral<uint32_t>()};
    case host::Type::string:
      return host::newString(data.ConsumeRandomLengthString());
    case host::Type::picture:
      return pictures.next();
    case host::Type::memoryBlock:
      return fuzz::takeBlock(data);
    case host::Type::object:
    case host::Type::none:
      return {};
  }
  return {};
}

std::vector<host::Value> takeArguments(FuzzedDataProvider& data, Pictures& pictures,
                                       const host::Method& method) {
  std::vector<host::Value> arguments;
  for (const host::Parameter& parameter : method.declaration.parameters) {
    arguments.push_back(takeValue(data, pictures, parameter.type));
  }
  return arguments;
}

void callMethod(FuzzedDataProvider& data, Pictures& pictures, const host::Method& method,
                REALobjectStruct* receiver) {
  if (method.declaration.name == kDrawsSamples) return;
  std::vector<host::Value> arguments = takeArguments(data, pictures, method);
  if (method.setter && data.ConsumeBool()) {
    host::assign(method, receiver, std::move(arguments),
                 takeValue(data, pictures, method.declaration.result));
  } else {
    host::call(method, receiver, std::move(arguments));
  }
}

void useClass(FuzzedDataProvider& data, Pictures& pictures, const host::Class& type) {
  const host::ObjectRef instance = host::newInstance(type.name);
  for (int steps = data.ConsumeIntegralInRange(1, 8); steps > 0; --steps) {
    if (data.ConsumeBool()) {
      const host::Property& property =
          type.properties[data.ConsumeIntegralInRange<size_t>(0, type.properties.size() - 1)];
      const host::Type propertyType = host::parseDeclaration(property.name + " as " + property.type).result;
      host::setProperty(instance.get(), property.name, takeValue(data, pictures, propertyType));
      host::getProperty(instance.get(), property.name);
    } else {
      // The sepia filter leaks the picture of the previous run, on purpose.
      host::setProperty(instance.get(), "DestinationPicture", host::PictureRef());
      const size_t method = data.ConsumeIntegralInRange<size_t>(0, type.methods.size() - 1);
      callMethod(data, pictures, type.methods[method], instance.get());
    }
  }
}

void useMember(FuzzedDataProvider& data) {
  const host::Members& members = host::members();
  const size_t extensions = members.pictureMethods.size(), globals = members.globals.size();
  size_t member = data.ConsumeIntegralInRange<size_t>(0, extensions + globals + members.classes.size() - 1);
  Pictures pictures(data);
  if (member < extensions) {
    const bool isNil = data.ConsumeIntegralInRange(0, 19) == 0;
    return callMethod(data, pictures, members.pictureMethods[member],
                      isNil ? nullptr : pictures.first().get());
  }
  member -= extensions;
  if (member < globals) return callMethod(data, pictures, members.globals[member], nullptr);
  useClass(data, pictures, members.classes[member - globals]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  fuzz::play(fuzz::takeHostKind(data));
  useMember(data);
  fuzz::expectNothingHeld();
  return 0;
}
