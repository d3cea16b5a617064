#include "python/functions.h"

#include <array>
#include <vector>

#include "python/host.h"
#include "python/rules.h"

namespace kestrix::python {
namespace {

Object argument(PyObject* value) { return Object::borrow(value); }
Object result(Object value) { return value; }
Object result(bool value) { return Object::borrow(value ? Py_True : Py_False); }
Object result(const std::vector<Object>& values) { return List(values); }

constexpr std::array kRules = {
    Function{"is_fixture_path",
             "is_fixture_path",
             "(path)",
             "Whether a path lies in a directory of test data (whole names, any case).",
             {"path"},
             1,
             [](const Values& v) { return result(is_fixture_path(argument(v[0]))); }},
    Function{"current_first",
             "current_first",
             "(docs, max_files=MAX_ASPECT_FILES)",
             "The documents with the archived ones last, cut to max_files after that.",
             {"docs", "max_files"},
             1,
             [](const Values& v) { return result(current_first(argument(v[0]), v[1])); }},
    Function{"unit_topic",
             "unit_topic",
             "(title, files)",
             "The retrieval topic of a code page: its title and the stems of its files.",
             {"title", "files"},
             2,
             [](const Values& v) { return unit_topic(argument(v[0]), argument(v[1])); }},
    Function{"dispatch_files",
             "dispatch_files",
             "(roots, edges, limit=3)",
             "The dispatch that a class of entry points shares: the files outside their\n"
             "directories that depend on a third or more of the roots, most roots first.",
             {"roots", "edges", "limit"},
             2,
             [](const Values& v) {
               return result(dispatch_files(argument(v[0]), argument(v[1]), v[2]));
             }},
    Function{"dependents_of",
             "dependents_of",
             "(edges)",
             "Per file, a Counter of the files that depend on it, by summed weight.",
             {"edges"},
             1,
             [](const Values& v) { return result(dependents_of(argument(v[0]))); }},
    Function{"extension_sources",
             "extension_sources",
             "(interfaces, registries, dependents)",
             "The files of the extending page: contracts and registries, used ones first, then\n"
             "the files where those registries are wired in.",
             {"interfaces", "registries", "dependents"},
             3,
             [](const Values& v) {
               return result(extension_sources(Mapping(argument(v[0])), Mapping(argument(v[1])),
                                               Mapping(argument(v[2]))));
             }},
    Function{"example_sources",
             "example_sources",
             "(tests, edges, max_files=MAX_ASPECT_FILES)",
             "The test files of the examples page: the helpers that the most tests import, then\n"
             "the tests that reach the most production files; test data left out.",
             {"tests", "edges", "max_files"},
             2,
             [](const Values& v) {
               return result(example_sources(argument(v[0]), argument(v[1]), v[2]));
             }},
};

// A detector without arguments.
template <auto Recipe>
Object detected(const Values& values) {
  return result(Recipe(Host(values[0])));
}

constexpr std::array kDetectors = {
    Function{
        "_file_edges",
        "PageSourcesMixin._file_edges",
        "(self, paths)",
        "The evidence-backed file edges among a set of paths.",
        {"self", "paths"},
        2,
        [](const Values& v) { return result(recipes::_file_edges(Host(v[0]), argument(v[1]))); }},
    Function{"_config_files",
             "PageSourcesMixin._config_files",
             "(self)",
             "Indexed configuration files/modules (grounds the configuration page).",
             {"self"},
             1,
             detected<recipes::_config_files<Host>>},
    Function{"_has_exceptions",
             "PageSourcesMixin._has_exceptions",
             "(self)",
             "Whether the index has exception/error classes (grounds the errors page).",
             {"self"},
             1,
             detected<recipes::_has_exceptions<Host>>},
    Function{"_exception_files",
             "PageSourcesMixin._exception_files",
             "(self)",
             "The production files that define the most exception classes (the errors page).",
             {"self"},
             1,
             detected<recipes::_exception_files<Host>>},
    Function{"_data_model_files",
             "PageSourcesMixin._data_model_files",
             "(self)",
             "Files that define the data: DDL (also inside strings) or several data classes.",
             {"self"},
             1,
             detected<recipes::_data_model_files<Host>>},
    Function{"_decision_files",
             "PageSourcesMixin._decision_files",
             "(self)",
             "The design documents of the decisions page, the current ones first.",
             {"self"},
             1,
             detected<recipes::_decision_files<Host>>},
    Function{"_extension_files",
             "PageSourcesMixin._extension_files",
             "(self)",
             "Contracts to implement and registries to add to, and where those are wired in.",
             {"self"},
             1,
             detected<recipes::_extension_files<Host>>},
    Function{"_test_files",
             "PageSourcesMixin._test_files",
             "(self)",
             "The indexed test files.",
             {"self"},
             1,
             detected<recipes::_test_files<Host>>},
    Function{"_example_files",
             "PageSourcesMixin._example_files",
             "(self)",
             "The test helpers and the tests that ground the examples page.",
             {"self"},
             1,
             detected<recipes::_example_files<Host>>},
    Function{"_flow_dispatch",
             "PageSourcesMixin._flow_dispatch",
             "(self, roots)",
             "The files that dispatch to the entry points of a class (grounds the flows page).",
             {"self", "roots"},
             2,
             [](const Values& v) {
               return result(recipes::_flow_dispatch(Host(v[0]), argument(v[1])));
             }},
};

}  // namespace

std::span<const Function> rule_functions() { return kRules; }
std::span<const Function> detector_methods() { return kDetectors; }

}  // namespace kestrix::python
