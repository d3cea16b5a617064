#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// What tests name of each other and of the product, by file. Views the index.
class TestEvidence {
 public:
  /// Linear in references and edges, and in the texts of such tests as are scripts. `code` must
  /// outlive the object; the tests are the generator's, without test data, and without what others
  /// wrote unless there are no others.
  TestEvidence(const WikiGenerator& generator, const CodeEvidence& code);

  bool is_test(index::FileId file) const { return tests_[file]; }
  std::size_t test_count() const { return test_count_; }

  /// The tests that name something of the file, that have it from a base class which does, or that
  /// a framework gives it to; ascending.
  std::span<const index::FileId> users(index::FileId file) const { return users_[file]; }
  /// The product's files that a test goes through: it names something of them, as others do.
  std::span<const index::FileId> reached(index::FileId file) const { return reached_[file]; }
  /// How much of them it names: each declaration once for each of its own that does, and at most
  /// three times.
  std::uint32_t reach(index::FileId file) const { return reach_[file]; }
  /// How often a script among the tests calls another one: of these no reference tells.
  std::uint32_t script_mentions(index::FileId script, index::FileId helper) const;
  /// How long a test is: the line of the last that is known of it, or of a script's lines, which
  /// run the product as a whole, the number; 0 where nothing is known.
  std::uint32_t lines(index::FileId file) const { return lines_[file]; }
  /// That of the middle one of those of which it is known.
  std::uint32_t middle_lines() const { return middle_lines_; }
  bool is_script(index::FileId file) const;
  /// Whether a file names what belongs to a framework of tests.
  bool names_framework(index::FileId file) const { return names_framework_[file]; }

  /// So many tests use what more than one test's own needs; at least a share of `most`, the users
  /// of what the most tests use.
  std::size_t least_users(std::size_t most) const;

 private:
  using Pair = std::pair<index::FileId, index::FileId>;

  void measure_lines();
  void choose_tests(const WikiGenerator& generator);
  void read_scripts(const WikiGenerator& generator);
  void read_references();
  void read_edges();
  void hand_down();
  void hand_on();
  std::map<std::string_view, std::size_t> count_by_folder() const;
  void give_by_framework();
  void measure_reach();
  bool is_own(index::FileId file) const;
  bool is_code(index::FileId file) const;
  bool is_one_tests_own(index::FileId file) const;

  const CodeEvidence& code_;
  const index::RepositoryIndex& index_;
  std::vector<bool> tests_;
  std::size_t test_count_ = 0;
  std::vector<std::vector<index::FileId>> users_;
  std::vector<std::vector<index::FileId>> reached_;
  std::vector<std::uint32_t> reach_;
  std::vector<bool> names_framework_;
  std::map<Pair, std::uint32_t> script_mentions_;  // by script and helper
  std::vector<std::uint32_t> lines_;               // by file
  std::uint32_t middle_lines_ = 0;
  std::vector<Pair> held_;       // test, and a file of whose types it has a field
  std::vector<Pair> extends_;    // test, and the file of its base class
  std::vector<Pair> asked_for_;  // file, and a test that has an edge to it
  std::vector<Pair> handed_on_;  // test, and a file of which it hands something over
};

}  // namespace kestrix
