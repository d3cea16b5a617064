#include "kestrix/host/data_models/data_evidence.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "kestrix/host/data_models/type_groups.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/roles/generated.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using Storage = DataType::Storage;

// Of the most central type of a file; each counts as much as the type is data.
constexpr Signal kFolders{"named_in_folders", 1.0, "named in {} other folder",
                          "named in {} other folders", "polar, ripgrep"};
constexpr Signal kUsed{"type_used", 0.9, "used in {} file", "used in {} files",
                       "ripgrep, lobsters"};
constexpr Signal kHeld{"type_held", 0.5, "a field of {} data type", "a field of {} data types",
                       "scrapy, leveldb"};
constexpr Signal kBase{"data_base", 0.5, "{} data type extends it", "{} data types extend it",
                       "halo, BookStack"};
constexpr Signal kMade{"made_by_tests", 0.6, "made in {} test file", "made in {} test files",
                       "scrapy, solidus"};
// Of the file.
constexpr Signal kStored{"stored_types", 2.5, "declares {} type that is stored",
                         "declares {} types that are stored", "crates.io, jellyfin"};
constexpr Signal kTypes{"data_types", 1.2, "declares {} data type that others name",
                        "declares {} data types that others name", "redis, jekyll"};
constexpr Signal kFamily{"data_folder", 0.7, "in a folder of {} widely named data type",
                         "in a folder of {} widely named data types", "crates.io, jellyfin"};
constexpr Signal kTables{"tables", 3.5, "defines {} table", "defines {} tables",
                         "umami, crates.io"};
constexpr Signal kSchema{"schema_file", 3.5, "a schema of {} type", "a schema of {} types",
                         "umami, cli"};
// A document that describes another one: often what a program wrote, or what it checks.
constexpr Signal kSchemaDocument{"schema_file", 0.8, "a schema of {} type", "a schema of {} types",
                                 "polar, netbox"};
constexpr Signal kEntities{"entities", 1.0, "defines {} class mapped to storage",
                           "defines {} classes mapped to storage", "lobsters, firefly"};
constexpr Signal kSchemas{"schemas", 1.0, "defines {} schema", "defines {} schemas",
                          "umami, polar"};
constexpr Signal kRecords{"records", 0.5, "defines {} data class", "defines {} data classes",
                          "crates.io, umami"};
constexpr Signal kDependents{"used_by", 0.6, "used by {} file", "used by {} files",
                             "umami, crates.io"};

// Named in so many folders besides its own, a type is no local matter.
constexpr std::uint32_t kWidely = 2;
// Half of a data type is enough to be central.
constexpr double kFullLikeness = 1.5;
constexpr double kOfMirror = 0.5;
// A type that is stored and says nothing of its own leads on to others.
constexpr double kOfBare = 0.7;
// A type that others name far less than the functions beside it goes with those: their arguments,
// the properties of a component.
constexpr std::uint32_t kAccessory = 2;
constexpr double kOfAccessory = 0.5;

constexpr double kLeastPoints = 2.0;
constexpr double kLeastShare = 0.35;

Signal weighed(Signal signal, double factor) {
  signal.weight *= factor;
  return signal;
}

double worth(const Signal& signal, std::uint64_t count) {
  return signal.weight * std::log2(1.0 + static_cast<double>(count));
}

bool is_document(std::string_view path) {
  return path.ends_with(".json") || path.ends_with(".yaml") || path.ends_with(".yml");
}

// What the types of one folder are.
struct Family {
  std::uint32_t widely_named = 0;
  double data = 0;
  double all = 0;
};

class Scorer {
 public:
  Scorer(const CodeEvidence& code, ScoreSheet& sheet)
      : code_(code), sheet_(sheet), types_(data_types(code)) {}

  void score() {
    find_families();
    find_mirrors();
    count_calls();
    for (std::size_t first = 0; first < types_.size();) {
      std::size_t end = first;
      while (end < types_.size() && types_[end].at.file == types_[first].at.file) ++end;
      score_types(std::span(types_).subspan(first, end - first));
      first = end;
    }
    const auto files = code_.index().files();
    for (FileId file = 0; file < files.size(); ++file) {
      if (!code_.index().declarations(file).empty()) declaring_.insert(files[file].language);
    }
    for (FileId file = 0; file < files.size(); ++file) score_text(file);
    add_gatherers(code_, types_, sheet_);
    add_workers(code_, types_, sheet_);
  }

 private:
  static bool is_data(const DataType& type) { return type.likeness >= kDataLikeness; }

  std::uint64_t data_among(const std::vector<std::uint32_t>& places) const {
    return static_cast<std::uint64_t>(
        std::ranges::count_if(places, [&](std::uint32_t at) { return is_data(types_[at]); }));
  }

  std::string_view folder(const DataType& type) const {
    return index::folder_of(code_.path(type.at.file));
  }

  void find_families() {
    for (const DataType& type : types_) {
      if (type.namers == 0 || !is_type(code_[type.at].kind)) continue;
      Family& family = families_[folder(type)];
      const double weight = std::log2(1.0 + type.namers);
      family.all += weight;
      if (!is_data(type)) continue;
      family.data += weight;
      if (type.folders >= kWidely) ++family.widely_named;
    }
  }

  // How many product files name the function of a file that most do.
  void count_calls() {
    const auto& index = code_.index();
    most_called_.resize(index.files().size());
    for (FileId file = 0; file < most_called_.size(); ++file) {
      const auto rows = index.declarations(file);
      for (std::uint32_t place = 0; place < rows.size() && code_.is_product(file); ++place) {
        const bool function = rows[place].kind == index::DeclarationKind::kFunction &&
                              (rows[place].container == 0 || rows[rows[place].container - 1].kind ==
                                                                 index::DeclarationKind::kModule);
        if (!function) continue;
        const auto namers = code_.files_naming({file, place}, kEveryRole).size();
        most_called_[file] = std::max(most_called_[file], static_cast<std::uint32_t>(namers));
      }
    }
  }

  // Of types of one name, the most used one is the model and the others are its likenesses.
  void find_mirrors() {
    for (const DataType& type : types_) {
      if (type.likeness == 0) continue;
      double& best = best_of_name_[code_[type.at].name];
      best = std::max(best, centrality(type));
    }
  }

  // Without what other types make of it.
  double centrality(const DataType& type) const {
    return factor(type) * (worth(kFolders, type.folders) + worth(kUsed, type.users));
  }

  double factor(const DataType& type) const {
    if (type.likeness < 1) return std::min(1.0, kFullLikeness * type.likeness);
    const bool bare = type.fields + type.accessors + type.workers == 0;
    return type.likeness * (bare ? kOfBare : 1.0);
  }

  double factor_among_others(const DataType& type) const {
    if (type.storage == Storage::kStored) return factor(type);
    const bool mirror = centrality(type) < best_of_name_.at(code_[type.at].name);
    const bool accessory = type.namers * kAccessory < most_called_[type.at.file];
    return factor(type) * (mirror ? kOfMirror : 1.0) * (accessory ? kOfAccessory : 1.0);
  }

  double points(const DataType& type) const {
    return factor_among_others(type) *
           (worth(kFolders, type.folders) + worth(kUsed, type.users) +
            worth(kHeld, data_among(type.holders)) + worth(kBase, data_among(type.subtypes)) +
            worth(kMade, type.makers));
  }

  void score_types(std::span<const DataType> types) {
    const DataType* best = nullptr;
    double most = 0;
    std::vector<Place> named;
    std::vector<Place> stored;
    for (const DataType& type : types) {
      if (type.likeness == 0) continue;
      const double own = points(type);
      if (own > most) {
        most = own;
        best = &type;
      }
      if (type.storage == Storage::kStored)
        stored.push_back(code_.place_of(type.at));
      else if (is_data(type) && type.namers > 0)
        named.push_back(code_.place_of(type.at));
    }
    if (best != nullptr) score_best(*best);
    const FileId file = types.front().at.file;
    add_listed(file, kStored, std::move(stored));
    add_listed(file, kTypes, std::move(named));
    if (best != nullptr) score_family(*best);
  }

  void add_listed(FileId file, const Signal& signal, std::vector<Place> places) {
    const std::string names = names_and_lines(places);
    const std::size_t count = places.size();
    sheet_.add(file, signal, count, std::move(places), names);
  }

  void score_best(const DataType& type) {
    const FileId file = type.at.file;
    const double factor = factor_among_others(type);
    const Place place = code_.place_of(type.at);
    const auto add = [&](const Signal& signal, std::uint64_t count) {
      sheet_.add(file, weighed(signal, factor), count, {place},
                 fmt::format("{}:{}", place.name, place.line));
    };
    add(kFolders, type.folders);
    add(kUsed, type.users);
    add(kHeld, data_among(type.holders));
    add(kBase, data_among(type.subtypes));
    add(kMade, type.makers);
  }

  void score_family(const DataType& best) {
    const auto found = families_.find(folder(best));
    if (found == families_.end() || found->second.all == 0) return;
    const Family& family = found->second;
    sheet_.add(best.at.file, weighed(kFamily, family.data / family.all), family.widely_named);
  }

  // What the text defines counts where it is no type that is declared: tables, schemas.
  void score_text(FileId file) {
    const auto& indexed = code_.index().files()[file];
    const DataSignals& data = indexed.data;
    if (!data.any() || !is_products(file)) return;
    if (data.schema_file && is_document(indexed.path)) {
      sheet_.add(file, kSchemaDocument, data.schemas);
    } else if (data.schema_file) {
      sheet_.add(file, kSchema, std::uint64_t{data.schemas} + data.entities + data.tables);
    } else {
      sheet_.add(file, kTables, data.tables);
      sheet_.add(file, kEntities, data.entities);
      sheet_.add(file, kSchemas, data.schemas);
    }
    if (declaring_.contains(indexed.language)) return;
    sheet_.add(file, kRecords, data.records);
    sheet_.add(file, kDependents, code_.product_dependents(file));
  }

  // A dump of the schema is the product's, though a program wrote it.
  bool is_products(FileId file) const {
    if (code_.is_product(file)) return true;
    const auto& indexed = code_.index().files()[file];
    Roles roles = indexed.roles;
    roles.remove(Role::kGenerated);
    return roles.empty() && is_schema_dump(indexed.path);
  }

  const CodeEvidence& code_;
  ScoreSheet& sheet_;
  std::vector<DataType> types_;
  std::map<std::string_view, Family> families_;
  std::vector<std::uint32_t> most_called_;  // by file
  std::map<std::string_view, double> best_of_name_;
  std::set<std::string_view> declaring_;  // languages whose declarations are read
};

}  // namespace

DataEvidence::DataEvidence(const CodeEvidence& code) : code_(code), sheet_(code) {
  Scorer(code, sheet_).score();
}

DataPoints DataEvidence::points() const {
  DataPoints points;
  const auto ranked = sheet_.ranked();
  const double best = ranked.empty() ? 0 : ranked.front().points;
  for (const auto& [score, file] : ranked) {
    if (score < std::max(kLeastPoints, kLeastShare * best)) break;
    points.emplace(code_.path(file), score);
  }
  return points;
}

}  // namespace kestrix
