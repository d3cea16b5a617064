#pragma once

#include <memory>
#include <mutex>
#include <set>

#include "capi/answers/opened.h"
#include "capi/page_sources.h"
#include "kestrix/utils/error.h"
#include "kestrix/utils/stop.h"

namespace kestrix::capi {

/// A caller's argument is wrong; the message says how.
class WrongArgument : public Error {
 public:
  using Error::Error;
};

/// What is asked of a repository from without.
struct Callbacks {
  void (*progress)(void* data, std::size_t done, std::size_t total) = nullptr;
  int (*cancelled)(void* data) = nullptr;
  void* data = nullptr;
};

/// What one refresh found. Immutable; safe to use from several threads.
struct State {
  explicit State(Opened from) : opened(std::move(from)), about(opened.about()) {}

  const Opened opened;
  const About about;
  const WikiGenerator generator{*opened.index, opened.root, opened.steering.get()};
};

/// A repository as callers hold it. Safe to use from several threads.
class Handle {
 public:
  Handle(RepositoryOptions options, const Callbacks& callbacks)
      : options_(std::move(options)), callbacks_(callbacks) {}

  /// Asks all that works now to end.
  void cancel();

  /// One call on the handle: while it lives, a request to cancel reaches it.
  class Work {
   public:
    explicit Work(Handle& handle);
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
    ~Work();

    /// Throws `StopRequest` when someone asked for the end.
    void check();
    /// Brings the index up to date. Throws as `open_repository` does.
    std::shared_ptr<const State> refreshed();
    /// The state that the last refresh found; refreshes when there was none.
    std::shared_ptr<const State> state();

   private:
    bool is_cancelled();
    std::shared_ptr<const State> refresh_locked();

    Handle& handle_;
    StopFlag stop_{false};
  };

 private:
  std::shared_ptr<const State> last();

  const RepositoryOptions options_;
  const Callbacks callbacks_;
  std::mutex refreshing_;  // taken before `guard_`
  std::mutex guard_;       // of what follows; never held for long
  std::shared_ptr<const State> last_;
  std::set<StopFlag*> working_;
};

}  // namespace kestrix::capi

struct page_sources_repository : kestrix::capi::Handle {
  using Handle::Handle;
};
