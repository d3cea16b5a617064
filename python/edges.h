#pragma once

// File edges that are Python objects of any kind: their fields are attributes, read when a rule
// asks, and the rule holds what it read.

#include "python/instance_values.h"
#include "python/namespace.h"
#include "python/object.h"

namespace kestrix::python {

/// Reads the fields of edges. Most edges of a call are of one type; where its instances keep their
/// fields in a place that can be told beforehand, they are taken from there.
class EdgeReader {
 public:
  EdgeReader() : source_{names().source}, target_{names().target}, weight_{names().weight} {}

  Object source(PyObject* edge) { return read(source_, edge); }
  Object target(PyObject* edge) { return read(target_, edge); }
  Object weight(PyObject* edge) { return read(weight_, edge); }

  /// Asks for the target of an edge that comes up soon. Texts lie all over the memory.
  void fetch_ahead(PyObject* edge) const {
    if (edge == nullptr || Py_TYPE(edge) != type_ || target_.place == Place::kAttribute) return;
    __builtin_prefetch(in_place(target_, edge));
  }

 private:
  enum class Place { kAttribute, kSlot, kItem, kValue };

  struct Field {
    const Object& name;
    Place place = Place::kAttribute;
    Py_ssize_t at = 0;  // offset of the slot, or index of the item or value
  };

  Object read(const Field& field, PyObject* edge) {
    PyTypeObject* const type = Py_TYPE(edge);
    if (type != type_ || type->tp_version_tag != version_) learn(type);
    if (field.place != Place::kAttribute) {
      PyObject* const value = in_place(field, edge);
      if (value != nullptr) return Object::borrow(value);
    }
    return Object::steal(get_attribute_(edge, field.name.ptr()));
  }

  static PyObject* in_place(const Field& field, PyObject* edge) {
    if (field.place == Place::kValue) return kestrix_value_at(edge, field.at);
    if (field.place == Place::kItem) {
      return field.at < PyTuple_GET_SIZE(edge) ? PyTuple_GET_ITEM(edge, field.at) : nullptr;
    }
    return *reinterpret_cast<PyObject**>(reinterpret_cast<char*>(edge) + field.at);
  }

  void learn(PyTypeObject* type);
  static void place(Field& field, PyTypeObject* type);

  // The type that was learnt, in the version that its attributes had then.
  PyTypeObject* type_ = nullptr;
  getattrofunc get_attribute_ = nullptr;
  unsigned int version_ = 0;
  Field source_;
  Field target_;
  Field weight_;
};

/// One edge of a range; valid until the range moves on.
struct Edge {
  PyObject* edge;
  EdgeReader* reader;
};

inline Object source_of(const Edge& edge) { return edge.reader->source(edge.edge); }
inline Object target_of(const Edge& edge) { return edge.reader->target(edge.edge); }
inline Object weight_of(const Edge& edge) { return edge.reader->weight(edge.edge); }

/// The edges of an iterable. Nothing of it is touched before `begin`.
class Edges {
 public:
  class Iterator {
   public:
    using iterator_concept = std::input_iterator_tag;
    using value_type = Edge;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    Iterator(PyObject* edges, EdgeReader* reader)
        : items_(edges),
          reader_(reader),
          is_long_(PyList_CheckExact(edges) && PyList_GET_SIZE(edges) > kMostInCache) {}

    Edge operator*() const { return {(*items_).ptr(), reader_}; }
    Iterator& operator++() {
      if (++count_ % kEdgesBetweenSignals == 0) checked(PyErr_CheckSignals());
      ++items_;
      if (is_long_) reader_->fetch_ahead(items_.later(kAhead));
      return *this;
    }
    void operator++(int) { ++*this; }
    friend bool operator==(const Iterator& iterator, std::default_sentinel_t end) {
      return iterator.items_ == end;
    }

   private:
    static constexpr Py_ssize_t kAhead = 4;  // half of what the list itself is read ahead
    static constexpr Py_ssize_t kMostInCache = 10'000;
    static constexpr std::size_t kEdgesBetweenSignals = 1U << 16U;

    ItemIterator items_;
    EdgeReader* reader_ = nullptr;
    bool is_long_ = false;
    std::size_t count_ = 0;
  };

  explicit Edges(const Object& edges) : edges_(edges) {}

  Iterator begin();
  static std::default_sentinel_t end() { return {}; }

 private:
  const Object& edges_;
  EdgeReader reader_;
};

}  // namespace kestrix::python
