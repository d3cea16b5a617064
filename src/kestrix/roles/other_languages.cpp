#include "kestrix/roles/other_languages.h"

#include <algorithm>
#include <array>

#include "kestrix/languages/ecmascript/conventions.h"
#include "kestrix/languages/jvm/conventions.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/python/conventions.h"

namespace kestrix {
namespace {

using index::Conventions;
using index::FileNamePattern;

constexpr std::array kUnderscore{FileNamePattern{FileNamePattern::Part::kSuffix, "_test"}};
constexpr std::array kDartWritten{FileNamePattern{FileNamePattern::Part::kSuffix, ".g.dart"},
                                  FileNamePattern{FileNamePattern::Part::kSuffix, ".freezed.dart"}};
constexpr std::array kPlural{FileNamePattern{FileNamePattern::Part::kSuffix, "Tests"}};
// Recorded output that a test compares with.
constexpr std::array kAny{FileNamePattern{FileNamePattern::Part::kPrefix, ""}};

constexpr Conventions kDart{.tests = kUnderscore, .generated = kDartWritten};
constexpr Conventions kElixir{.tests = kUnderscore};
constexpr Conventions kDotNet{.tests = kPlural};
constexpr Conventions kSnapshots{.tests = kAny};

struct Row {
  std::string_view ending;
  const Conventions* conventions;
};

constexpr std::array kRows{
    Row{".dart", &kDart},
    Row{".exs", &kElixir},
    Row{".fs", &kDotNet},
    Row{".groovy", &index::jvm::kConventions},
    Row{".pyx", &index::python::kConventions},
    Row{".snap", &kSnapshots},
    Row{".vb", &kDotNet},
};

}  // namespace

const Conventions* conventions_of(std::string_view path) {
  if (const index::Language* language = index::language_of(path)) return language->conventions;
  const auto row = std::ranges::find_if(
      kRows, [path](const Row& known) { return ascii::ends_with(path, known.ending); });
  return row == kRows.end() ? nullptr : row->conventions;
}

}  // namespace kestrix
