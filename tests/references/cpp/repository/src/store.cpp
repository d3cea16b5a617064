#include "lib/store.h"

#include <cstdlib>

#include "lib/error.h"

namespace lib {
namespace {

class Quiet : public Listener {
 public:
  void changed(const Options&) override {}
};

int limit() { return 3; }

}  // namespace

NotFound::NotFound(int key) : Error("lost") { LIB_CHECK(key); }

template <typename T>
T* detail::Cache<T>::find(int key) {
  return key == limit() ? first_ : nullptr;
}

Store* Store::open(const Options& options) {
  if (std::getenv("LIB_SIZE") == nullptr) throw NotFound(options.size);
  Store* made = new Store();
  made->next_ = std::make_unique<Quiet>();
  made->drop(nullptr);
  return made;
}

void Store::changed(const Options& options) { next_->changed(options); }

void Store::drop(Entry* entry) { changed(entry->made); }

Store* open_default() { return Store::open(Options{1}); }

}  // namespace lib
