#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include <istream>
#include <streambuf>
#include <vector>

#include "kestrix/formats/limits.h"
#include "kestrix/formats/nesting.h"
#include "kestrix/formats/scalar_readers.h"

namespace kestrix::index {
namespace {

// Ends the reading of a text that holds too much or in which the library stands still.
struct Unreadable {};

// A text as the library reads it, without a copy.
class TextBuffer : public std::streambuf {
 public:
  explicit TextBuffer(std::string_view text) {
    auto* const begin = const_cast<char*>(text.data());  // NOLINT: never written to
    setg(begin, begin, begin + text.size());
  }
};

// Keys and values of a map come one after the other, each of any kind.
class Events : public YAML::EventHandler {
 public:
  explicit Events(Nesting& nesting) : nesting_(nesting) {}

  // The library finds one empty document after the other before some kinds of damage.
  void OnDocumentStart(const YAML::Mark& mark) override {
    if (mark.pos <= document_) throw Unreadable{};
    document_ = mark.pos;
  }
  void OnDocumentEnd() override {}

  void OnNull(const YAML::Mark& mark, YAML::anchor_t /*anchor*/) override { scalar({}, mark); }

  void OnAlias(const YAML::Mark& /*mark*/, YAML::anchor_t /*anchor*/) override {
    if (begin_node()) nesting_.key("*");
  }

  void OnScalar(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t /*anchor*/,
                const std::string& value) override {
    scalar(value, mark);
  }

  void OnSequenceStart(const YAML::Mark& /*mark*/, const std::string& /*tag*/,
                       YAML::anchor_t /*anchor*/, YAML::EmitterStyle::value /*style*/) override {
    open(false);
  }
  void OnSequenceEnd() override { close(); }

  void OnMapStart(const YAML::Mark& /*mark*/, const std::string& /*tag*/, YAML::anchor_t /*anchor*/,
                  YAML::EmitterStyle::value /*style*/) override {
    open(true);
  }
  void OnMapEnd() override { close(); }

 private:
  struct Open {
    bool map;
    bool at_key = true;  // whether a key comes next
  };

  // Whether the node that begins is a key.
  bool begin_node() {
    if (++nodes_ > kMostValues) throw Unreadable{};
    if (open_.empty() || !open_.back().map) return false;
    const bool key = open_.back().at_key;
    open_.back().at_key = !key;
    return key;
  }

  void scalar(const std::string& value, const YAML::Mark& mark) {
    if (begin_node()) return nesting_.key(value);
    nesting_.scalar(value, static_cast<std::size_t>(mark.line) + 1);
  }

  // What is a key stands under "?".
  void open(bool map) {
    if (begin_node()) nesting_.key("?");
    if (!(map ? nesting_.open_map() : nesting_.open_list())) throw Unreadable{};
    open_.push_back({map});
  }

  void close() {
    nesting_.close();
    open_.pop_back();
  }

  Nesting& nesting_;
  std::vector<Open> open_;
  std::size_t nodes_ = 0;
  int document_ = -1;  // where the last one began
};

}  // namespace

void read_yaml_scalars(std::string_view text, const ScalarVisitor& visit) {
  Nesting nesting(visit);
  TextBuffer buffer(text);
  std::istream in(&buffer);
  Events events(nesting);
  try {
    YAML::Parser parser(in);
    while (parser.HandleNextDocument(events)) {
    }
  } catch (const YAML::Exception&) {  // NOLINT(bugprone-empty-catch): damaged
  } catch (const Unreadable&) {       // NOLINT(bugprone-empty-catch)
  }
}

}  // namespace kestrix::index
