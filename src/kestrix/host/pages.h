#pragma once

// The pages of a wiki, each with the function that answers it. A page's file gathers its evidence,
// asks the detector, and says why for each file.

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kestrix/host/page_answer.h"
#include "kestrix/host/wiki_generator.h"

namespace kestrix {

// Each asks its detector and adds the reasons and the further files. Pure in what the generator
// reads; they throw what the detectors throw.
PageAnswer data_models_answer(const WikiGenerator& generator);
PageAnswer configuration_answer(const WikiGenerator& generator);
PageAnswer errors_answer(const WikiGenerator& generator);
PageAnswer extending_answer(const WikiGenerator& generator);
PageAnswer examples_answer(const WikiGenerator& generator);
PageAnswer decisions_answer(const WikiGenerator& generator);

/// One class for each of `patterns`; without any, the classes that the structure shows. Throws
/// `BadGlob`, too.
FlowsAnswer flows_answer(const WikiGenerator& generator,
                         std::span<const std::string> patterns = {});

struct Page;

/// The answer for a page with the generator's settings in force: pins, bans, limits. Not for flows.
PageAnswer answer_page(const WikiGenerator& generator, const Page& page);
/// The same for flows; without patterns, the classes that the settings name come first.
FlowsAnswer answer_flows(const WikiGenerator& generator,
                         std::span<const std::string> patterns = {});

// What a file lacks that a page does not list: one line, or "" when there is nothing to tell beyond
// what holds for every page. Only asked about files that the page could list.
std::string data_models_why_not(const WikiGenerator& generator, std::string_view path);
std::string configuration_why_not(const WikiGenerator& generator, std::string_view path);
std::string errors_why_not(const WikiGenerator& generator, std::string_view path);
std::string flows_why_not(const WikiGenerator& generator, std::string_view path);
std::string extending_why_not(const WikiGenerator& generator, std::string_view path);
std::string examples_why_not(const WikiGenerator& generator, std::string_view path);
std::string decisions_why_not(const WikiGenerator& generator, std::string_view path);

/// Which files a page can be grounded in at all.
enum class PageScope { kProduction, kSource, kTests, kDocuments };

/// A page as the program and the library know it.
struct Page {
  std::string_view name;
  std::string_view title;  ///< what its files are, for a reader
  PageScope scope;
  PageAnswer (*answer)(const WikiGenerator&);  ///< none for flows, whose answer has classes
  std::string (*why_not)(const WikiGenerator&, std::string_view path);
};

/// Every page, in the order in which they are told.
inline constexpr std::array<Page, 7> kPages{{
    {"data_models", "the types that others name as data, and DDL, the most central first",
     PageScope::kProduction, data_models_answer, data_models_why_not},
    {"configuration", "configuration files by name or directory", PageScope::kSource,
     configuration_answer, configuration_why_not},
    {"errors", "the production files that define the most exception classes",
     PageScope::kProduction, errors_answer, errors_why_not},
    {"flows", "for each class of entry points, the files that dispatch to them",
     PageScope::kProduction, nullptr, flows_why_not},
    {"extending", "contracts to implement, registries to add to, and where they are wired in",
     PageScope::kProduction, extending_answer, extending_why_not},
    {"examples", "the helpers that the most tests import, then the tests that reach furthest",
     PageScope::kTests, examples_answer, examples_why_not},
    {"decisions", "design documents, the newest first, archived ones last", PageScope::kDocuments,
     decisions_answer, decisions_why_not},
}};

}  // namespace kestrix
