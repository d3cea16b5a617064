#pragma once

#define LIB_API

namespace lib {

class LIB_API Painter {
 public:
  void paint();
};

}  // namespace lib
