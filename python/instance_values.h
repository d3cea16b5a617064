#pragma once

/* Where instances of ordinary classes keep their attributes, for the one Python whose layout is
 * known here (CPython 3.11). Reading an attribute from there is what that interpreter does itself
 * once it has specialised an instruction; its C API has nothing like it, and without it native code
 * would read attributes several times slower than Python code. */

#include <Python.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The index at which instances of `type` keep the attribute `name`, an interned string; -1 when
 * they do not, or this Python's layout is unknown. Valid as long as the type's version. */
Py_ssize_t kestrix_value_index(PyTypeObject* type, PyObject* name);

/* The value at such an index of an instance of that type, borrowed; null when it is not there,
 * which does not mean that the instance lacks the attribute. */
PyObject* kestrix_value_at(PyObject* instance, Py_ssize_t index);

#ifdef __cplusplus
}
#endif
