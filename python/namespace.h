#pragma once

// The namespace of the loaded module, in which the host's names are looked up at every use.

#include "python/object.h"

namespace kestrix::python {

inline Object interned(const char* text) { return Object::steal(PyUnicode_InternFromString(text)); }

/// The names that the module looks up, of its own namespace and of the host's objects.
struct Names {
  // The host's, in the module's namespace.
  Object norm = interned("_norm");
  Object read_text = interned("_read_text");
  Object is_test_path = interned("is_test_path");
  Object root_of_pattern = interned("root_of_pattern");
  Object most_specific = interned("most_specific");
  Object cluster_inputs = interned("cluster_inputs");
  Object data_model_files = interned("data_model_files");
  Object decision_docs = interned("decision_docs");
  Object extension_files = interned("extension_files");
  Object stem = interned("stem");
  Object interface_signature_re = interned("_INTERFACE_SIGNATURE_RE");
  Object max_aspect_files = interned("MAX_ASPECT_FILES");
  // The module's own.
  Object logger = interned("logger");
  Object registry_re = interned("_REGISTRY_RE");
  // Members of the generator.
  Object planner_paths = interned("_planner_paths");
  Object indexed_documents = interned("_indexed_documents");
  Object source_files = interned("_source_files");
  Object file_edges = interned("_file_edges");
  Object test_files = interned("_test_files");
  Object repository = interned("repository");
  Object repo_root = interned("repo_root");
  // Operations of the index.
  Object search_symbols = interned("search_symbols");
  Object get_file_paths_batch = interned("get_file_paths_batch");
  Object get_all_components = interned("get_all_components");
  // Fields of records, methods of Python's own objects, keywords.
  Object source = interned("source");
  Object target = interned("target");
  Object weight = interned("weight");
  Object id = interned("id");
  Object name = interned("name");
  Object signature = interned("signature");
  Object layer = interned("layer");
  Object path_pattern = interned("path_pattern");
  Object path = interned("path");
  Object get = interned("get");
  Object items = interned("items");
  Object most_common = interned("most_common");
  Object search = interned("search");
  Object warning = interned("warning");
  Object empty = interned("");
};

/// One loaded module. Every interpreter that imports it has its own.
class Namespace {
 public:
  /// `globals` is the module's dictionary, which outlives this.
  explicit Namespace(PyObject* globals);

  /// That of the module whose code is running; only within an `Entered`.
  static const Namespace& current();

  /// What a name of the module stands for now. Raises NameError when it stands for nothing.
  Object global(const Object& name) const;

  PyObject* globals() const { return globals_; }
  const Names& names() const { return names_; }
  const Object& counter_type() const { return counter_type_; }
  /// The type of the descriptors that give a named tuple its fields; null where Python has none.
  const Object& tuple_field_type() const { return tuple_field_type_; }

 private:
  PyObject* globals_;
  Names names_;
  Object counter_type_;
  Object tuple_field_type_;
};

inline const Names& names() { return Namespace::current().names(); }

/// For as long as it lives, `module` is the one whose code is running on this thread.
class Entered {
 public:
  explicit Entered(const Namespace& module);
  Entered(const Entered&) = delete;
  Entered& operator=(const Entered&) = delete;
  ~Entered();

 private:
  const Namespace* outer_;
};

}  // namespace kestrix::python
