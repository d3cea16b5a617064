#include "kestrix/languages/ruby/others.h"

#include <algorithm>
#include <array>

namespace kestrix::index::ruby {
namespace {

// Ascending.
constexpr auto kOwn = std::to_array<std::string_view>({
    "Array",     "BasicObject", "BigDecimal",    "Class",     "Comparable", "Complex",
    "Date",      "DateTime",    "Dir",           "ENV",       "Enumerable", "Enumerator",
    "Exception", "FalseClass",  "File",          "FileUtils", "Float",      "GC",
    "Hash",      "IO",          "Integer",       "Kernel",    "MatchData",  "Math",
    "Method",    "Module",      "NilClass",      "Numeric",   "Object",     "ObjectSpace",
    "Pathname",  "Proc",        "Process",       "Random",    "Range",      "Rational",
    "Regexp",    "Set",         "StandardError", "String",    "StringIO",   "Struct",
    "Symbol",    "Thread",      "Time",          "TrueClass",
});
static_assert(std::ranges::is_sorted(kOwn));

struct Library {
  std::string_view name;
  std::string_view folder;  // where the library has its files
};
constexpr auto kLibraries = std::to_array<Library>({
    {"ActionCable", "action_cable"},
    {"ActionController", "action_controller"},
    {"ActionDispatch", "action_dispatch"},
    {"ActionMailer", "action_mailer"},
    {"ActionView", "action_view"},
    {"ActiveJob", "active_job"},
    {"ActiveModel", "active_model"},
    {"ActiveRecord", "active_record"},
    {"ActiveStorage", "active_storage"},
    {"ActiveSupport", "active_support"},
    {"Devise", "devise"},
    {"I18n", "i18n"},
    {"Net", "net"},
    {"Psych", "psych"},
    {"RSpec", "rspec"},
    {"Rack", "rack"},
    {"Rails", "rails"},
    {"Sidekiq", "sidekiq"},
    {"URI", "uri"},
});
static_assert(std::ranges::is_sorted(kLibraries, {}, &Library::name));

}  // namespace

bool is_of_others(std::string_view name, std::string_view path) {
  const std::string_view first = name.substr(0, name.find("::"));
  if (name.size() == first.size() && std::ranges::binary_search(kOwn, first)) return true;
  const auto library = std::ranges::lower_bound(kLibraries, first, {}, &Library::name);
  if (library == kLibraries.end() || library->name != first) return false;
  // "activerecord/lib/active_record/base.rb", not "lib/patches/active_record.rb".
  const std::size_t at = path.rfind("lib/");
  return at == std::string_view::npos || !path.substr(at + 4).starts_with(library->folder);
}

}  // namespace kestrix::index::ruby
