#include "kestrix/languages/rust/attributes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "kestrix/text/ascii.h"

namespace kestrix::index::rust {
namespace {

// Before an item so much text is looked at for its attributes.
constexpr std::size_t kMostAttributes = 600;

// Ascending.
constexpr auto kPlain = std::to_array<std::string_view>({
    "Clone",
    "Copy",
    "Debug",
    "Default",
    "Eq",
    "Hash",
    "Ord",
    "PartialEq",
    "PartialOrd",
    "allow",
    "automatically_derived",
    "cfg",
    "cfg_attr",
    "cold",
    "deny",
    "deprecated",
    "derive",
    "doc",
    "expect",
    "forbid",
    "ignore",
    "inline",
    "macro_export",
    "macro_use",
    "must_use",
    "no_mangle",
    "non_exhaustive",
    "repr",
    "rustfmt",
    "should_panic",
    "test",
    "track_caller",
    "warn",
});
static_assert(std::ranges::is_sorted(kPlain));

bool says_test(std::string_view attribute) {
  for (std::size_t at = attribute.find("test"); at != std::string_view::npos;
       at = attribute.find("test", at + 1)) {
    const char before = at > 0 ? attribute[at - 1] : ' ';
    const char behind = at + 4 < attribute.size() ? attribute[at + 4] : ' ';
    if (!ascii::is_word(before) && !ascii::is_word(behind) && before != '"') return true;
  }
  return false;
}

}  // namespace

bool is_for_tests(std::string_view before) {
  if (before.size() > kMostAttributes) before.remove_prefix(before.size() - kMostAttributes);
  for (;;) {
    before = ascii::trim(before);
    const std::size_t line = before.rfind('\n') + 1;
    if (before.substr(line).find("//") != std::string_view::npos) {
      before = before.substr(0, before.find("//", line));
      continue;
    }
    if (!before.ends_with(']')) return false;
    const std::size_t open = before.rfind("#[");
    if (open == std::string_view::npos) return false;
    const std::string_view attribute = before.substr(open);
    const bool other =
        attribute.find("not(test") != std::string_view::npos || attribute.starts_with("#[cfg_attr");
    if (says_test(attribute) && !other) return true;
    before = before.substr(0, open);
  }
}

void drop_plain_attributes(FileFacts& facts) {
  std::erase_if(facts.mentions, [](const Mention& mention) {
    return mention.role == Role::kAnnotates &&
           std::ranges::binary_search(
               kPlain, std::string_view(mention.name).substr(0, mention.name.find('.')));
  });
}

}  // namespace kestrix::index::rust
