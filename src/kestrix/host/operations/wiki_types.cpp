#include "kestrix/workers/wiki_types.h"

#include <re2/re2.h>

#include <string>

namespace kestrix {
namespace {

// Annotations, attributes and modifiers before a declaration's keyword; "pub(crate)" is one.
constexpr const char* kModifiers =
    R"((?:@[\w.:]+\s*(?:\([^()]*(?:\([^()]*\)[^()]*)*\))?\s*|#?\[[^\]]*\]\s*|)"
    R"([a-z][a-z-]*(?:\([^)]*\))?\s+))";

std::string keyword_pattern() {
  return std::string(R"(^\s*)") + kModifiers + R"(*(?:interface|trait|protocol)\s+[^\s(:=,)])";
}

std::string abstract_pattern() {
  return R"((?:^|\s)abstract\s+(?:[a-z]+\s+)*(?:class|record|struct)(?:\s|$))"
         R"(|^(?:.*\s)?(?:class|struct)\s.*\sabstract\s*$)";
}

// A base that stands alone among a Python class's bases: brackets inside other bases hold type
// arguments, which are no bases.
std::string python_base_pattern() {
  const std::string dotted = R"((?:[\w.]+\.)?)";
  const std::string brackets = R"(\[(?:[^\[\]]|\[(?:[^\[\]]|\[[^\[\]]*\])*\])*\])";
  const std::string calls = R"(\((?:[^()]|\([^()]*\))*\))";
  const std::string other = "(?:[^][(),]|" + brackets + "|" + calls + ")*,";
  const std::string contract = "(?:" + dotted + "ABC|" + dotted + R"(Protocol\s*(?:)" + brackets +
                               R"()?|metaclass\s*=\s*)" + dotted + "ABCMeta)";
  return R"(^\s*class\s+\w+\s*(?:)" + brackets + R"()?\s*\((?:)" + other + R"()*\s*)" + contract +
         R"(\s*[,)])" + R"(|^\s*class\s+\w+\(\s*(?:six\.)?with_metaclass\(\s*)" + dotted +
         R"(ABCMeta\s*[,)])";
}

RE2::Options options() {
  RE2::Options options;
  options.set_log_errors(false);
  options.set_encoding(RE2::Options::EncodingLatin1);
  options.set_dot_nl(true);
  return options;
}

}  // namespace

bool search(const InterfaceSignaturePattern&, std::string_view signature) {
  static const RE2 pattern(
      keyword_pattern() + "|" + abstract_pattern() + "|" + python_base_pattern(), options());
  return RE2::PartialMatch({signature.data(), signature.size()}, pattern);
}

}  // namespace kestrix
