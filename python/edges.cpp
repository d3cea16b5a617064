#include "python/edges.h"

#include <structmember.h>

#include <optional>

namespace kestrix::python {
namespace {

// What the classes of `type` define under a name, unbound; null when they define nothing. Borrowed.
PyObject* class_attribute(PyTypeObject* type, PyObject* name) {
  for (const auto& base : Object::borrow(type->tp_mro)) {
    PyObject* const attributes = reinterpret_cast<PyTypeObject*>(base.ptr())->tp_dict;
    if (attributes == nullptr) continue;  // of a type that is built into a newer Python
    PyObject* const found = PyDict_GetItemWithError(attributes, name);
    if (found != nullptr) return found;
    if (PyErr_Occurred() != nullptr) throw_pending();
  }
  return nullptr;
}

// The offset of what a slot's descriptor describes, if its objects are laid out like those of
// `type`.
std::optional<Py_ssize_t> slot_offset(PyObject* descriptor, PyTypeObject* type) {
  if (Py_TYPE(descriptor) != &PyMemberDescr_Type) return std::nullopt;
  const auto* const slot = reinterpret_cast<PyMemberDescrObject*>(descriptor);
  if (slot->d_member->type != T_OBJECT_EX) return std::nullopt;
  if (PyType_IsSubtype(type, slot->d_common.d_type) == 0) return std::nullopt;
  return slot->d_member->offset;
}

// The index of a named tuple's field: its descriptor reduces to (type, (index, documentation)).
std::optional<Py_ssize_t> field_index(PyObject* descriptor, PyTypeObject* type) {
  const auto& field_type = Namespace::current().tuple_field_type();
  if (field_type.ptr() != reinterpret_cast<PyObject*>(Py_TYPE(descriptor)) ||
      PyType_HasFeature(type, Py_TPFLAGS_TUPLE_SUBCLASS) == 0) {
    return std::nullopt;
  }
  const auto reduced = Object::steal(PyObject_CallMethod(descriptor, "__reduce__", nullptr));
  PyObject* unused = nullptr;
  PyObject* documentation = nullptr;
  Py_ssize_t index = 0;
  if (PyArg_ParseTuple(reduced.ptr(), "O(nO)", &unused, &index, &documentation) == 0) {
    PyErr_Clear();
    return std::nullopt;
  }
  return index;
}

std::optional<Py_ssize_t> value_index(PyTypeObject* type, PyObject* name) {
  const Py_ssize_t index = kestrix_value_index(type, name);
  return index < 0 ? std::nullopt : std::optional(index);
}

}  // namespace

void EdgeReader::learn(PyTypeObject* type) {
  type_ = type;
  get_attribute_ = type->tp_getattro != nullptr ? type->tp_getattro : PyObject_GetAttr;
  version_ = type->tp_version_tag;
  for (Field* field : {&source_, &target_, &weight_}) {
    field->place = Place::kAttribute;
    // Without a version, which the first look-up gives a type, changes would go unseen.
    if (version_ != 0 && type->tp_getattro == PyObject_GenericGetAttr) place(*field, type);
  }
}

void EdgeReader::place(Field& field, PyTypeObject* type) {
  PyObject* const descriptor = class_attribute(type, field.name.ptr());
  const bool instance_first = descriptor == nullptr || Py_TYPE(descriptor)->tp_descr_set == nullptr;
  const auto learn_place = [&](Place place, std::optional<Py_ssize_t> at) {
    if (!at) return;
    field.place = place;
    field.at = *at;
  };
  if (instance_first) {
    learn_place(Place::kValue, value_index(type, field.name.ptr()));
  } else {
    learn_place(Place::kSlot, slot_offset(descriptor, type));
    learn_place(Place::kItem, field_index(descriptor, type));
  }
}

Edges::Iterator Edges::begin() {
  require_iterable(edges_.ptr(), "edges must be an iterable of FileEdge");
  return {edges_.ptr(), &reader_};
}

}  // namespace kestrix::python
