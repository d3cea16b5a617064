#include "tests/languages/facts_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace kestrix::index {
namespace {

using Facts = std::map<std::uint32_t, std::vector<std::string>>;

std::string text_of(const ImportFact& import) {
  std::string text = "import";
  if (import.level > 0 || !import.module.empty()) text += " ";
  text += std::string(import.level, '.') + import.module;
  if (import.form != 0) text += fmt::format(" form={}", import.form);
  if (import.uses != 0) text += fmt::format(" uses={}", import.uses);
  for (const ImportedName& name : import.names) {
    text += " " + name.name;
    if (!name.exported.empty()) text += ">" + name.exported;
    if (name.uses > 0) text += fmt::format("*{}", name.uses);
  }
  return text;
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool of_file(std::string_view fact) {
  return fact.starts_with("package ") || fact.starts_with("declares ") || fact.starts_with("uses ");
}

void sort_all(Facts& facts) {
  for (auto& [line, texts] : facts) std::ranges::sort(texts);
}

}  // namespace

Facts facts_text(const FileFacts& facts) {
  Facts found;
  for (const SymbolFact& s : facts.symbols) {
    found[s.line].push_back(fmt::format("{} {} | {}", to_string(s.kind), s.name, s.signature));
  }
  for (const ImportFact& import : facts.imports) found[import.line].push_back(text_of(import));
  if (!facts.package.empty()) found[0].push_back("package " + facts.package);
  for (const std::string& name : facts.declares) found[0].push_back("declares " + name);
  for (const NameUse& use : facts.uses) {
    found[0].push_back(fmt::format("uses {}*{}", use.name, use.uses));
  }
  sort_all(found);
  return found;
}

Facts expected_facts(std::string_view fixture) {
  Facts expected;
  std::vector<std::string> waiting;
  for (std::uint32_t line = 1; !fixture.empty(); ++line) {
    const std::size_t end = std::min(fixture.find('\n'), fixture.size());
    std::string_view text = fixture.substr(0, end);
    fixture.remove_prefix(std::min(end + 1, fixture.size()));

    const std::size_t mark = std::min(text.find("#- "), text.find("//- "));
    const bool code = !trim(text.substr(0, mark)).empty();
    std::vector<std::string> facts;
    for (std::size_t at = mark; at != std::string_view::npos;) {
      const std::size_t start = text.find("- ", at) + 2;
      at = std::min(text.find("#- ", start), text.find("//- ", start));
      facts.emplace_back(trim(text.substr(start, at == std::string_view::npos ? at : at - start)));
    }
    for (std::string& fact : facts) {
      (of_file(fact) ? expected[0] : code ? expected[line] : waiting).push_back(std::move(fact));
    }
    if (code && !waiting.empty()) {
      std::ranges::move(waiting, std::back_inserter(expected[line]));
      waiting.clear();
    }
  }
  sort_all(expected);
  return expected;
}

}  // namespace kestrix::index
