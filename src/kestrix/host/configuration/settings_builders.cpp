#include <array>
#include <map>
#include <set>
#include <vector>

#include "kestrix/host/configuration/settings_signals.h"
#include "kestrix/host/evidence/name_words.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::Role;
using index::ValueShape;

constexpr Signal kBuilds{"builder_options", 0.9, "a builder of {} option",
                         "a builder of {} options", "okhttp, gson"};
constexpr Signal kDefault{"default_option", 2.4, "{} option of a builder is one of it by default",
                          "{} options of a builder are one of it by default", "okhttp, gson"};

constexpr std::array<std::string_view, 1> kBuilder{"builder"};
constexpr std::uint32_t kOptions = 8;
constexpr std::uint32_t kDefaults = 4;  // what only carries values has none

// The builders of a file whose fields start with values.
std::vector<DeclarationRef> builders_in(const CodeEvidence& evidence, FileId file) {
  const auto declared = evidence.index().declarations(file);
  std::vector<std::uint32_t> defaults(declared.size());
  for (const auto& row : declared) {
    const bool given = row.kind == DeclarationKind::kField && row.shape != ValueShape::kUnknown;
    if (given && row.container > 0) ++defaults[row.container - 1];
  }
  std::vector<DeclarationRef> builders;
  for (std::uint32_t at = 0; at < declared.size(); ++at) {
    const auto& row = declared[at];
    const bool many = row.fields >= kOptions && defaults[at] >= kDefaults;
    if (many && is_type(row.kind) && ends_with_word(row.name, kBuilder, {})) {
      builders.push_back({file, at});
    }
  }
  return builders;
}

using Options = std::map<FileId, std::set<DeclarationRef>>;  // by the file of their first value

void take_options(const CodeEvidence& evidence, DeclarationRef builder, Options& options) {
  for (const auto& to : evidence.index().references_from(builder.file)) {
    if (to.declaration == 0 || to.target == builder.file || to.within == 0) continue;
    if (to.role == Role::kType || to.role == Role::kAnnotates) continue;
    const DeclarationRef field{builder.file, to.within - 1};
    const bool option = evidence[field].kind == DeclarationKind::kField &&
                        evidence[field].container == builder.place + 1;
    if (option && evidence.is_product(to.target)) options[to.target].insert(field);
  }
}

}  // namespace

void add_settings_builders(const CodeEvidence& evidence, ScoreSheet& sheet) {
  Options options;
  for (FileId file = 0; file < evidence.index().files().size(); ++file) {
    if (!evidence.is_product(file)) continue;
    for (const DeclarationRef builder : builders_in(evidence, file)) {
      sheet.add(file, kBuilds, evidence[builder].fields, {evidence.place_of(builder)});
      take_options(evidence, builder, options);
    }
  }
  for (const auto& [file, fields] : options) {
    std::vector<Place> places;
    for (const DeclarationRef field : fields) places.push_back(evidence.place_of(field));
    sheet.add(file, kDefault, fields.size(), std::move(places));
  }
}

}  // namespace kestrix
