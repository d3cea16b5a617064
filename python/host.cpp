#include "python/host.h"

#include "python/failure.h"

namespace kestrix::python {

bool operator>(const Object& total, int number) {
  const auto right = Object::steal(PyLong_FromLong(number));
  return Object::steal(PyObject_RichCompare(total.ptr(), right.ptr(), Py_GT)).is_true();
}

SymbolsFound RepositoryHandle::search_symbols(const Object& query,
                                              SymbolSearchOptions options) const {
  const bool as_it_is = query.is_str() || PyList_Check(query.ptr()) != 0;
  auto found = unpacked<3>(
      call_with(attribute("search_symbols"), as_it_is ? query : steal(PySequence_List(query.ptr())),
                {{"kind", Object(to_string(options.kind))}, {"limit", number(options.limit)}}));
  return {std::move(found[0]), std::move(found[1])};
}

Object RepositoryHandle::get_file_paths_batch(const Object& symbols) const {
  return call_method(*this, "get_file_paths_batch", symbols);
}

Object RepositoryHandle::get_all_components(ComponentOptions options) const {
  return call_with(attribute("get_all_components"), {},
                   {{"source_only", borrow(options.source_only ? Py_True : Py_False)}});
}

void warn(const Host& /*host*/, std::string_view message, const std::exception& error) {
  const HandledException handled(error);
  call_with(global("logger").attribute("warning"), Object(message),
            {{"exc_info", Object::borrow(Py_True)}});
}

Object _norm(const Object& path) { return call(global("_norm"), path); }

Object _read_text(const Object& path, ReadTextOptions options) {
  return call_with(global("_read_text"), path, {{"max_chars", Object::number(options.max_chars)}});
}

bool is_test_path(const Object& path) { return call(global("is_test_path"), path).is_true(); }

Object stem(const Object& path) { return call(global("stem"), path); }

std::optional<Object> root_of_pattern(const Object& path_pattern) {
  auto root = call(global("root_of_pattern"), path_pattern);
  return root.is_none() ? std::nullopt : std::optional(std::move(root));
}

std::optional<Object> most_specific(const Dict& roots, const Object& path) {
  auto root = call(global("most_specific"), roots, path);
  return root.is_none() ? std::nullopt : std::optional(std::move(root));
}

std::array<Object, 3> cluster_inputs(const Object& repository, const Object& paths) {
  return unpacked<3>(call(global("cluster_inputs"), repository, paths));
}

Object data_model_files(const Dict& texts) { return call(global("data_model_files"), texts); }

Object decision_docs(const std::vector<Object>& documents, std::size_t max_files) {
  return call_with(global("decision_docs"), List(documents),
                   {{"max_files", Object::number(max_files)}});
}

std::vector<Object> extension_files(const Mapping& contracts, const Mapping& registries,
                                    std::size_t limit) {
  std::vector<Object> ranked;
  for (const auto& file :
       call(global("extension_files"), contracts, registries, Object::number(limit))) {
    ranked.push_back(file);
  }
  return ranked;
}

bool search(const InterfaceSignaturePattern& /*pattern*/, const Object& signature) {
  return call_method(global("_INTERFACE_SIGNATURE_RE"), "search", signature).is_true();
}

Object current_first(const Object& docs) { return call(global("current_first"), docs); }

Object dispatch_files(const Object& roots, const Object& edges) {
  return call(global("dispatch_files"), roots, edges);
}

Object dependents_of(const Object& edges) { return call(global("dependents_of"), edges); }

List extension_sources(const Mapping& interfaces, const Mapping& registries,
                       const Object& dependents) {
  return List(call(global("extension_sources"), interfaces, registries, dependents));
}

Object example_sources(const List& tests, const Object& edges) {
  return call(global("example_sources"), tests, edges);
}

Object path_or_empty(const Object& source_file) {
  return Mapping(source_file).get(name("path"), name(""));
}

Object required_path(const Object& document) {
  return Object::steal(PyObject_GetItem(document.ptr(), name("path").ptr()));
}

bool has_id(const Object& symbol) { return symbol.attribute("id").is_true(); }

Object name_of(const Object& symbol) { return symbol.attribute("name"); }

Object signature_of(const Object& symbol) {
  PyObject* const found = PyObject_GetAttr(symbol.ptr(), name("signature").ptr());
  if (found == nullptr && PyErr_ExceptionMatches(PyExc_AttributeError)) {
    PyErr_Clear();
    return name("");
  }
  auto signature = Object::steal(found);
  return signature.is_true() ? signature : name("");
}

Object file_of(const Object& paths, const Object& symbol) {
  auto file = Mapping(paths).get(symbol.attribute("id"), name(""));
  return file.is_true() ? file : name("");
}

bool is_layer(const Object& component, const Object& layer) {
  return Object::steal(PyObject_RichCompare(component.attribute("layer").ptr(), layer.ptr(), Py_EQ))
      .is_true();
}

Object pattern_of(const Object& component) { return component.attribute("path_pattern"); }

Object joined(const Object& root, const Object& path) {
  return Object::steal(PyNumber_TrueDivide(root.ptr(), path.ptr()));
}

bool is_registry_name(const Object& name) {
  return call_method(global("_REGISTRY_RE"), "search", name).is_true();
}

}  // namespace kestrix::python
