/* Every function of libpage_sources from C, compared with what the program prints.
 * Usage: calls PROGRAM REPOSITORY INDEX FILE, where FILE is one of the repository and INDEX does
 * not exist. */
#define _POSIX_C_SOURCE 200809L

#include <page_sources.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char* program;
static const char* root;
static const char* file;

static void fail(int line, const char* what, const char* text) {
  fprintf(stderr, "calls.c:%d: %s: %s\n", line, what, text == NULL ? "(none)" : text);
  exit(1);
}

#define CHECK(condition, text)                          \
  do {                                                  \
    if (!(condition)) fail(__LINE__, #condition, text); \
  } while (0)

/* What `page-sources ARGUMENTS` prints. */
static char* printed(const char* arguments) {
  char command[4096];
  snprintf(command, sizeof command, "cd '%s' && '%s' %s --format json", root, program, arguments);
  FILE* pipe = popen(command, "r");
  CHECK(pipe != NULL, command);
  size_t size = 0;
  size_t room = 1 << 16;
  char* text = malloc(room);
  for (size_t got = 1; got > 0 && text != NULL; size += got) {
    if (room - size < 2) text = realloc(text, room *= 2);
    got = text == NULL ? 0 : fread(text + size, 1, room - size - 1, pipe);
  }
  CHECK(pclose(pipe) == 0 && text != NULL, command);
  text[size] = '\0';
  return text;
}

static void same_as(int line, const char* arguments, page_sources_status status, char* text) {
  if (status != PAGE_SOURCES_DONE) fail(line, arguments, text);
  char* expected = printed(arguments);
  if (strcmp(text, expected) != 0) fail(line, arguments, text);
  free(expected);
  page_sources_free(text);
}

#define SAME(arguments, call)                     \
  do {                                            \
    char* text = NULL;                            \
    const page_sources_status status = (call);    \
    same_as(__LINE__, (arguments), status, text); \
  } while (0)

static void refused(int line, page_sources_status expected, const char* part,
                    page_sources_status status, char* text) {
  if (status != expected || text == NULL || strstr(text, part) == NULL) fail(line, part, text);
  page_sources_free(text);
}

#define REFUSED(expected, part, call)                    \
  do {                                                   \
    char* text = NULL;                                   \
    const page_sources_status status = (call);           \
    refused(__LINE__, (expected), (part), status, text); \
  } while (0)

static page_sources_repository* opened(const page_sources_options* options) {
  page_sources_repository* repository = NULL;
  char* text = NULL;
  CHECK(page_sources_open(root, options, &repository, &text) == PAGE_SOURCES_DONE, text);
  CHECK(text == NULL && repository != NULL, text);
  return repository;
}

static void answers_are_those_of_the_program(void) {
  page_sources_repository* repository = opened(NULL);
  const char* const pages[] = {"flows", "errors", NULL};
  const char* const globs[] = {"**", NULL};
  const char* const kinds[] = {"class", NULL};
  const char* const roles[] = {"extends", "type", NULL};
  page_sources_reference_query references = {.size = sizeof references, .roles = roles, .self = 1};
  page_sources_edge_query edges = {
      .size = sizeof edges, .from = globs, .by_folder = 1, .folder_depth = 2};
  char arguments[4096];
  snprintf(arguments, sizeof arguments, "why . errors '%s'", file);

  SAME("pages", page_sources_pages(repository, NULL, NULL, &text)); /* refreshes by itself */
  SAME("pages --page errors,flows --entry-points '**'",
       page_sources_pages(repository, pages, globs, &text));
  SAME(arguments, page_sources_why(repository, "errors", file, &text));
  SAME("references", page_sources_references(repository, NULL, &text));
  SAME("references --role extends --role type --self",
       page_sources_references(repository, &references, &text));
  SAME("edges", page_sources_edges(repository, NULL, &text));
  SAME("edges --from '**' --by folder:2", page_sources_edges(repository, &edges, &text));
  SAME("symbols", page_sources_symbols(repository, NULL, NULL, &text));
  SAME("symbols --kind class --name '*e*'", page_sources_symbols(repository, kinds, "*e*", &text));
  SAME("index -q", page_sources_refresh(repository, &text));
  CHECK(page_sources_pages(repository, NULL, NULL, NULL) == PAGE_SOURCES_DONE, "no text wanted");
  page_sources_close(repository);
}

static void globs_choose_files(void) {
  const char* const all[] = {"**", NULL};
  const char* const one[] = {file, NULL};
  const page_sources_options options = {.size = sizeof options, .exclude = all, .include = one};
  page_sources_repository* repository = opened(&options);
  char arguments[4096];
  snprintf(arguments, sizeof arguments, "symbols --exclude '**' --include '%s'", file);
  SAME(arguments, page_sources_symbols(repository, NULL, NULL, &text));
  page_sources_close(repository);
}

static void faults_are_values(void) {
  page_sources_repository* repository = opened(NULL);
  page_sources_repository* other = repository;
  const char* const slip[] = {"erors", NULL};
  const char* const open_bracket[] = {"a[", NULL};
  page_sources_edge_query half = {.size = sizeof half, .way_from = file};
  page_sources_edge_query lost = {.size = sizeof lost, .way_from = "gone", .way_to = file};
  page_sources_edge_query bad = {.size = sizeof bad, .to = open_bracket};
  page_sources_reference_query roles = {.size = sizeof roles, .roles = slip};
  page_sources_options later = {.size = sizeof later + 8};
  const page_sources_status wrong = PAGE_SOURCES_WRONG_ARGUMENT;

  REFUSED(wrong, "did you mean errors?", page_sources_pages(repository, slip, NULL, &text));
  REFUSED(wrong, "a[", page_sources_pages(repository, NULL, open_bracket, &text));
  REFUSED(wrong, "none of extends", page_sources_references(repository, &roles, &text));
  REFUSED(wrong, "none of class", page_sources_symbols(repository, slip, NULL, &text));
  REFUSED(wrong, "a[", page_sources_symbols(repository, NULL, "a[", &text));
  REFUSED(wrong, "both of its ends", page_sources_edges(repository, &half, &text));
  REFUSED(wrong, "a[", page_sources_edges(repository, &bad, &text));
  REFUSED(wrong, "the page is NULL", page_sources_why(repository, NULL, file, &text));
  REFUSED(wrong, "the repository is NULL", page_sources_refresh(NULL, &text));
  REFUSED(wrong, "the path is NULL", page_sources_open(NULL, NULL, &other, &text));
  REFUSED(wrong, "size", page_sources_open(root, &later, &other, &text));
  REFUSED(PAGE_SOURCES_FAILED, "gone", page_sources_edges(repository, &lost, &text));
  REFUSED(PAGE_SOURCES_FAILED, "gone.py", page_sources_why(repository, "errors", "gone.py", &text));
  REFUSED(PAGE_SOURCES_FAILED, "/nowhere", page_sources_open("/nowhere", NULL, &other, &text));
  CHECK(other == NULL, "a repository that was not opened");
  page_sources_close(repository);
  page_sources_close(NULL);
  page_sources_free(NULL);
}

struct watch {
  page_sources_repository* repository;
  size_t last;
  size_t total;
  int end_by_callback;
  int end_by_call;
};

static void watched(void* data, size_t done, size_t total) {
  struct watch* watch = data;
  watch->last = done;
  watch->total = total;
  if (watch->end_by_call) page_sources_cancel(watch->repository);
}

static int wanted(void* data) {
  const struct watch* watch = data;
  return watch->end_by_callback && watch->last > 1;
}

static void work_is_told_and_can_be_ended(const char* index) {
  struct watch watch = {0};
  const page_sources_options options = {.size = sizeof options,
                                        .index_file = index,
                                        .progress = watched,
                                        .cancelled = wanted,
                                        .data = &watch};
  page_sources_repository* repository = opened(&options);
  watch.repository = repository;
  watch.end_by_callback = 1;
  REFUSED(PAGE_SOURCES_CANCELLED, "cancelled", page_sources_refresh(repository, &text));
  CHECK(watch.last == 2, "ended by the callback");
  watch.end_by_callback = 0;
  watch.end_by_call = 1;
  REFUSED(PAGE_SOURCES_CANCELLED, "cancelled", page_sources_pages(repository, NULL, NULL, &text));
  CHECK(watch.last == 1, "ended by the call");
  watch.end_by_call = 0;
  SAME("pages", page_sources_pages(repository, NULL, NULL, &text));
  CHECK(watch.last == watch.total && watch.total > 2, "all is told");
  page_sources_close(repository);
}

static void* asking(void* repository) {
  for (int round = 0; round < 5; ++round) {
    SAME("pages --page errors",
         page_sources_pages(repository, (const char* const[]){"errors", NULL}, NULL, &text));
    SAME("edges", page_sources_edges(repository, NULL, &text));
    CHECK(page_sources_refresh(repository, NULL) == PAGE_SOURCES_DONE, "refreshed");
  }
  return NULL;
}

static void threads_share_a_repository(void) {
  page_sources_repository* repository = opened(NULL);
  pthread_t threads[4];
  for (size_t at = 0; at < 4; ++at) {
    CHECK(pthread_create(&threads[at], NULL, asking, repository) == 0, "thread");
  }
  for (size_t at = 0; at < 4; ++at) pthread_join(threads[at], NULL);
  page_sources_close(repository);
}

int main(int count, char** arguments) {
  CHECK(count == 5, "arguments");
  program = arguments[1];
  root = arguments[2];
  file = arguments[4];
  CHECK(page_sources_abi() == PAGE_SOURCES_ABI, "abi");
  CHECK(strchr(page_sources_version(), '.') != NULL, "version");
  answers_are_those_of_the_program();
  globs_choose_files();
  faults_are_values();
  work_is_told_and_can_be_ended(arguments[3]);
  threads_share_a_repository();
  return 0;
}
