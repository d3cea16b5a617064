/* Included before the first line of every external scanner: its memory comes from the parser
 * library's allocator, so that it is counted and dropped with that of the parse. Some ask the
 * general allocator whatever the library is set to, and that of Swift asks it for too little. */
#ifndef KESTRIX_GRAMMARS_SCANNER_MEMORY_H
#define KESTRIX_GRAMMARS_SCANNER_MEMORY_H

#include <stddef.h>
#include <stdlib.h>

#define TREE_SITTER_REUSE_ALLOCATOR

extern void* (*ts_current_malloc)(size_t size);
extern void* (*ts_current_calloc)(size_t count, size_t size);
extern void* (*ts_current_realloc)(void* block, size_t size);
extern void (*ts_current_free)(void* block);

#define malloc ts_current_malloc
#define calloc ts_current_calloc
#define realloc ts_current_realloc
#define free ts_current_free

#endif
