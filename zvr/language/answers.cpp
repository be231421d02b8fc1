#include "zvr/language/answers.h"

#include <nlohmann/json.hpp>

#include "zvr/language/arguments.h"
#include "zvr/language/signatures.h"

namespace zvr {
namespace {

using Json = nlohmann::ordered_json;

Json blockJson(const host::MemoryBlockRef& block) {
  constexpr size_t kHistogram = 256;
  constexpr char kDigits[] = "0123456789abcdef";
  const std::vector<uint32_t> counts = countsIn(block);
  if (counts.size() == kHistogram) return counts;
  const Bytes bytes = bytesOf(block);
  std::string hex;
  for (const uint8_t byte : bytes) hex.append({kDigits[byte >> 4], kDigits[byte & 15]});
  return {{"size", bytes.size()}, {"hex", hex}};
}

struct ToJson {
  Json operator()(std::monostate) const { return nullptr; }
  Json operator()(int64_t number) const { return number; }
  Json operator()(double number) const { return number; }
  Json operator()(bool flag) const { return flag; }
  Json operator()(const host::MemoryBlockRef& block) const { return block ? blockJson(block) : Json(); }
  template <typename Other>
  Json operator()(const Other& other) const {
    return valueText(other);
  }
};

}  // namespace

std::vector<std::string> answerLines(const Report& report) {
  std::vector<std::string> lines;
  for (const Answer& answer : report.answers) {
    if (answer.output.empty()) lines.push_back(answer.name + " = " + valueText(answer.value));
  }
  return lines;
}

std::string jsonLine(const Report& report) {
  Json json = {{"input", report.input}};
  if (!report.output.empty()) json["output"] = report.output;
  if (!report.problem.empty()) json["problem"] = report.problem;
  json["answers"] = Json::array();
  for (const Answer& answer : report.answers) {
    Json one = {{"method", answer.method}, {"name", answer.name}};
    if (!answer.output.empty()) one["output"] = answer.output;
    one["value"] = std::visit(ToJson{}, answer.value);
    json["answers"].push_back(one);
  }
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace zvr
