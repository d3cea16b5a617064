#pragma once

// The Python containers that a host is given or gives.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "kestrix/workers/wiki/page_sources/rules.h"
#include "python/names.h"
#include "python/object.h"

namespace kestrix::python {

/// A `set` of our own making.
class Set : public Object {
 public:
  Set() : Object(steal(PySet_New(nullptr))) {}

  void insert(const Object& item) { checked(PySet_Add(ptr(), item.ptr())); }
};

inline void insert_all(Set& set, const Object& items) {
  for (const auto& item : items) set.insert(item);
}

/// The items of an iterable that must have exactly as many, as an assignment to names takes them.
void unpack(const Object& iterable, std::span<Object> names);

template <std::size_t N>
std::array<Object, N> unpacked(const Object& iterable) {
  std::array<Object, N> names;
  unpack(iterable, names);
  return names;
}

/// A `list` of our own making, or what a host gave for one.
class List : public Object {
 public:
  List() : Object(steal(PyList_New(0))) {}
  explicit List(Object list) : Object(std::move(list)) {}
  explicit List(const std::vector<Object>& items) : List() {
    for (const auto& item : items) append(item);
  }

  void append(const Object& item) { checked(PyList_Append(ptr(), item.ptr())); }
};

/// The items in a new list, sorted.
List ascending(const Set& set);

/// Adds the items to the list. What comes back stands for them: they are read again from where they
/// came from, since a host may change the list that it was given.
inline Object append(List& list, const Object& items) {
  for (const auto& item : items) list.append(item);
  return items;
}

inline const Object& slice(const List&, const Object& items) { return items; }

/// Any mapping.
class Mapping : public Object {
 public:
  explicit Mapping(Object mapping) : Object(std::move(mapping)) {}

  /// `mapping.get(key)`, or `fallback` where there is no such key.
  Object get(const Object& key, const Object& fallback) const {
    return call_method(*this, "get", key, fallback);
  }
  Object items() const { return call_method(*this, "items"); }
};

/// A `dict` of our own making.
class Dict : public Mapping {
 public:
  Dict() : Mapping(steal(PyDict_New())) {}

  void insert_or_assign(const Object& key, const Object& value) {
    checked(PyDict_SetItem(ptr(), key.ptr(), value.ptr()));
  }
  /// Adds to the number at `key`, which is 0 at first.
  void add(const Object& key, std::size_t amount);
};

/// A dict of the entries whose key `keep` accepts, in their order.
template <class Keep>
Mapping filtered(const Mapping& mapping, Keep keep) {
  Dict kept;
  for (const auto& item : mapping.items()) {
    const auto [key, value] = unpacked<2>(item);
    if (keep(key)) kept.insert_or_assign(key, value);
  }
  return kept;
}

inline bool holds(const Mapping& mapping, const Object& key) { return mapping.contains(key); }

/// What `dependents_of` makes of Python's objects: a dict of `collections.Counter`.
class Dependents : public Dict {
 public:
  void add(const Object& target, const Object& source, const Object& weight);
};

inline void add_dependent(Dependents& dependents, const Object& target, const Object& source,
                          const Object& weight) {
  dependents.add(target, source, weight);
}

bool is_used(const Mapping& dependents, const Object& path);
std::optional<Object> strongest_dependent(const Mapping& dependents, const Object& path);

}  // namespace kestrix::python

template <>
struct kestrix::DependentsType<kestrix::python::Object, kestrix::python::Object> {
  using type = python::Dependents;
};
