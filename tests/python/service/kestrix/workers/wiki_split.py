def stem(path):
    return path.rpartition("/")[2].partition(".")[0]
