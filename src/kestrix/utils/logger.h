#pragma once

#include <string>
#include <string_view>

#include "kestrix/utils/error.h"

namespace kestrix {

/// A named logger. Where its lines go is up to the host that is linked, which defines `warning`.
class Logger {
 public:
  explicit Logger(std::string name) : name_(std::move(name)) {}

  const std::string& name() const noexcept { return name_; }

  /// Logs `message` at warning level with the failure attached. Never throws.
  void warning(std::string_view message, const Failure& failure) const noexcept;

 private:
  std::string name_;
};

}  // namespace kestrix
