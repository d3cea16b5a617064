def root_of_pattern(pattern):
    return pattern[:-3] if pattern.endswith("/**") else None


def most_specific(roots, path):
    covering = [root for root in roots if path == root or path.startswith(f"{root}/")]
    return roots[max(covering, key=len)] if covering else None
