#include "capi/page_sources.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "capi/answers/escape.h"
#include "capi/answers/json.h"
#include "capi/answers/names.h"
#include "capi/answers/version.h"
#include "capi/handle.h"
#include "kestrix/files/root_directory.h"
#include "kestrix/host/native_logger.h"
#include "kestrix/host/path_glob.h"

namespace kestrix::capi {
namespace {

using Texts = std::vector<std::string>;
using Work = Handle::Work;

void hand_over(char** text, const std::string& from) {
  if (text == nullptr) return;
  *text = static_cast<char*>(std::malloc(from.size() + 1));  // NOLINT: callers of C free it
  if (*text == nullptr) throw std::bad_alloc();
  std::memcpy(*text, from.c_str(), from.size() + 1);
}

page_sources_status failed(page_sources_status status, const char* why, char** text) noexcept {
  try {
    hand_over(text, one_line(why));
    return status;
  } catch (const std::bad_alloc&) {
    return PAGE_SOURCES_OUT_OF_MEMORY;
  }
}

// Calls `answer`, whose result is the text, and turns what it throws into a status.
template <class Answer>
page_sources_status guarded(char** text, Answer answer) noexcept {
  if (text != nullptr) *text = nullptr;
  try {
    hand_over(text, answer());
    return PAGE_SOURCES_DONE;
  } catch (const StopRequest&) {
    return failed(PAGE_SOURCES_CANCELLED, "cancelled", text);
  } catch (const WrongArgument& error) {
    return failed(PAGE_SOURCES_WRONG_ARGUMENT, error.what(), text);
  } catch (const BadGlob& error) {
    return failed(PAGE_SOURCES_WRONG_ARGUMENT, error.what(), text);
  } catch (const std::bad_alloc&) {
    return PAGE_SOURCES_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    return failed(PAGE_SOURCES_FAILED, error.what(), text);
  } catch (...) {
    return failed(PAGE_SOURCES_FAILED, "something unknown was thrown", text);
  }
}

std::string required(const char* text, const char* what) {
  if (text == nullptr) throw WrongArgument(std::string(what) + " is NULL");
  return text;
}

Handle& required(page_sources_repository* repository) {
  if (repository == nullptr) throw WrongArgument("the repository is NULL");
  return *repository;
}

Texts listed(const char* const* texts) {
  Texts list;
  for (; texts != nullptr && *texts != nullptr; ++texts) list.emplace_back(*texts);
  return list;
}

// A caller's structure with what its version of it lacks at 0.
template <class Struct>
Struct completed(const Struct* given, const char* what) {
  Struct whole{};
  if (given == nullptr) return whole;
  if (given->size < sizeof(std::size_t) || given->size > sizeof(Struct)) {
    throw WrongArgument(std::string(what) + ": size is none of a version that this library knows");
  }
  std::memcpy(&whole, given, given->size);
  return whole;
}

// Throws for the first text that `fault` finds something wrong with.
template <class Fault>
Texts checked(Texts texts, Fault fault) {
  for (const std::string& text : texts) {
    if (std::string wrong = fault(text); !wrong.empty()) throw WrongArgument(wrong);
  }
  return texts;
}

Texts one_of(const char* const* texts, const Texts& names) {
  return checked(listed(texts), [&](const std::string& name) { return name_fault(name, names); });
}

RepositoryOptions repository_options(const std::string& path, const page_sources_options& given) {
  RepositoryOptions options;
  options.repository = path;
  if (given.index_file != nullptr) options.index = given.index_file;
  options.threads = given.threads;
  for (auto& glob : listed(given.exclude)) options.wishes.push_back({glob, false, "exclude"});
  for (auto& glob : listed(given.include)) options.wishes.push_back({glob, true, "include"});
  return options;
}

EdgeRequest edge_request(const page_sources_edge_query& query) {
  EdgeRequest request{{listed(query.to), listed(query.from), listed(query.within)}, {}, {}};
  if ((query.way_from == nullptr) != (query.way_to == nullptr)) {
    throw WrongArgument("a way needs both of its ends");
  }
  if (query.way_from != nullptr) request.path = {query.way_from, query.way_to};
  if (query.by_folder != 0) request.folders = query.folder_depth;
  return request;
}

std::string references(Work& work, const page_sources_reference_query& query) {
  const Texts to = checked(listed(query.to), name_glob_fault);
  const Texts from = checked(listed(query.from), name_glob_fault);
  const Texts roles = one_of(query.roles, role_names());
  const auto state = work.state();
  return references_as_json(
      state->about, find_references(*state->opened.index, {to, from, roles, query.self != 0}));
}

std::string symbols(Work& work, const char* const* kinds, const char* name) {
  std::vector<SymbolKind> chosen;
  for (const auto& kind : one_of(kinds, kind_names())) chosen.push_back(*kind_named(kind));
  const std::string glob = name == nullptr ? "*" : name;
  checked({glob}, name_glob_fault);
  const auto state = work.state();
  return symbols_as_json(state->about, find_symbols(*state->opened.index, chosen, glob));
}

}  // namespace
}  // namespace kestrix::capi

using kestrix::answer_edges;
using kestrix::answer_pages;
using kestrix::answer_why;
using kestrix::EdgeRequest;
using kestrix::edges_as_json;
using kestrix::kVersion;
using kestrix::name_fault;
using kestrix::page_names;
using kestrix::pages_as_json;
using kestrix::pages_named;
using kestrix::path_glob_fault;
using kestrix::set_log_quiet;
using kestrix::statistics_as_json;
using kestrix::steering_of;
using kestrix::why_as_json;
using kestrix::capi::Callbacks;
using kestrix::capi::checked;
using kestrix::capi::completed;
using kestrix::capi::edge_request;
using kestrix::capi::guarded;
using kestrix::capi::listed;
using kestrix::capi::one_of;
using kestrix::capi::references;
using kestrix::capi::repository_options;
using kestrix::capi::required;
using kestrix::capi::symbols;
using kestrix::capi::Texts;
using kestrix::capi::Work;
using kestrix::capi::WrongArgument;

const char* page_sources_version(void) { return kVersion; }

int page_sources_abi(void) { return PAGE_SOURCES_ABI; }

page_sources_status page_sources_open(const char* path, const page_sources_options* options,
                                      page_sources_repository** repository, char** text) {
  const auto status = guarded(text, [&] {
    if (repository == nullptr) throw WrongArgument("there is nowhere to put the repository");
    *repository = nullptr;
    set_log_quiet(true);
    const auto given = completed(options, "page_sources_options");
    auto asked = repository_options(required(path, "the path"), given);
    const kestrix::index::RootDirectory exists(asked.repository);
    asked.repository = std::filesystem::canonical(asked.repository);
    steering_of(asked);  // what is wrong with the settings is told now
    *repository = std::make_unique<page_sources_repository>(
                      std::move(asked), Callbacks{given.progress, given.cancelled, given.data})
                      .release();
    return std::string();
  });
  if (status == PAGE_SOURCES_DONE && text != nullptr) {
    page_sources_free(*text);
    *text = nullptr;
  }
  return status;
}

void page_sources_close(page_sources_repository* repository) { delete repository; }

page_sources_status page_sources_refresh(page_sources_repository* repository, char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    const auto state = work.refreshed();
    return statistics_as_json(state->about, state->opened.refresh,
                              state->opened.index->statistics());
  });
}

page_sources_status page_sources_pages(page_sources_repository* repository,
                                       const char* const* pages, const char* const* entry_points,
                                       char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    const auto chosen = pages_named(one_of(pages, page_names()));
    const Texts globs = checked(listed(entry_points), path_glob_fault);
    const auto state = work.state();
    return pages_as_json(state->about,
                         answer_pages(state->generator, chosen, globs, [&work] { work.check(); }));
  });
}

page_sources_status page_sources_why(page_sources_repository* repository, const char* page,
                                     const char* file, char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    const Texts name = checked({required(page, "the page")}, [](const std::string& given) {
      return name_fault(given, page_names());
    });
    const std::string path = required(file, "the file");
    const auto state = work.state();
    return why_as_json(state->about, answer_why(state->generator, state->opened.root,
                                                *pages_named(name).front(), path));
  });
}

page_sources_status page_sources_references(page_sources_repository* repository,
                                            const page_sources_reference_query* query,
                                            char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    return references(work, completed(query, "page_sources_reference_query"));
  });
}

page_sources_status page_sources_edges(page_sources_repository* repository,
                                       const page_sources_edge_query* query, char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    const EdgeRequest request = edge_request(completed(query, "page_sources_edge_query"));
    const auto state = work.state();
    return edges_as_json(state->about, answer_edges(*state->opened.index, request));
  });
}

page_sources_status page_sources_symbols(page_sources_repository* repository,
                                         const char* const* kinds, const char* name, char** text) {
  return guarded(text, [&] {
    Work work(required(repository));
    return symbols(work, kinds, name);
  });
}

void page_sources_cancel(page_sources_repository* repository) {
  if (repository != nullptr) repository->cancel();
}

void page_sources_free(char* text) { std::free(text); }  // NOLINT: as it was made
