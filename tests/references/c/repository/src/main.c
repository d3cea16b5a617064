#include <stdlib.h>

#include "store.h"

struct command {
  const char *name;
  int (*run)(int count);
};

static int list(int count) { return count; }
static int show(item *it, void *arg) { return it->id + *(int *)arg; }

static const struct command commands[] = {
    {"list", list},
    {"count", store_count},
};

int main(int argc, char **argv) {
  store_t *s = store_open(getenv("STORE_PATH"));
  int main_store = argc;
  item one = {main_store, 0}, *two = &(item){2, &one};
  if (s == 0) exit(ERR_IO);
  STORE_EACH(s, show);
  s->ops->open(s, error_text(ERR_IO));
  atexit((void (*)(void))show);
  return commands[0].run(two->id);
}
