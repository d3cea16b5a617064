#pragma once

#include "kestrix/utils/error.h"

namespace kestrix::index {

/// The index's file is this program's, but its content cannot be right. A refresh answers it by
/// building the index anew.
class CorruptIndex : public Error {
 public:
  using Error::Error;
};

}  // namespace kestrix::index
