#include "store.h"

store_t main_store;

static int probe(int open);

store_t *store_open(const char *path) {
  main_store.ops = &file_ops;
  if (probe(path != 0) == ERR_IO) return 0;
  return &main_store;
}

static int probe(int open) { return open ? ERR_NONE : ERR_IO; }

const char *error_text(enum error_code code) {
  switch (code) {
    case ERR_NONE:
      return "none";
    case ERR_MISSING:
      return "missing";
    default:
      return 0;
  }
}
