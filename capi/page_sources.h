/* page_sources for programs of any language: which files of a repository each page of a code wiki
 * is written from, and why; who names whom; which file depends on which.
 *
 * Answers are JSON texts of the schemas in share/page-sources/schemas, the same bytes that the
 * program page-sources prints with --format json. Texts are UTF-8; paths are bytes, and in JSON a
 * byte that is no UTF-8 stands as a lone surrogate, which docs/output.md describes.
 *
 * Every function that can fail returns a status. It sets `*text`, when `text` is not NULL, to the
 * answer, or to one line that says what failed and names the path or argument; either belongs to
 * the caller, who frees it with `page_sources_free`. Only when memory runs out is `*text` NULL.
 *
 * All functions but `page_sources_close` may be called on one repository from several threads at a
 * time. Lists of strings end in NULL; instead of an empty list NULL may stand. Nothing is kept of
 * what a caller hands over but the callbacks and their data. */

#ifndef PAGE_SOURCES_H
#define PAGE_SOURCES_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define PAGE_SOURCES_EXPORT __attribute__((visibility("default")))

/* Raised when callers of the old form would not work with the new one; part of the library's
 * name. */
#define PAGE_SOURCES_ABI 1

typedef enum page_sources_status {
  PAGE_SOURCES_DONE = 0,
  PAGE_SOURCES_FAILED = 1,         /* the repository or the index cannot be read or written */
  PAGE_SOURCES_WRONG_ARGUMENT = 2, /* an unknown name, a malformed pattern, NULL for a path */
  PAGE_SOURCES_CANCELLED = 3,      /* the index is as it was */
  PAGE_SOURCES_OUT_OF_MEMORY = 4
} page_sources_status;

typedef struct page_sources_repository page_sources_repository;

/* `size` is sizeof the structure as the caller knows it: members that it lacks count as 0. This
 * holds for the other structures, too. */
typedef struct page_sources_options {
  size_t size;
  const char* index_file;     /* NULL: one in the user's cache directory */
  unsigned threads;           /* 0: as many as the machine has */
  const char* const* exclude; /* globs of paths to leave out, */
  const char* const* include; /* and of those to take in again all the same */
  /* Called for each file that is read. The callbacks run on the thread of the function that works,
   * and must neither throw nor jump out. */
  void (*progress)(void* data, size_t done, size_t total);
  /* Asked now and then; anything but 0 ends the work. */
  int (*cancelled)(void* data);
  void* data;
} page_sources_options;

typedef struct page_sources_reference_query {
  size_t size;
  const char* const* to;    /* globs of paths or names of what is named; none: anything */
  const char* const* from;  /* globs of files that name it; none: any */
  const char* const* roles; /* "extends", "calls", ...; none: every role */
  int self;                 /* also references within one file */
} page_sources_reference_query;

typedef struct page_sources_edge_query {
  size_t size;
  const char* const* to;     /* globs of targets; none: all */
  const char* const* from;   /* globs of sources */
  const char* const* within; /* globs of both ends */
  const char* way_from;      /* two files: only the edges of a shortest way between them */
  const char* way_to;
  int by_folder;         /* sums between folders instead of files, */
  unsigned folder_depth; /* of so many levels; 0: of all */
} page_sources_edge_query;

/* Version of the library, "0.1.0", and its PAGE_SOURCES_ABI. */
PAGE_SOURCES_EXPORT const char* page_sources_version(void);
PAGE_SOURCES_EXPORT int page_sources_abi(void);

/* Opens a repository: any directory. Reads its settings file and nothing else yet. Without
 * `options` all are at their defaults. `*repository` is NULL unless this is done; `*text` is NULL
 * when it is. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_open(const char* path,
                                                          const page_sources_options* options,
                                                          page_sources_repository** repository,
                                                          char** text);

/* Closes it and gives back its memory, once no other function works on it. NULL is passed over. */
PAGE_SOURCES_EXPORT void page_sources_close(page_sources_repository* repository);

/* Brings the index up to date with the files; the answer has its figures (schema "index"). The
 * functions below answer for the state that the last refresh found, and begin with one when there
 * was none. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_refresh(page_sources_repository* repository,
                                                             char** text);

/* The files of these pages, of all of them without any. `entry_points` are globs, each of which
 * makes one class of the page "flows"; without any the classes are those that the structure
 * shows. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_pages(page_sources_repository* repository,
                                                           const char* const* pages,
                                                           const char* const* entry_points,
                                                           char** text);

/* Why a file, relative to the repository or an absolute path below it, is on a page, or why not. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_why(page_sources_repository* repository,
                                                         const char* page, const char* file,
                                                         char** text);

/* Who names what, and in which role. Without `query`, all references between files. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_references(
    page_sources_repository* repository, const page_sources_reference_query* query, char** text);

/* Which file depends on which, and how strongly. Without `query`, all edges. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_edges(page_sources_repository* repository,
                                                           const page_sources_edge_query* query,
                                                           char** text);

/* The symbols of these kinds ("class", "interface", "constant", "variable"; none: every kind) whose
 * name matches a glob in any case; NULL: any name. */
PAGE_SOURCES_EXPORT page_sources_status page_sources_symbols(page_sources_repository* repository,
                                                             const char* const* kinds,
                                                             const char* name, char** text);

/* Asks all that works on the repository at this moment to end; returns at once. */
PAGE_SOURCES_EXPORT void page_sources_cancel(page_sources_repository* repository);

/* Frees a text. NULL is passed over. */
PAGE_SOURCES_EXPORT void page_sources_free(char* text);

#ifdef __cplusplus
}
#endif

#endif
