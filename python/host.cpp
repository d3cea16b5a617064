#include "python/host.h"

#include "python/pending.h"

namespace kestrix::python {
namespace {

Object global(const Object& name) { return Namespace::current().global(name); }

Object keywords(std::initializer_list<const char*> words) {
  auto tuple = Object::steal(PyTuple_New(static_cast<Py_ssize_t>(words.size())));
  Py_ssize_t at = 0;
  for (const char* word : words) PyTuple_SET_ITEM(tuple.ptr(), at++, interned(word).release());
  return tuple;
}

}  // namespace

bool operator>(const Object& total, int number) {
  const auto right = Object::steal(PyLong_FromLong(number));
  return Object::steal(PyObject_RichCompare(total.ptr(), right.ptr(), Py_GT)).is_true();
}

SymbolsFound RepositoryHandle::search(const Object& query, SymbolSearchOptions options) const {
  const Object kind(to_string(options.kind));
  const auto limit = Object::number(options.limit);
  PyObject* const arguments[] = {ptr(), query.ptr(), kind.ptr(), limit.ptr()};
  auto found = unpacked<3>(steal(PyObject_VectorcallMethod(names().search_symbols.ptr(), arguments,
                                                           2, keywords({"kind", "limit"}).ptr())));
  return {std::move(found[0]), std::move(found[1])};
}

SymbolsFound RepositoryHandle::search_symbols(std::string_view pattern,
                                              SymbolSearchOptions options) const {
  return search(Object(pattern), options);
}

SymbolsFound RepositoryHandle::search_symbols(std::span<const std::string_view> patterns,
                                              SymbolSearchOptions options) const {
  List query;
  for (const auto pattern : patterns) query.append(Object(pattern));
  return search(query, options);
}

Object RepositoryHandle::get_file_paths_batch(const Object& symbols) const {
  return call_method(*this, names().get_file_paths_batch, symbols);
}

Object RepositoryHandle::get_all_components(ComponentOptions options) const {
  PyObject* const arguments[] = {ptr(), options.source_only ? Py_True : Py_False};
  return steal(PyObject_VectorcallMethod(names().get_all_components.ptr(), arguments, 1,
                                         keywords({"source_only"}).ptr()));
}

RepositoryHandle Host::repository() const {
  return RepositoryHandle(self_.attribute(names().repository));
}

void warn(const Host& /*host*/, std::string_view message, const std::exception& error) {
  const HandledException handled(error, Namespace::current().globals(), "_extension_files");
  const auto warning = global(names().logger).attribute(names().warning);
  const Object text(message);
  PyObject* const arguments[] = {text.ptr(), Py_True};
  Object::steal(PyObject_Vectorcall(warning.ptr(), arguments, 1, keywords({"exc_info"}).ptr()));
}

Object _norm(const Object& path) { return call(global(names().norm), path); }

Object _read_text(const Object& path, ReadTextOptions options) {
  const auto limit = Object::number(options.max_chars);
  PyObject* const arguments[] = {path.ptr(), limit.ptr()};
  return Object::steal(PyObject_Vectorcall(global(names().read_text).ptr(), arguments, 1,
                                           keywords({"max_chars"}).ptr()));
}

bool is_test_path(const Object& path) { return call(global(names().is_test_path), path).is_true(); }

Object stem(const Object& path) { return call(global(names().stem), path); }

std::optional<Object> root_of_pattern(const Object& path_pattern) {
  auto root = call(global(names().root_of_pattern), path_pattern);
  return root.is_none() ? std::nullopt : std::optional(std::move(root));
}

std::optional<Object> most_specific(const Dict& roots, const Object& path) {
  auto root = call(global(names().most_specific), roots, path);
  return root.is_none() ? std::nullopt : std::optional(std::move(root));
}

std::array<Object, 3> cluster_inputs(const Object& repository, const Object& paths) {
  return unpacked<3>(call(global(names().cluster_inputs), repository, paths));
}

Object data_model_files(const Dict& texts) { return call(global(names().data_model_files), texts); }

Object decision_docs(const std::vector<Object>& documents, std::size_t max_files) {
  const List list(documents);
  const auto limit = Object::number(max_files);
  PyObject* const arguments[] = {list.ptr(), limit.ptr()};
  return Object::steal(PyObject_Vectorcall(global(names().decision_docs).ptr(), arguments, 1,
                                           keywords({"max_files"}).ptr()));
}

std::vector<Object> extension_files(const Mapping& contracts, const Mapping& registries,
                                    std::size_t limit) {
  const auto files =
      call(global(names().extension_files), contracts, registries, Object::number(limit));
  std::vector<Object> ranked;
  for (const auto& file : files) ranked.push_back(file);
  return ranked;
}

bool search(const InterfaceSignaturePattern& /*pattern*/, const Object& signature) {
  return call_method(global(names().interface_signature_re), names().search, signature).is_true();
}

Object path_or_empty(const Object& source_file) {
  return Mapping(source_file).get(names().path, names().empty);
}

Object required_path(const Object& document) {
  return Object::steal(PyObject_GetItem(document.ptr(), names().path.ptr()));
}

bool has_id(const Object& symbol) { return symbol.attribute(names().id).is_true(); }

Object name_of(const Object& symbol) { return symbol.attribute(names().name); }

Object signature_of(const Object& symbol) {
  PyObject* const found = PyObject_GetAttr(symbol.ptr(), names().signature.ptr());
  if (found == nullptr && PyErr_ExceptionMatches(PyExc_AttributeError)) {
    PyErr_Clear();
    return names().empty;
  }
  auto signature = Object::steal(found);
  return signature.is_true() ? signature : names().empty;
}

Object file_of(const Object& paths, const Object& symbol) {
  auto file = Mapping(paths).get(symbol.attribute(names().id), names().empty);
  return file.is_true() ? file : names().empty;
}

bool is_layer(const Object& component, std::string_view layer) {
  return component.attribute(names().layer) == Object(layer);
}

Object pattern_of(const Object& component) { return component.attribute(names().path_pattern); }

Object joined(const Object& root, const Object& path) {
  return Object::steal(PyNumber_TrueDivide(root.ptr(), path.ptr()));
}

bool is_registry_name(const Object& name) {
  return call_method(global(names().registry_re), names().search, name).is_true();
}

}  // namespace kestrix::python
