#include "kestrix/documents/document_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/notes_codec.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ReadDocument, TellsCodeFromProse) {
  struct Case {
    const char* path;
    const char* text;
    std::uint32_t lines;
    std::uint32_t code;
    std::uint32_t commands;
  };
  const Case cases[] = {
      {"a.md", "# Title\n\nProse.\n\n```sh\nmake all\n\nls\n```\nMore.\n", 7, 4, 1},
      {"a.md", "Prose:\n\n    x = 1\n    $ git push\n", 3, 2, 1},
      {"a.md", "- an item\n    that goes on\n    - and its own\n", 3, 0, 0},
      {"a.md", "~~~~\n```\n~~~\n~~~~\nProse.\n", 5, 4, 0},
      {"a.rst", "Title\n=====\n\nProse::\n\n    x = 1\n", 4, 1, 0},
      {"a.adoc", "= Title\n\n----\nx = 1\n----\n", 4, 3, 0},
      {"a.org", "* Title\n#+BEGIN_SRC sh\ncd x\n#+END_SRC\n", 4, 3, 1},
      {"MANIFESTO", "1 - A rule\n    that goes on\n", 2, 0, 0},
      {"a.md", "", 0, 0, 0},
  };
  for (const auto& [path, text, lines, code, commands] : cases) {
    const auto facts = read_document(path, text);
    EXPECT_EQ(facts.lines, lines) << text;
    EXPECT_EQ(facts.code_lines, code) << text;
    EXPECT_EQ(facts.commands, commands) << text;
  }
}

TEST(ReadDocument, CountsHeadingsStepsAndWhoIsSpokenTo) {
  const auto facts = read_document("a.md",
                                   "# How to\n\n## 1. Add the field\nYou add your field.\n"
                                   "## Step 2\nSee https://a.example and http://b.example.\n");
  EXPECT_EQ(facts.headings.size(), 3U);
  EXPECT_EQ(facts.numbered_headings, 2U);
  EXPECT_EQ(facts.addressed, 2U);
  EXPECT_EQ(facts.outward_links, 2U);
  const auto rst = read_document("a.rst", "Context\n-------\n\nx\n\nDecision\n--------\n");
  const auto markdown = read_document("b.md", "## Context\n\nx\n\n## decision\n");
  EXPECT_EQ(rst.headings, markdown.headings);
}

TEST(ReadDocument, TakesWhatLooksLikePathsAndTypes) {
  const auto facts = read_document(
      "a.md",
      "See `server.c` in src/core/, or ./cmd/main.go; the OrderBook holds each `Order`, while an\n"
      "Order by itself, e.g. HTTP, is a word. https://a.example/src/other.c is elsewhere.\n");
  EXPECT_THAT(facts.names,
              ElementsAre("Order", "OrderBook", "cmd/main.go", "server.c", "src/core"));
}

TEST(ReadDocument, TakesNamesOfSeveralWords) {
  const auto facts = read_document(
      "a.md",
      "`page_size`, `server.pageCount` and PAGE_LIMIT are set; page and well-known are not.\n");
  EXPECT_THAT(facts.names, ElementsAre("PAGE_LIMIT", "pageCount", "page_size"));
}

TEST(ReadDocument, TakesLinksWithinTheRepository) {
  EXPECT_THAT(read_document("a.md",
                            "[x](docs/x.md#part) [y](https://y.example) [z](../z.md \"Z\")"
                            " <a href=\"w.md\">w</a> [top](#top)\n")
                  .links,
              ElementsAre("../z.md", "docs/x.md", "w.md"));
  EXPECT_THAT(read_document("a.rst",
                            ".. toctree::\n   :maxdepth: 2\n\n   design\n   how/to\n\nSee "
                            ":doc:`the life <life>` and :doc:`api`.\n")
                  .links,
              ElementsAre("api", "design", "how/to", "life"));
}

TEST(ReadDocument, BoundsWhatItTakes) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "# H\n[x](f" + std::to_string(i) + ".md) ";
  text += std::string(1 << 20, '`') + std::string(1 << 20, 'a');
  const auto facts = read_document("a.md", text);
  EXPECT_LE(facts.links.size(), 300U);
  EXPECT_LE(facts.names.size(), 300U);
  EXPECT_LE(facts.headings.size(), 24U);
}

TEST(DocumentsNamedIn, TakesWhatOnlyThisRepositoryHas) {
  EXPECT_THAT(
      documents_named_in("// see docs/dev/busy.md, and design.rst.\n// README.md .md a.mdx\n"),
      ElementsAre("design.rst", "docs/dev/busy.md"));
}

TEST(IsProse, NeedsWordsInLines) {
  std::string prose;
  for (int i = 0; i < 10; ++i) prose += "What is kept simple stays simple for whoever reads it.\n";
  EXPECT_TRUE(is_prose(prose));
  std::string rules;
  for (int i = 0; i < 30; ++i) rules += "cc_library(name = \"core\", deps = [\":base\"]);\n";
  EXPECT_FALSE(is_prose(rules));
  EXPECT_FALSE(is_prose("short"));
}

TEST(NotesCodec, GivesBackWhatItTook) {
  FileNotes notes;
  EXPECT_EQ(encode_notes(notes), "");
  notes.document = read_document("a.md", "# A\n[b](b.md) `Order` in src/order.py\n");
  notes.documents = {"docs/a.md"};
  notes.attributes = "*.js linguist-vendored\n";
  notes.holders = {"ada"};
  notes.content = 7;
  const std::string bytes = encode_notes(notes);
  EXPECT_EQ(decode_notes(bytes), notes);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_THROW(decode_notes(bytes.substr(0, length)), CorruptIndex) << length;
  }
  EXPECT_THROW(decode_notes(bytes + "x"), CorruptIndex);
}

}  // namespace
}  // namespace kestrix::index
