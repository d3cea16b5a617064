#ifndef STORE_H
#define STORE_H

#include "errors.h"

struct store;
typedef struct item_s {
  int id;
  struct item_s *next;
} item;
typedef int (*visit_fn)(item *it, void *arg);

struct store_ops {
  const char *name;
  int (*open)(struct store *s, const char *path);
  int (*each)(struct store *s, visit_fn visit);
};

typedef struct store {
  const struct store_ops *ops;
  item *first;
  int count;
} store_t;

extern const struct store_ops file_ops;
extern store_t main_store;

store_t *store_open(const char *path);
static inline int store_count(const store_t *s) { return s->count; }

#define STORE_EACH(s, fn) ((s)->ops->each((s), (fn)))

#endif
