#include "apps/page_sources/configured.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>
#include <vector>

#include "capi/answers/document.h"
#include "capi/answers/escape.h"

namespace kestrix::program {
namespace {

struct Row {
  std::string setting;
  std::string value;
  std::string from;
};

std::vector<Row> rows_of(const Settings& settings) {
  std::vector<Row> rows;
  for (const auto& wish : settings.paths) {
    rows.push_back({wish.include ? "include" : "exclude", wish.glob, wish.from});
  }
  for (const auto& role : settings.roles) {
    rows.push_back({fmt::format("roles.{}", to_string(role.role)), role.glob, role.from});
  }
  for (const auto& named : settings.entry_points) {
    rows.push_back({fmt::format("entry_points.{}", named.name),
                    fmt::format("{}", fmt::join(named.globs, ", ")), named.from});
  }
  for (const auto& page : settings.pages) {
    rows.push_back(
        {fmt::format("pages.{}.{}", page.page, page.pin ? "pin" : "ban"), page.path, page.from});
  }
  for (const auto& limit : settings.limits) {
    rows.push_back({"limits." + limit.name, std::to_string(limit.value), limit.from});
  }
  return rows;
}

}  // namespace

std::string settings_as_text(const Settings& settings) {
  std::string out;
  for (const Row& row : rows_of(settings)) {
    out +=
        fmt::format("{}\t{}\t{}\n", c_quoted(row.setting), c_quoted(row.value), c_quoted(row.from));
  }
  for (const auto& file : settings.files) out += fmt::format("read\t{}\n", c_quoted(file));
  return out.empty() ? "no settings\n" : out;
}

std::string settings_as_json(const Settings& settings) {
  JsonWriter json;
  begin_document(json);
  write_texts(json, "files", settings.files);
  json.key("settings");
  json.begin_array();
  for (const Row& row : rows_of(settings)) {
    json.begin_object();
    write_text(json, "setting", row.setting);
    write_text(json, "value", row.value);
    write_text(json, "from", row.from);
    json.end_object();
  }
  json.end_array();
  json.end_object();
  return std::move(json).take();
}

}  // namespace kestrix::program
