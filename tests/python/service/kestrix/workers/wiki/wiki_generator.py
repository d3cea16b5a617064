from kestrix.utils.path_filter import is_test_path
from kestrix.workers.wiki.page_sources import PageSourcesMixin
from kestrix.workers.wiki.repo_facts import _norm


class WikiGenerator(PageSourcesMixin):
    def _planner_paths(self):
        paths = [_norm(record["path"]) for record in self._source_files()]
        return [path for path in paths if not is_test_path(path)]

    def _indexed_documents(self):
        return self.repository.documents

    def pages(self, roots):
        return {
            "data_models": self._data_model_files(),
            "configuration": self._config_files(),
            "errors": self._exception_files() if self._has_exceptions() else [],
            "flows": self._flow_dispatch(roots),
            "extending": self._extension_files(),
            "examples": self._example_files(),
            "decisions": self._decision_files(),
        }
