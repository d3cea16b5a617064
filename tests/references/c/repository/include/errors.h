#ifndef ERRORS_H
#define ERRORS_H

#define ERR_BASE 100

enum error_code { ERR_NONE, ERR_IO = ERR_BASE + 1, ERR_MISSING };

const char *error_text(enum error_code code);

#endif
