#include "kestrix/index/query.h"

#include <fmt/format.h>

#include <algorithm>

#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

CaptureRole role_of(std::string_view capture) {
  if (capture == "enter") return CaptureRole::kEnter;
  if (capture == "members") return CaptureRole::kMembers;
  return CaptureRole::kFact;
}

std::string_view text_of(TSNode node, std::string_view text) {
  const std::uint32_t start = ts_node_start_byte(node);
  return text.substr(start, ts_node_end_byte(node) - start);
}

}  // namespace

Query::Query(const TSLanguage* language, std::string_view text, std::string_view name) {
  std::uint32_t offset = 0;
  TSQueryError error = TSQueryErrorNone;
  query_.reset(ts_query_new(language, text.data(), static_cast<std::uint32_t>(text.size()), &offset,
                            &error));
  if (query_ == nullptr) {
    throw Error(fmt::format("the query of {} is wrong (error {}) at byte {}: {}", name,
                            static_cast<int>(error), offset, text.substr(offset, 40)));
  }
  for (std::uint32_t i = 0; i < ts_query_capture_count(query_.get()); ++i) {
    std::uint32_t length = 0;
    const char* capture = ts_query_capture_name_for_id(query_.get(), i, &length);
    names_.emplace_back(capture, length);
    roles_.push_back(role_of(names_.back()));
  }
  patterns_.resize(ts_query_pattern_count(query_.get()));
  for (std::uint32_t i = 0; i < patterns_.size(); ++i) read_predicates(i, name);
}

std::string_view Query::string_value(std::uint32_t id) const {
  std::uint32_t length = 0;
  const char* value = ts_query_string_value_for_id(query_.get(), id, &length);
  return {value, length};
}

void Query::read_predicates(std::uint32_t pattern, std::string_view name) {
  std::uint32_t count = 0;
  const TSQueryPredicateStep* steps =
      ts_query_predicates_for_pattern(query_.get(), pattern, &count);
  const TSQueryPredicateStep* const end = steps + count;
  while (steps != end) {
    const auto* done = std::find_if(steps, end, [](const TSQueryPredicateStep& step) {
      return step.type == TSQueryPredicateStepTypeDone;
    });
    add_predicate(patterns_[pattern], steps, static_cast<std::uint32_t>(done - steps), name);
    steps = done == end ? end : done + 1;
  }
}

void Query::add_predicate(Pattern& pattern, const TSQueryPredicateStep* steps, std::uint32_t count,
                          std::string_view name) {
  const std::string_view verb = string_value(steps[0].value_id);
  const auto literal = [](const TSQueryPredicateStep& step) {
    return step.type == TSQueryPredicateStepTypeString;
  };
  if (verb == "set!" && count == 2 && string_value(steps[1].value_id) == "anywhere") {
    pattern.anywhere = true;
    return;
  }
  if ((verb != "eq?" && verb != "any-of?") || count < 3 || literal(steps[1]) ||
      !std::all_of(steps + 2, steps + count, literal)) {
    throw Error(fmt::format("the query of {} has a predicate that is not known: #{}", name, verb));
  }
  Predicate& predicate = pattern.predicates.emplace_back(Predicate{steps[1].value_id, {}});
  for (const auto* step = steps + 2; step != steps + count; ++step) {
    predicate.texts.emplace_back(string_value(step->value_id));
  }
}

bool Query::admits(const TSQueryMatch& match, std::string_view text) const {
  const auto holds = [&](const Predicate& predicate) {
    for (std::uint16_t i = 0; i < match.capture_count; ++i) {
      if (match.captures[i].index != predicate.capture) continue;
      if (std::ranges::find(predicate.texts, text_of(match.captures[i].node, text)) ==
          predicate.texts.end()) {
        return false;
      }
    }
    return true;
  };
  return std::ranges::all_of(patterns_[match.pattern_index].predicates, holds);
}

}  // namespace kestrix::index
