def is_test_path(path):
    directories, _, name = path.rpartition("/")
    return "tests" in directories.split("/") or name.startswith("test_")
