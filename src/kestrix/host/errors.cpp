#include <fmt/format.h>

#include <algorithm>

#include "kestrix/host/errors/error_host.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"

namespace kestrix {
namespace {

constexpr double kLeastScore = 1.65;
constexpr double kLeastShare = 0.06;
// An answer of few files has room for those of which less is seen.
constexpr std::size_t kShortAnswer = 8;
constexpr double kWeakScore = 1.0;

std::string defines(std::size_t count) {
  return fmt::format("defines {}", counted(count, "exception type", "exception types"));
}

}  // namespace

PageAnswer errors_answer(const WikiGenerator& generator) {
  const IndexEvidence evidence(generator.indexed());
  const ErrorEvidence& errors = generator.error_evidence();
  const auto types = error_places(generator, errors);
  PageAnswer answer;
  answer.has_material = generator._has_exceptions();
  for (std::string& path : generator._exception_files()) {
    const auto found = types.find(path);
    Pick pick{std::move(path), {}};
    if (found != types.end()) {
      pick.reasons.push_back(IndexEvidence::definitions(
          "exception_types", defines(found->second.size()), found->second));
    }
    add_counted(pick.reasons, evidence.used_by(pick.path));
    answer.files.push_back(std::move(pick));
  }
  answer.total = types.size();
  add_reasons(errors.sheet, generator.code_evidence(), answer.files);
  answer.further = errors.handling.further(answer.files, room_for_further(answer.files.size()),
                                           kLeastScore, kLeastShare);
  const std::size_t given = answer.files.size() + answer.further.size();
  if (given < kShortAnswer) {
    answer.further = errors.handling.further(answer.files, kShortAnswer - answer.files.size(),
                                             kWeakScore, kLeastShare);
  }
  finish(answer, *answer.has_material ? "no exception class in a production file, only in others"
                                      : "no error type");
  return answer;
}

std::string errors_why_not(const WikiGenerator& generator, std::string_view path) {
  const auto types = error_places(generator, generator.error_evidence());
  const auto found = types.find(path);
  if (found == types.end()) return "defines no error type";
  return defines(found->second.size()) + ", which others use less than those of the page's files";
}

}  // namespace kestrix
