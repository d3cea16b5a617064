#include "lib/error.h"
#include "lib/store.h"

namespace app {

struct Options {
  lib::Options inner;
  lib::Code code;
};

struct Base {
  virtual int visit(const Options& options);
  int count_ = 0;
};

struct Visitor : Base {
  int visit(const Options& options) override;
};

void report(const std::exception& error) {
  if (dynamic_cast<const lib::NotFound*>(&error) != nullptr) throw;
}

int Visitor::visit(const Options& options) {
  int limit = Base::visit(options);
  switch (options.code) {
    case lib::Code::kOk:
      return limit + count_;
    default:
      return 0;
  }
}

void run(const Options& options) {
  try {
    lib::Store::open(options.inner);
    std::vector<lib::detail::Cache<Options>> caches;
    for (const auto& report : caches) report.find(1);
  } catch (const lib::NotFound& error) {
    report(error);
  } catch (const std::exception&) {
    throw lib::Error("other");
  }
}

int (*const steps[])(const Options&) = {&first, &second};

void start(lib::Store* store) { atexit([store] { lib::open_default(); }); }

}  // namespace app

TEST(Store, Opens) { app::run(app::Options{}); }
