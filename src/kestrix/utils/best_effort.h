#pragma once

#include <exception>
#include <functional>
#include <string>
#include <utility>

namespace kestrix {

/// Defined by the host: takes note of a failure that a guard absorbed. Never throws.
void note_absorbed(const std::string& label, const std::exception& error) noexcept;

/// Makes guarded operations: `best_effort(label, value)(operation)` takes the operation's
/// arguments and returns its result, or `value` when it throws a `std::exception`. Anything else
/// that is thrown, such as a request to stop, passes through.
///
/// The label is a dotted text that names the operation in the log.
template <class Result>
auto best_effort(std::string label, Result fallback) {
  return [label = std::move(label), fallback = std::move(fallback)](auto operation) {
    return [label, fallback, operation = std::move(operation)](auto&&... args) -> Result {
      try {
        return std::invoke(operation, std::forward<decltype(args)>(args)...);
      } catch (const std::exception& error) {
        note_absorbed(label, error);
        return fallback;
      }
    };
  };
}

}  // namespace kestrix
