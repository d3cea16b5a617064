#include "kestrix/formats/nesting.h"

#include "kestrix/formats/limits.h"

namespace kestrix::index {

bool Nesting::open(bool list) {
  if (open_.size() >= kDeepest) return false;
  count_element();
  open_.push_back({list});
  path_.emplace_back();
  return true;
}

void Nesting::close() {
  open_.pop_back();
  path_.pop_back();
}

void Nesting::key(std::string_view name) { path_.back() = name; }

void Nesting::scalar(std::string_view value, std::size_t line) {
  count_element();
  visit_({path_, value, line});
}

void Nesting::count_element() {
  if (!open_.empty() && open_.back().list) path_.back() = std::to_string(open_.back().elements++);
}

}  // namespace kestrix::index
