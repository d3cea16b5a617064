#pragma once

#include <boost/stacktrace/stacktrace.hpp>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrix {

/// Base of this system's own errors. Holds the stack at the point where it was thrown; the
/// message names the path or argument at fault.
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& message) : std::runtime_error(message) {}

  const boost::stacktrace::stacktrace& trace() const noexcept { return trace_; }

 private:
  boost::stacktrace::stacktrace trace_;
};

/// A record lacks an entry that every record of its kind must have.
class MissingEntry : public Error {
 public:
  using Error::Error;
};

/// What a log line says of a failure.
struct Failure {
  std::string type;                 ///< demangled name of the exception's class
  std::string text;                 ///< its `what()`
  std::vector<std::string> causes;  ///< "type: text" of each nested exception, outermost first
  std::string trace;                ///< where it was thrown, or the caller's stack if unknown
};

/// Describes `error` and the exceptions nested in it. When the error carries no trace of its own
/// the current stack stands in, so call it where the error was caught.
Failure describe(const std::exception& error);

}  // namespace kestrix
