#pragma once

namespace lib {

class Store;
class LIB_API Painter;
class Elsewhere;

class View {
 public:
  explicit View(Store* store);
  Painter* painter() const;
  Elsewhere* elsewhere() const;
  NotFound* unannounced() const;

 private:
  Store* store_;
};

}  // namespace lib
