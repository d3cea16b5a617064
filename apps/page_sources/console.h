#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace kestrix::program {

/// Thrown when the reader of the answer has gone away. No error, so no `std::exception`: the
/// program just ends.
struct ClosedPipe {};

/// Where the program writes.
class Console {
 public:
  virtual ~Console() = default;

  /// Writes a piece of the answer. Throws `ClosedPipe` when nobody reads it any more and `Error`
  /// when it cannot be written.
  virtual void answer(std::string_view text) = 0;
  /// Writes a message about the run. Never throws.
  virtual void message(std::string_view text) noexcept = 0;

  /// Whether answers go to a terminal that shows headings in bold.
  virtual bool has_styled_answers() const = 0;
  /// How many columns a line of the answer may have; 0 for any number.
  virtual std::size_t answer_width() const { return 0; }
  /// Whether messages go to a terminal on which a line can be rewritten.
  virtual bool has_live_messages() const = 0;
};

/// The console of the process: file descriptors 1 and 2.
class ProcessConsole : public Console {
 public:
  ProcessConsole();

  void answer(std::string_view text) override;
  void message(std::string_view text) noexcept override;
  bool has_styled_answers() const override { return styled_answers_; }
  std::size_t answer_width() const override { return answer_width_; }
  bool has_live_messages() const override { return live_messages_; }

 private:
  bool styled_answers_;
  std::size_t answer_width_;
  bool live_messages_;
};

/// A line about work in progress, rewritten in place and gone when the object is. It shows only on
/// a live console, and only when the work takes longer than `delay`.
class ProgressLine {
 public:
  using Clock = std::chrono::steady_clock;

  ProgressLine(Console& console, bool wanted,
               Clock::duration delay = std::chrono::milliseconds(700));
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  /// Tells how far the work is; cheap, and written at most ten times a second.
  void update(std::string_view stage, std::size_t done, std::size_t total);

 private:
  Console& console_;
  bool wanted_;
  bool shown_ = false;
  Clock::time_point next_;
};

}  // namespace kestrix::program
