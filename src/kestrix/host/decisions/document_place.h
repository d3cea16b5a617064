#pragma once

#include <string_view>

namespace kestrix {

/// As `stem` gives it, but a view.
std::string_view name_without_ending(std::string_view path);

/// What tells an entry: its own name, or that of its folder, whose index page or design it is.
struct Naming {
  std::string_view name;
  std::string_view folder;  ///< that holds the entries
  bool design_of_folder = false;
};

Naming naming_of(std::string_view path);

bool is_at_top(std::string_view path);

/// The root page of a folder below the top.
bool is_page_of_part(std::string_view path);

/// The root page, or the index of what is written for developers.
bool is_where_developers_look(std::string_view page);

/// What tests and dependencies bring along, and what entries are begun from.
bool is_foreign_document(std::string_view path);

/// What serves tools, samples and the news, was generated, or is kept for the record.
bool is_aside_document(std::string_view path);

}  // namespace kestrix
