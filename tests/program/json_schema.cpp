#include "tests/program/json_schema.h"

#include <functional>
#include <map>

namespace kestrix::program {
namespace {

using nlohmann::json;

class Validator {
 public:
  explicit Validator(const json& schema) : root_(schema) {}

  // NOLINTNEXTLINE(misc-no-recursion): as deep as our own schema
  void check(const json& schema, const json& value, const std::string& at) {
    for (const auto& [keyword, operand] : schema.items()) {
      if (keyword == "$ref") {
        check(root_.at(json::json_pointer(operand.get<std::string>().substr(1))), value, at);
      } else if (keyword == "type") {
        expect(operand == type_of(value), at, "type");
      } else if (keyword == "const") {
        expect(operand == value, at, "const");
      } else if (keyword == "minLength") {
        expect(value.get_ref<const std::string&>().size() >= operand, at, "minLength");
      } else if (keyword == "required") {
        for (const auto& name : operand) expect(value.contains(name), at, "required");
      } else if (keyword == "items") {
        for (const auto& item : value) check(operand, item, below(at, "*"));
      } else if (keyword == "additionalProperties") {
        for (const auto& [name, member] : value.items()) {
          expect(schema.at("properties").contains(name), below(at, name), "additionalProperties");
        }
      } else if (keyword == "properties") {
        for (const auto& [name, member] : value.items()) {
          if (operand.contains(name)) check(operand.at(name), member, below(at, name));
        }
      } else {
        expect(keyword == "description" || keyword == "title" || keyword == "$schema" ||
                   keyword == "$defs",
               at, "unknown keyword " + keyword);
      }
    }
  }

  std::vector<std::string> faults;

 private:
  static std::string below(std::string at, const std::string& name) {
    return at.append("/").append(name);
  }

  static std::string type_of(const json& value) {
    return value.is_number_integer() ? "integer" : value.type_name();
  }

  void expect(bool holds, const std::string& at, const std::string& what) {
    if (!holds) faults.push_back(at + ": " + what);
  }

  const json& root_;
};

}  // namespace

std::vector<std::string> schema_faults(const json& schema, const json& value) {
  Validator validator(schema);
  validator.check(schema, value, "");
  return validator.faults;
}

}  // namespace kestrix::program
