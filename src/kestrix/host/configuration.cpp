#include <fmt/format.h>

#include <algorithm>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

constexpr double kLeastScore = 2.4;
constexpr double kLeastShare = 0.15;
// Where little is found, what shows less is better than nothing.
constexpr double kLeastOfFew = 1.5;
constexpr std::size_t kFew = 8;

// What `is_config_path` saw in a path that it accepts.
Reason sign_of(std::string_view path) {
  const std::string name(path.substr(path.rfind('/') + 1));
  std::string lower = name;
  std::ranges::transform(lower, lower.begin(), ascii::lower);
  if (CONFIG_BASENAMES.contains(lower) || lower.starts_with(".env"))
    return {"named", fmt::format("named {}", name), 0, {}};
  return {"config_directory", "in a directory named config", 0, {}};
}

}  // namespace

PageAnswer configuration_answer(const WikiGenerator& generator) {
  const IndexEvidence evidence(generator.indexed());
  PageAnswer answer;
  for (std::string& path : generator._config_files()) {
    Pick pick{std::move(path), {}};
    pick.reasons.push_back(sign_of(pick.path));
    add_counted(pick.reasons, evidence.used_by(pick.path));
    answer.files.push_back(std::move(pick));
  }
  const CodeEvidence& code = generator.code_evidence();
  const ScoreSheet& sheet = generator.settings_evidence();
  add_reasons(sheet, code, answer.files);
  answer.further =
      sheet.further(answer.files, room_for_further(answer.files.size()), kLeastScore, kLeastShare);
  if (const std::size_t found = answer.files.size() + answer.further.size(); found < kFew) {
    const std::size_t room = kFew - answer.files.size();
    answer.further = sheet.further(answer.files, room, kLeastOfFew, kLeastShare);
  }
  finish(answer, "no file named like a configuration file, no directory named config");
  return answer;
}

std::string configuration_why_not(const WikiGenerator& /*generator*/, std::string_view /*path*/) {
  return "neither named like a configuration file nor in a directory named config";
}

}  // namespace kestrix
