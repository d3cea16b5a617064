// The extension module kestrix.workers.wiki.page_sources.

#include <memory>
#include <new>
#include <vector>

#include "kestrix/workers/wiki/page_sources/constants.h"
#include "python/functions.h"
#include "python/namespace.h"
#include "python/native_function.h"
#include "python/pending.h"

namespace kestrix::python {
namespace {

// The part of the module that is best said in Python: what it takes from the service's modules, and
// the class. `_methods` holds the native methods by name, `_REGISTRY_RE` the text of the pattern.
constexpr const char* kSource = R"(
import logging
import re
from collections.abc import Callable
from typing import Any

from kestrix.utils.best_effort import best_effort
from kestrix.utils.path_filter import is_test_path
from kestrix.workers.project_units import most_specific, root_of_pattern
from kestrix.workers.report_generator import cluster_inputs
from kestrix.workers.wiki.repo_facts import RepoFactsMixin, _norm, _read_text
from kestrix.workers.wiki_cluster import (
    MAX_ASPECT_FILES,
    FileEdge,
    data_model_files,
    decision_docs,
    extension_files,
)
from kestrix.workers.wiki_split import stem
from kestrix.workers.wiki_types import _INTERFACE_SIGNATURE_RE

logger = logging.getLogger("kestrix.workers.wiki.page_sources")
_REGISTRY_RE = re.compile(_REGISTRY_RE, re.IGNORECASE)


class PageSourcesMixin(RepoFactsMixin):
    """For one aspect page each, the files that the page is about."""

    _planner_paths: Callable[[], list[str]]
    _indexed_documents: Callable[[], list[dict[str, Any]]]

    _file_edges = _methods["_file_edges"]
    _config_files = _methods["_config_files"]
    _has_exceptions = best_effort("wiki.exception_classes", default=False)(
        _methods["_has_exceptions"]
    )
    _exception_files = best_effort("wiki.exception_files", default=[])(
        _methods["_exception_files"]
    )
    _data_model_files = _methods["_data_model_files"]
    _decision_files = _methods["_decision_files"]
    _extension_files = _methods["_extension_files"]
    _test_files = _methods["_test_files"]
    _example_files = _methods["_example_files"]
    _flow_dispatch = _methods["_flow_dispatch"]
)";

class Loader {
 public:
  Loader(PyObject* module, const Namespace& names)
      : module_(module), names_(names), function_type_(native_function_type(module)) {}

  void load() const {
    add_constants();
    for (const auto& rule : rule_functions()) add(rule.name, native(rule));
    add("_methods", methods());
    run_source();
    checked(PyDict_DelItemString(names_.globals(), "_methods"));
  }

 private:
  void add(const char* name, const Object& value) const {
    checked(PyDict_SetItemString(names_.globals(), name, value.ptr()));
  }

  Object native(const Function& function) const {
    return native_function(function_type_, function, names_, module_);
  }

  Object methods() const {
    auto methods = Object::steal(PyDict_New());
    for (const auto& method : detector_methods()) {
      checked(PyDict_SetItemString(methods.ptr(), method.name, native(method).ptr()));
    }
    return methods;
  }

  template <class Texts>
  static Object list_of(const Texts& texts) {
    auto list = Object::steal(PyList_New(0));
    for (const auto text : texts) checked(PyList_Append(list.ptr(), Object(text).ptr()));
    return list;
  }

  template <std::size_t N>
  static Object set_of(const NameSet<N>& names) {
    return Object::steal(PyFrozenSet_New(list_of(names.names).ptr()));
  }

  void add_constants() const {
    add("_FIXTURE_DIRS", set_of(FIXTURE_DIRS));
    add("_ARCHIVE_DIRS", set_of(ARCHIVE_DIRS));
    add("_TOPIC_STEMS", Object::number(TOPIC_STEMS));
    add("_DISPATCH_MIN_ROOTS", Object::number(DISPATCH_MIN_ROOTS));
    add("_DISPATCH_FILES", Object::number(DISPATCH_FILES));
    add("_EXTENSION_CONTRACTS", Object::number(EXTENSION_CONTRACTS));
    add("_EXTENSION_WIRING", Object::number(EXTENSION_WIRING));
    add("SYMBOL_SCAN_LIMIT", Object::number(SYMBOL_SCAN_LIMIT));
    add("DETECTOR_READ_CHARS", Object::number(DETECTOR_READ_CHARS));
    add("_CONFIG_BASENAMES", set_of(CONFIG_BASENAMES));
    add("_EXCEPTION_PATTERNS", Object::steal(PyList_AsTuple(list_of(EXCEPTION_PATTERNS).ptr())));
    add("_DOMAIN_LAYER", Object(DOMAIN_LAYER));
    add("_REGISTRY_PATTERNS", list_of(REGISTRY_PATTERNS));
    add("_REGISTRY_RE", Object(REGISTRY_RE));
  }

  void run_source() const {
    PyObject* const globals = names_.globals();
    const auto code = Object::steal(Py_CompileString(kSource, "<page_sources>", Py_file_input));
    Object::steal(PyEval_EvalCode(code.ptr(), globals, globals));
  }

  PyObject* module_;
  const Namespace& names_;
  Object function_type_;
};

// The module's own memory holds a pointer to its namespace, null until the module is executed.
Namespace*& namespace_of(PyObject* module) {
  return *static_cast<Namespace**>(PyModule_GetState(module));
}

int execute(PyObject* module) {
  try {
    namespace_of(module) = new Namespace(PyModule_GetDict(module));
    Loader(module, *namespace_of(module)).load();
    return 0;
  } catch (const PendingStop&) {  // already where Python looks for it
  } catch (const std::exception& error) {
    raise_in_python(error);
  }
  return -1;
}

void destroy(void* module) {
  auto* const module_object = static_cast<PyObject*>(module);
  if (PyModule_GetState(module_object) != nullptr) delete namespace_of(module_object);
}

// A module of its own for every interpreter (PYBIND11_MODULE would share one among them).
PyModuleDef_Slot slots[] = {{Py_mod_exec, reinterpret_cast<void*>(execute)}, {0, nullptr}};

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT,
    "page_sources",
    "Which files ground each aspect page of a code wiki.",
    sizeof(Namespace*),  // NOLINT(bugprone-sizeof-expression): a pointer is the state
    nullptr,
    slots,
    nullptr,
    nullptr,
    destroy};

}  // namespace
}  // namespace kestrix::python

PyMODINIT_FUNC PyInit_page_sources() { return PyModuleDef_Init(&kestrix::python::definition); }
