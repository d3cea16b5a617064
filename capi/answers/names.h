#pragma once

// The names that pages, kinds of symbols and roles go by, for all who take them from a user.

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/pages.h"
#include "kestrix/index/repository.h"

namespace kestrix {

std::vector<std::string> page_names();
std::vector<std::string> kind_names();
std::vector<std::string> role_names();

/// The pages of these names, all without any: in their own order, each once. Passes over others.
std::vector<const Page*> pages_named(std::span<const std::string> names);
std::optional<SymbolKind> kind_named(std::string_view name);

/// What is wrong with a name that has to be one of a list, with the one that it may be a slip of;
/// "" when nothing is.
std::string name_fault(std::string_view name, std::span<const std::string> names);
/// What is wrong with a pattern of paths, and with one of names; "" when nothing is.
std::string path_glob_fault(const std::string& pattern);
std::string name_glob_fault(const std::string& pattern);

}  // namespace kestrix
