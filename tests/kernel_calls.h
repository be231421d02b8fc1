// Kernels as the tests call them: the types of its parameters say how a kernel is called, so that none needs
// a case of its own.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <typeindex>
#include <vector>

#include "kernels/kernels.h"

enum class Kind { out, in, length, top, color, number, counts, tint, sepia, lines, tables, cube, wholeCube };

// `size`: of an operand's elements in bytes; 0: no operand.
struct Parameter {
  Kind kind;
  size_t size = 0, alignment = 1;
};

// Arguments by place: where pointers and references lead, and whole numbers.
struct Call {
  uint8_t* memory[8];
  uint32_t words[8];
};

struct Answer {
  uint64_t number;           // 0 when the kernel answers none
  bool areUpperHalvesInUse;  // of vector registers, which slows the host's SSE code down
};

struct Kernel {
  std::string name;
  bool mayAlias;  // `out` may be an input, and inputs each other
  std::vector<Parameter> parameters;
  std::function<Answer(const kernels::Table&, const Call&)> run;

  bool has(Kind kind) const { return placeOf(kind) < parameters.size(); }
  // The first parameter of a kind.
  size_t placeOf(Kind kind) const {
    const auto isIt = [=](const Parameter& parameter) { return parameter.kind == kind; };
    const auto at = std::find_if(parameters.begin(), parameters.end(), isIt);
    return static_cast<size_t>(at - parameters.begin());
  }
};

template <typename Type>
Type argument(const Call& call, size_t place) {
  if constexpr (std::is_pointer_v<Type>) {
    return reinterpret_cast<Type>(call.memory[place]);
  } else if constexpr (std::is_reference_v<Type>) {
    return *reinterpret_cast<std::remove_reference_t<Type>*>(call.memory[place]);
  } else {
    return static_cast<Type>(call.words[place]);
  }
}

// Whether the upper half of a vector register holds anything; afterwards none does. Between the call of a
// kernel and this nothing may come.
inline bool takeUpperHalves() {
  uint64_t halves[16] = {};  // of eight registers
  if (__builtin_cpu_supports("avx")) {
    __asm__ volatile(
        ".irp n, 0, 1, 2, 3, 4, 5, 6, 7\n vextractf128 $1, %%ymm\\n, 16*\\n(%0)\n .endr\n vzeroupper" ::"r"(
            halves)
        : "memory");
  }
  return std::any_of(std::begin(halves), std::end(halves), [](uint64_t half) { return half != 0; });
}

template <typename Type, typename... Types, size_t... places>
Answer runKernel(Type (*kernel)(Types...), const Call& call, std::index_sequence<places...>) {
  Answer answer{};
  takeUpperHalves();
  if constexpr (std::is_void_v<Type>) {
    kernel(argument<Types>(call, places)...);
    answer.areUpperHalvesInUse = takeUpperHalves();
  } else {
    const Type number = kernel(argument<Types>(call, places)...);
    answer.areUpperHalvesInUse = takeUpperHalves();
    memcpy(&answer.number, &number, sizeof number);
  }
  return answer;
}

// `type`: the name of the kernel's type in kernels.h; `types`: those of its parameters.
inline Kernel described(const std::string& type, const std::string& name,
                        const std::vector<std::type_index>& types) {
  static const std::map<std::type_index, Parameter> kParameters = {
      {typeid(uint32_t*), {Kind::out, 4}},
      {typeid(uint8_t*), {Kind::out, 1}},
      {typeid(const uint32_t*), {Kind::in, 4}},
      {typeid(const uint8_t*), {Kind::in, 1}},
      {typeid(const int32_t*), {Kind::in, 4, 4}},
      {typeid(uint32_t), {Kind::color}},
      {typeid(uint8_t), {Kind::color}},
      {typeid(int32_t), {Kind::number}},
      {typeid(kernels::ChannelCounts), {Kind::counts, sizeof(kernels::ChannelCounts), 4}},
      {typeid(kernels::Tint), {Kind::tint}},
      {typeid(kernels::Sepia), {Kind::sepia}},
      {typeid(kernels::LinearMaps), {Kind::lines}},
      {typeid(kernels::ChannelTables), {Kind::tables}},
      {typeid(const double*), {Kind::cube}},
  };
  Kernel kernel;
  kernel.name = name;
  kernel.mayAlias = type == "SpanMap" || type == "SpanMap2" || type == "SpanMap3" || type == "SpanReplace";
  size_t words = 0;
  for (const std::type_index& its : types) {
    Parameter parameter = kParameters.at(its);
    // The rest is what types don't tell.
    if (its == typeid(uint32_t) && words++ < 2) {
      const bool hasTop = kernel.has(Kind::out) && name != "fill" && name != "bars";
      parameter.kind = words == 1 ? Kind::length : hasTop ? Kind::top : Kind::color;
    }
    if (parameter.size == 1 && name.find("RGB24") != std::string::npos) parameter.size = 3;
    if (parameter.size == 1 && name.find("Int16") != std::string::npos) parameter.size = 2;
    kernel.parameters.push_back(parameter);
  }
  if (type == "SpanWholeCube") kernel.parameters.back() = {Kind::wholeCube};
  return kernel;
}

template <typename Type, typename... Types>
Kernel kernelOf(const std::string& type, const std::string& name, Type (*kernels::Table::*slot)(Types...)) {
  Kernel kernel = described(type, name, {typeid(Types)...});
  kernel.run = [slot](const kernels::Table& table, const Call& call) {
    return runKernel(table.*slot, call, std::index_sequence_for<Types...>());
  };
  return kernel;
}

inline const std::vector<Kernel>& allKernels() {
#define ZVR_KERNEL(type, kernel) kernelOf(#type, #kernel, &kernels::Table::kernel),
  static const std::vector<Kernel> all = {ZVR_KERNELS(ZVR_KERNEL)};
#undef ZVR_KERNEL
  return all;
}
