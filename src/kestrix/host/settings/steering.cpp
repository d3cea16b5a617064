#include "kestrix/host/settings/steering.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kestrix {
namespace {

Reason pinned_by(const PageSetting& pin) {
  return {"pinned", fmt::format("pinned by {}", pin.from), 0, {}};
}

// Whether the file is in the list; if so, the pin is its first reason.
bool pin_in(std::vector<Pick>& picks, const PageSetting& pin) {
  const auto found = std::ranges::find(picks, pin.path, &Pick::path);
  if (found == picks.end()) return false;
  found->reasons.insert(found->reasons.begin(), pinned_by(pin));
  return true;
}

bool is_pinned(const Pick& pick) {
  return !pick.reasons.empty() && pick.reasons.front().kind == "pinned";
}

}  // namespace

Steering::Steering(Settings settings) : settings_(std::move(settings)), wishes_(settings_.paths) {
  for (const RoleSetting& role : settings_.roles) {
    roles_.push_back({role.role, PathGlob(role.glob)});
  }
  for (const PageSetting& page : settings_.pages) {
    bans_.push_back(page.pin ? std::nullopt : std::optional(PathGlob(page.path)));
  }
}

bool Steering::takes(std::string_view path) const {
  return wishes_.takes(path) && role_of(path) != GivenRole::kVendored;
}

std::string Steering::choice() const {
  std::string choice = wishes_.identity();
  if (!has_role(GivenRole::kVendored)) return choice;
  for (const RoleSetting& role : settings_.roles) {
    choice += fmt::format("={} {}\n", to_string(role.role), role.glob);
  }
  return choice;
}

std::optional<GivenRole> Steering::role_of(std::string_view path) const {
  const auto last = std::find_if(roles_.rbegin(), roles_.rend(),
                                 [path](const Role& each) { return each.glob.matches(path); });
  return last == roles_.rend() ? std::nullopt : std::optional(last->role);
}

bool Steering::has_role(GivenRole role) const {
  return std::ranges::find(roles_, role, &Role::role) != roles_.end();
}

bool Steering::is_banned(std::string_view page, std::string_view path) const {
  for (std::size_t i = 0; i < bans_.size(); ++i) {
    if (bans_[i] && settings_.pages[i].page == page && bans_[i]->matches(path)) return true;
  }
  return false;
}

void Steering::cut_further(std::vector<Pick>& further) const {
  const auto limit = settings_.limit("further");
  if (!limit) return;
  const auto pins = static_cast<std::size_t>(std::ranges::count_if(further, is_pinned));
  further.resize(std::min(further.size(), std::max(*limit, pins)));
}

void Steering::apply(std::string_view page, const index::RepositoryIndex& index,
                     PageAnswer& answer) const {
  const auto banned = [&](const Pick& pick) { return is_banned(page, pick.path); };
  answer.total -= std::erase_if(answer.files, banned);
  std::erase_if(answer.further, banned);
  std::vector<Pick> pins;
  for (const PageSetting& pin : settings_.pages) {
    if (!pin.pin || pin.page != page || !index.find(pin.path)) continue;
    if (pin_in(answer.files, pin) || pin_in(answer.further, pin) || pin_in(pins, pin)) continue;
    pins.push_back({pin.path, {pinned_by(pin)}});
  }
  std::ranges::move(answer.further, std::back_inserter(pins));
  answer.further = std::move(pins);
  std::ranges::stable_partition(answer.further, is_pinned);
  cut_further(answer.further);
  if (!answer.further.empty()) answer.nothing_found.clear();
}

void Steering::apply(FlowsAnswer& answer) const {
  const auto banned = [&](const Pick& pick) { return is_banned("flows", pick.path); };
  for (FlowClass& flow : answer.classes) {
    std::erase_if(flow.files, banned);
    std::erase_if(flow.further, banned);
    cut_further(flow.further);
  }
}

}  // namespace kestrix
