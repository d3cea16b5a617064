#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "tests/host_rules/answered_repository.h"

namespace kestrix {

/// A repository in which a signal shows a file, or one in which it must not.
struct SignalCase {
  std::string name;
  AnsweredRepository::Files files;
  std::string path;
  std::string kind;  ///< of the reason
  bool shown;
};

/// `sheet_of` gives the page's sheet of a generator.
template <class SheetOf>
void expect_told(const SignalCase& each, SheetOf sheet_of) {
  const AnsweredRepository repository(each.files);
  const auto file = repository.generator().indexed().find(each.path);
  ASSERT_TRUE(file);
  std::vector<std::string> kinds;
  for (const Reason& reason : sheet_of(repository.generator()).reasons(*file)) {
    kinds.push_back(reason.kind);
  }
  if (each.shown) {
    EXPECT_THAT(kinds, testing::Contains(each.kind));
  } else {
    EXPECT_THAT(kinds, testing::Not(testing::Contains(each.kind)));
  }
}

}  // namespace kestrix
