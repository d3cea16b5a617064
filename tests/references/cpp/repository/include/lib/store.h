#pragma once

#include <memory>

#define LIB_CHECK(x) (void)(x)

namespace lib {

struct Options {
  int size = 3;
};

class Listener {
 public:
  virtual ~Listener() = default;
  virtual void changed(const Options& options) = 0;
};

namespace detail {

struct Options {
  int depth;
};

template <typename T>
class Cache {
 public:
  T* find(int key);

 private:
  T* first_ = nullptr;
};

}  // namespace detail

class Store : public Listener {
 public:
  struct Entry {
    Options made;
  };

  static Store* open(const Options& options);
  void changed(const Options& options) override;

 private:
  void drop(Entry* entry);

  detail::Cache<detail::Options> cache_;
  std::unique_ptr<Listener> next_;
};

Store* open_default();

}  // namespace lib
