#include "capi/handle.h"

#include <utility>

namespace kestrix::capi {

void Handle::cancel() {
  const std::lock_guard lock(guard_);
  for (StopFlag* stop : working_) *stop = true;
}

std::shared_ptr<const State> Handle::last() {
  const std::lock_guard lock(guard_);
  return last_;
}

Handle::Work::Work(Handle& handle) : handle_(handle) {
  const std::lock_guard lock(handle_.guard_);
  handle_.working_.insert(&stop_);
}

Handle::Work::~Work() {
  const std::lock_guard lock(handle_.guard_);
  handle_.working_.erase(&stop_);
}

bool Handle::Work::is_cancelled() {
  const Callbacks& from = handle_.callbacks_;
  if (from.cancelled != nullptr && from.cancelled(from.data) != 0) stop_ = true;
  return stop_;
}

void Handle::Work::check() {
  if (is_cancelled()) throw StopRequest{};
}

std::shared_ptr<const State> Handle::Work::refresh_locked() {
  check();
  const Callbacks& from = handle_.callbacks_;
  const auto progress = [&](std::size_t done, std::size_t total) {
    if (from.progress != nullptr) from.progress(from.data, done, total);
    check();
  };
  auto made = std::make_shared<const State>(open_repository(handle_.options_, {&stop_, progress}));
  const std::lock_guard lock(handle_.guard_);
  return handle_.last_ = std::move(made);
}

std::shared_ptr<const State> Handle::Work::refreshed() {
  const std::lock_guard lock(handle_.refreshing_);
  return refresh_locked();
}

std::shared_ptr<const State> Handle::Work::state() {
  if (auto known = handle_.last()) return known;
  const std::lock_guard lock(handle_.refreshing_);
  auto known = handle_.last();  // another thread may have been first
  return known ? known : refresh_locked();
}

}  // namespace kestrix::capi
