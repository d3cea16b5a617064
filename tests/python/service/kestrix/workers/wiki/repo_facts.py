def _norm(path):
    return path.removeprefix("./")


def _read_text(path, *, max_chars):
    try:
        return path.read_text(encoding="utf-8", errors="surrogateescape")[:max_chars]
    except OSError:
        return ""


class RepoFactsMixin:
    """What the generator knows about its repository."""

    def __init__(self, repository, repo_root):
        self.repository = repository
        self.repo_root = repo_root

    def _source_files(self):
        return self.repository.source_files
