#include <patchlevel.h>

#if PY_VERSION_HEX >= 0x030B0000 && PY_VERSION_HEX < 0x030C0000 && defined(__has_include)
#if __has_include(<internal/pycore_dict.h>) && __has_include(<internal/pycore_object.h>)
#define KESTRIX_LAYOUT_KNOWN
#define Py_BUILD_CORE_MODULE /* before Python.h, which the internal headers extend */
#endif
#endif

#include "python/instance_values.h"

#ifdef KESTRIX_LAYOUT_KNOWN

#include <internal/pycore_dict.h>
#include <internal/pycore_object.h>

Py_ssize_t kestrix_value_index(PyTypeObject *type, PyObject *name) {
  if (!PyType_HasFeature(type, Py_TPFLAGS_MANAGED_DICT)) return -1;
  PyDictKeysObject *keys = ((PyHeapTypeObject *)type)->ht_cached_keys;
  if (keys == NULL || keys->dk_kind != DICT_KEYS_SPLIT) return -1;
  for (Py_ssize_t i = 0; i < keys->dk_nentries; ++i) {
    if (DK_UNICODE_ENTRIES(keys)[i].me_key == name) return i;
  }
  return -1;
}

PyObject *kestrix_value_at(PyObject *instance, Py_ssize_t index) {
  PyDictValues *values = *_PyObject_ValuesPointer(instance);
  return values == NULL ? NULL : values->values[index];
}

#else

Py_ssize_t kestrix_value_index(PyTypeObject *type, PyObject *name) {
  (void)type;
  (void)name;
  return -1;
}

PyObject *kestrix_value_at(PyObject *instance, Py_ssize_t index) {
  (void)instance;
  (void)index;
  return NULL;
}

#endif
