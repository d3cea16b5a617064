#include "kestrix/host/decisions/document_place.h"

#include "kestrix/host/decisions/design_names.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {

std::string_view name_without_ending(std::string_view path) {
  const auto name = index::base_name(path);
  const auto dot = name.rfind('.');
  return dot == name.npos || dot == 0 || dot + 1 == name.size() ? name : name.substr(0, dot);
}

Naming naming_of(std::string_view path) {
  const auto own = name_without_ending(path);
  const auto folder = index::folder_of(path);
  const bool design = is_design_name(own);
  if ((design || is_standing_page(own)) && entry_name(index::base_name(folder))) {
    return {index::base_name(folder), index::folder_of(folder), design};
  }
  return {own, folder};
}

bool is_at_top(std::string_view path) { return path.find('/') == path.npos; }

bool is_page_of_part(std::string_view path) {
  return !is_at_top(path) && ascii::equals(name_without_ending(path), "readme");
}

bool is_where_developers_look(std::string_view page) {
  if (is_at_top(page)) return ascii::equals(name_without_ending(page), "readme");
  return is_index_page(name_without_ending(page)) &&
         any_folder(index::folder_of(page), serves_developers);
}

bool is_foreign_document(std::string_view path) {
  const Roles roles = path_roles(path);
  return roles.has(Role::kTest) || roles.has(Role::kTestData) || roles.has(Role::kVendored) ||
         any_folder(index::folder_of(path), holds_templates);
}

bool is_aside_document(std::string_view path) {
  const Roles roles = path_roles(path);
  return roles.has(Role::kTool) || roles.has(Role::kSample) || roles.has(Role::kGenerated) ||
         roles.has(Role::kArchived) || any_folder(index::folder_of(path), reports_news);
}

}  // namespace kestrix
