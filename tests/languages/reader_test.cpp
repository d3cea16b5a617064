#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "kestrix/languages/code/walk.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/reading.h"
#include "kestrix/syntax/parser_memory.h"

extern "C" {
extern void* (*ts_current_malloc)(std::size_t size);
extern void* (*ts_current_calloc)(std::size_t count, std::size_t size);
}

namespace kestrix::index {
namespace {

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

std::string noise(std::size_t size) {
  std::mt19937 random(7);
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>(random());
  return text;
}

const Language& language(std::string_view name) { return *language_named(name); }

// What is asked is only that the reader comes back: sanitizers and the time limit do the rest.
TEST(Reader, SurvivesHostileText) {
  const std::vector<std::string> texts = {
      "",
      std::string(100'000, '\0'),
      noise(10'000),
      repeated("{", 70'000),  // more open braces than a 16-bit count holds
      repeated("(", 20'000),
      repeated("<a>", 1'500),
      repeated("`${", 1'500),
      repeated("a?b:", 1'000),
      repeated("import(\"./a\").then(", 3'000),
      repeated("/*", 5'000),
      repeated("\"\"\"", 1'501),
      repeated("if(a){require('b')}else ", 1'000),
      "class \xF0\x28 {} import \xE9 from './\xFF'; const \xC3 = 1",
  };
  for (const Language* language : languages()) {
    SCOPED_TRACE(language->name);
    const std::string start = language->name == "php" ? "<?php " : "";  // else all is plain text
    for (const std::string& text : texts) {
      read_facts(*language, start + text, {.parse_steps = 5'000});
    }
  }
}

TEST(Reader, GivesUpAfterTheSameStepsInEveryRun) {
  const std::string text = repeated("a = b\n", 1'000);
  const auto is_read = [&](std::uint64_t steps) {
    return read_facts(language("python"), text, {.parse_steps = steps}).has_value();
  };
  std::uint64_t low = 0;
  std::uint64_t high = 10'000;
  while (high - low > 1) {
    const std::uint64_t middle = (low + high) / 2;
    (is_read(middle) ? high : low) = middle;
  }
  EXPECT_GT(low, text.size() / 100);
  for (int run = 0; run < 20; ++run) {
    EXPECT_FALSE(is_read(low));
    EXPECT_TRUE(is_read(high));
  }
}

// Each opens brackets or strings that never close, for which the parser goes back, or leaves open
// what they are, for which one step of it takes ever more memory, or are one error after the other,
// for which each step copies all before it.
TEST(Reader, BoundsWhatAParseTakes) {
  struct Case {
    std::string_view language, text;
    std::size_t times;
  };
  for (const Case& c :
       {Case{"java", "a<", 16'384}, Case{"java", "a<", 500'000}, Case{"ruby", "<<A\n#{", 100'000},
        Case{"cpp", "a<b(", 200'000}, Case{"csharp", "a<b(", 100'000},
        Case{"csharp", "''\n", 9'000}, Case{"csharp", "record A(*", 20'000},
        Case{"javascript", "/[=/[=/[=/[=\n", 20'000}, Case{"java", "return // a\n", 60'000}}) {
    SCOPED_TRACE(c.language);
    const std::string text = repeated(c.text, c.times);
    EXPECT_FALSE(read_facts(language(c.language), text).has_value());
    EXPECT_TRUE(read_facts(language(c.language), "").has_value());
  }
}

// What is beyond is counted, so that a few files of names alone do not fill the memory.
TEST(Reader, BoundsWhatAFileGives) {
  struct Case {
    std::string_view language, start, text;
  };
  constexpr std::size_t kLines = 70'000;
  for (const Case& c :
       {Case{"typescript", "", "export const c{} = 1;\n"},
        Case{"typescript", "", "import {{a{0}}} from './b';\n"},
        Case{"typescript", "import {", "a{0},\n"}, Case{"python", "", "C{} = 1\n"},
        Case{"java", "", "import a.B{};\n"}, Case{"java", "class A {", "B{0} c;\n"},
        Case{"csharp", "", "class C{} {{}}\n"}, Case{"c", "", "int f{}(void);\n"}}) {
    SCOPED_TRACE(fmt::format("{} {}", c.language, c.text));
    std::string text(c.start);
    for (std::size_t i = 0; i < kLines; ++i) text += fmt::format(fmt::runtime(c.text), i);
    if (c.start.ends_with('{')) text += "} from './b'";
    const auto facts = read_facts(language(c.language), text, {.parse_steps = 1'000'000});
    ASSERT_TRUE(facts.has_value());
    std::size_t names = 0;
    for (const ImportFact& import : facts->imports) names += import.names.size();
    EXPECT_GT(facts->dropped, 0U);
    EXPECT_LE(facts->symbols.size(), kMostDeclarations);
    EXPECT_LE(facts->declares.size(), kMostDeclarations);
    EXPECT_LE(facts->imports.size(), kMostDeclarations);
    EXPECT_LE(facts->uses.size(), kMostMentions);
    EXPECT_LE(names, kMostMentions);
  }
}

TEST(Reader, FindsTheSameOnEveryThread) {
  const std::string text = repeated("from a import b\nclass C(b): x = b\n", 200);
  const auto expected = read_facts(language("python"), text);
  std::vector<std::thread> threads;
  std::vector<int> same(8, 0);
  for (int& result : same) {
    threads.emplace_back([&] {
      result = read_facts(language("python"), text) == expected &&
               read_facts(language("typescript"), "import './x'")->imports.size() == 1;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, std::vector<int>(8, 1));
}

// A grammar's scanner asks for no bytes, and keeps a number there that it expects to be zero: what
// was read before must not be found in it.
TEST(ParserMemory, HoldsNothingOfTheParseBefore) {
  constexpr std::size_t kScanner = 16;
  {
    const ParserMemory before;
    std::memset(ts_current_malloc(kScanner), 0xff, kScanner);
  }
  const ParserMemory memory;
  const auto* scanner = static_cast<const unsigned char*>(ts_current_calloc(0, kScanner));
  EXPECT_TRUE(std::all_of(scanner, scanner + kScanner, [](auto byte) { return byte == 0; }));
}

TEST(Reader, CutsLongSignaturesBetweenCharacters) {
  const std::string base = repeated("\xC3\xA9", 400);  // two bytes each
  const auto facts = read_facts(language("python"), "class Ab(" + base + "): pass");
  ASSERT_EQ(facts->symbols.size(), 1U);
  const std::string& signature = facts->symbols[0].signature;
  EXPECT_EQ(signature, "class Ab(" + base.substr(0, signature.size() - 9));
  EXPECT_EQ(signature.size(), 499U);
}

TEST(Languages, AreFoundByWholeNameOrExtension) {
  const auto name = [](std::string_view path) {
    const Language* found = language_of(path);
    return found == nullptr ? std::string_view("none") : found->name;
  };
  EXPECT_EQ(name("a/b.py"), "python");
  EXPECT_EQ(name("a.py/B.PYI"), "python");
  EXPECT_EQ(name("a.d.ts"), "typescript");
  EXPECT_EQ(name("a.test.tsx"), "tsx");
  for (const auto* path : {"", "py", "a.py/b", "a.", "a.pyx", ".py.", "a.py "}) {
    EXPECT_EQ(name(path), "none") << path;
  }
  EXPECT_EQ(language_named("nothing"), nullptr);
}

}  // namespace
}  // namespace kestrix::index
