from kestrix.workers.wiki_cluster import FileEdge


def cluster_inputs(repository, paths):
    """The files, their directories, and the imports among them."""
    edges = [
        FileEdge(source, target, weight)
        for (source, target), weight in repository.imports.items()
        if source in paths and target in paths
    ]
    return sorted(paths), sorted({path.rpartition("/")[0] for path in paths}), edges
