#include "kestrix/roles/test_data.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_map>

#include "kestrix/roles/folder_names.h"
#include "kestrix/roles/test_paths.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {
namespace {

constexpr auto kDataEndings = std::to_array<std::string_view>(
    {"avro", "bin",    "cert",   "cfg",      "conf",    "crt",    "csv",  "dat",  "data", "diff",
     "dump", "eml",    "expect", "expected", "geojson", "golden", "htm",  "html", "ics",  "in",
     "ini",  "input",  "json",   "json5",    "jsonl",   "key",    "lock", "log",  "md",   "ndjson",
     "out",  "output", "patch",  "pem",      "plist",   "pub",    "rst",  "snap", "svg",  "toml",
     "tsv",  "txt",    "xhtml",  "xml",      "xsd",     "xsl",    "yaml", "yml"});
// Languages in which tests declare that they are, so that what declares none is none.
constexpr auto kDeclareTests =
    std::to_array<std::string_view>({"csharp", "go", "java", "kotlin", "python", "rust"});
// In a folder with fewer such files, or a smaller part of them, each may be a helper.
constexpr std::size_t kFewestAlone = 5;
constexpr std::size_t kOtherOf = 5;

bool is_alone(const JudgedRepository& repository, std::size_t place) {
  const JudgedFile& file = repository.files[place];
  return file.declares && !file.holds_tests && is_among(kDeclareTests, file.language) &&
         repository.targets[place].empty() && repository.dependents[place] == 0 &&
         test_sign(index::base_name(file.path)).kind == TestSign::Kind::kNone;
}

struct Neighbours {
  std::size_t code = 0;
  std::size_t alone = 0;

  bool are_data() const { return alone >= kFewestAlone && (code - alone) * kOtherOf <= code; }
};

}  // namespace

bool is_data_path(std::string_view path) {
  const auto name = index::base_name(path);
  const auto dot = name.rfind('.');
  return dot != name.npos && is_among(kDataEndings, name.substr(dot + 1));
}

std::vector<bool> code_that_tests_read(const JudgedRepository& repository) {
  std::vector<bool> alone(repository.files.size());
  std::unordered_map<std::string_view, Neighbours, SeededHash> folders;
  for (std::size_t place = 0; place < alone.size(); ++place) {
    const JudgedFile& file = repository.files[place];
    if (!file.is_code() || test_sign(file.path).kind != TestSign::Kind::kFolder) continue;
    alone[place] = is_alone(repository, place);
    Neighbours& around = folders[index::folder_of(file.path)];
    ++around.code;
    around.alone += alone[place] ? 1 : 0;
  }
  for (std::size_t place = 0; place < alone.size(); ++place) {
    if (alone[place]) {
      alone[place] = folders[index::folder_of(repository.files[place].path)].are_data();
    }
  }
  return alone;
}

}  // namespace kestrix
