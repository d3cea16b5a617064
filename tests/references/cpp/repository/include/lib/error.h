#pragma once

#include <stdexcept>

namespace lib {

class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class NotFound final : public Error {
 public:
  explicit NotFound(int key);
};

enum class Code { kOk, kLost };

}  // namespace lib
