#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;

constexpr Signal kDeclared{"declares_variables", 1.6, "declares {} variable of the environment",
                           "declares {} variables of the environment", "outline, mealie"};

// Fewer may be alike by accident.
constexpr std::size_t kSeveral = 5;
constexpr std::size_t kShortest = 6;
constexpr double kNearlyAll = 0.8;

bool holds_value(DeclarationKind kind) {
  return kind == DeclarationKind::kField || kind == DeclarationKind::kVariable ||
         kind == DeclarationKind::kConstant;
}

// "DATABASE_URL", "database_url" and "databaseUrl" alike.
std::string bare(std::string_view name) {
  std::string same;
  for (const char c : name) {
    if (c != '_') same += ascii::lower(c);
  }
  return same;
}

// What all but a few start with is the product's name, which its code leaves out: "SHOP_".
std::string_view common_start(const std::vector<std::string>& variables) {
  std::string_view best;
  std::size_t most = 0;
  std::size_t count = 0;
  for (std::size_t at = 0; at < variables.size();
       ++at) {  // ascending, so equal starts stand together
    const std::string_view variable = variables[at];
    const std::string_view start = variable.substr(0, variable.find('_') + 1);
    count = at > 0 && variables[at - 1].starts_with(start) ? count + 1 : 1;
    if (count > most) {
      most = count;
      best = start;
    }
  }
  const bool common =
      static_cast<double>(most) >= kNearlyAll * static_cast<double>(variables.size());
  return common ? best : std::string_view();
}

}  // namespace

bool is_environment_variable(std::string_view key) {
  const auto fits = [](char c) { return ascii::is_upper(c) || ascii::is_digit(c) || c == '_'; };
  return key.size() >= kShortest && key.find('_') != key.npos && std::ranges::all_of(key, fits);
}

void add_settings_variables(const CodeEvidence& evidence, std::vector<std::string> variables,
                            ScoreSheet& sheet) {
  std::ranges::sort(variables);
  variables.erase(std::unique(variables.begin(), variables.end()), variables.end());
  const std::string_view start = common_start(variables);
  std::set<std::string> names;
  for (const std::string_view variable : variables) {
    const bool cut = variable.starts_with(start);
    names.insert(bare(cut ? variable.substr(start.size()) : variable));
  }
  if (names.size() < kSeveral) return;
  for (FileId file = 0; file < evidence.index().files().size(); ++file) {
    if (!evidence.is_product(file)) continue;
    const auto rows = evidence.index().declarations(file);
    std::set<std::string> found;
    std::vector<Place> places;
    for (std::uint32_t at = 0; at < rows.size(); ++at) {
      if (!holds_value(rows[at].kind) || rows[at].name.size() < kShortest) continue;
      std::string name = bare(rows[at].name);
      if (!names.contains(name) || !found.insert(std::move(name)).second) continue;
      places.push_back(evidence.place_of(DeclarationRef{file, at}));
    }
    if (found.size() < kSeveral) continue;
    const std::string text = names_and_lines(places);
    sheet.add(file, kDeclared, found.size(), std::move(places), text);
  }
}

}  // namespace kestrix
