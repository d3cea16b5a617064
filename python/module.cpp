// The extension module kestrix.workers.wiki._page_sources, which is called by page_sources.py.

#include <array>
#include <cstdio>
#include <utility>

#include "python/failure.h"
#include "python/host.h"
#include "python/rules.h"

namespace kestrix::python {
namespace {

// The module's own memory: null until it is executed, and then one for every interpreter.
Names*& names_of(PyObject* module) { return *static_cast<Names**>(PyModule_GetState(module)); }

template <std::size_t... At, class... Arguments>
Object called(Object (*function)(Arguments...), PyObject* given, std::index_sequence<At...>) {
  std::array<PyObject*, sizeof...(At)> arguments{};
  constexpr auto kCount = static_cast<Py_ssize_t>(sizeof...(At));
  if (PyArg_UnpackTuple(given, "", kCount, kCount, &arguments[At]...) == 0) throw_pending();
  return function(Object::borrow(arguments[At])...);
}

template <class... Arguments>
Object called(Object (*function)(Arguments...), PyObject* given) {
  return called(function, given, std::index_sequence_for<Arguments...>());
}

template <auto kFunction>
PyObject* entry(PyObject* module, PyObject* arguments) {
  const NamesInUse names(*names_of(module));
  try {
    return called(kFunction, arguments).release();
  } catch (const PendingStop&) {  // already where Python looks for it
  } catch (const std::exception& error) {
    raise_in_python(error);
  }
  return nullptr;
}

Object result(Object value) { return value; }
Object result(bool value) { return Object::borrow(value ? Py_True : Py_False); }
Object result(const std::vector<Object>& values) { return List(values); }

template <auto kRecipe>
Object detected(const Object& self) {
  return result(kRecipe(Host(self)));
}

template <auto kRecipe>
Object detected_for(const Object& self, const Object& argument) {
  return result(kRecipe(Host(self), argument));
}

template <auto kFunction>
constexpr PyMethodDef function(const char* name) {
  return {name, entry<kFunction>, METH_VARARGS, nullptr};
}

std::array methods = {
    function<rules::is_fixture_path>("is_fixture_path"),
    function<rules::current_first>("current_first"),
    function<rules::unit_topic>("unit_topic"),
    function<rules::dispatch_files>("dispatch_files"),
    function<rules::dependents_of>("dependents_of"),
    function<rules::extension_sources>("extension_sources"),
    function<rules::example_sources>("example_sources"),
    function<detected_for<recipes::_file_edges<Host, Object>>>("_file_edges"),
    function<detected<recipes::_config_files<Host>>>("_config_files"),
    function<detected<recipes::_has_exceptions<Host>>>("_has_exceptions"),
    function<detected<recipes::_exception_files<Host>>>("_exception_files"),
    function<detected<recipes::_data_model_files<Host>>>("_data_model_files"),
    function<detected<recipes::_decision_files<Host>>>("_decision_files"),
    function<detected<recipes::_extension_files<Host>>>("_extension_files"),
    function<detected<recipes::_test_files<Host>>>("_test_files"),
    function<detected<recipes::_example_files<Host>>>("_example_files"),
    function<detected_for<recipes::_flow_dispatch<Host, Object>>>("_flow_dispatch"),
    PyMethodDef{nullptr, nullptr, 0, nullptr},
};

int execute(PyObject* module) {
  names_of(module) = new (std::nothrow) Names;
  if (names_of(module) != nullptr) return 0;
  PyErr_NoMemory();
  return -1;
}

void destroy(void* module) {
  auto* const own = static_cast<PyObject*>(module);
  if (PyModule_GetState(own) != nullptr) delete names_of(own);
}

// Since CPython 3.12 a module says that interpreters with locks of their own may load it; the
// limited API of 3.9 has no names for that, only numbers.
PyModuleDef_Slot own_locks() {
  constexpr int kMultipleInterpreters = 3;
  int minor = 0;
  if (std::sscanf(Py_GetVersion(), "3.%d", &minor) != 1 || minor < 12) return {0, nullptr};
  return {kMultipleInterpreters, reinterpret_cast<void*>(2)};  // NOLINT(performance-no-int-to-ptr)
}

std::array slots = {PyModuleDef_Slot{Py_mod_exec, reinterpret_cast<void*>(execute)}, own_locks(),
                    PyModuleDef_Slot{0, nullptr}};

PyModuleDef definition = {
    PyModuleDef_HEAD_INIT,
    "_page_sources",
    "The rules and detectors of page_sources, which look names up in the module that calls them.",
    sizeof(Names*),  // NOLINT(bugprone-sizeof-expression): a pointer is the state
    methods.data(),
    slots.data(),
    nullptr,
    nullptr,
    destroy};

}  // namespace
}  // namespace kestrix::python

// NOLINTNEXTLINE(bugprone-reserved-identifier): Python looks for it
PyMODINIT_FUNC PyInit__page_sources() { return PyModuleDef_Init(&kestrix::python::definition); }
