"""The settings files as anyone else may read them."""

from pathlib import Path


def read_ini(path):
    """Returns {group: {key: text}}; empty when there is no file. "%20" stands for a blank in names."""
    groups = {}
    group = groups.setdefault("", {})
    path = Path(path)
    if not path.exists():
        return groups
    for line in path.read_text(encoding="latin-1").splitlines():
        if line.startswith("[") and line.endswith("]"):
            group = groups.setdefault(line[1:-1].replace("%20", " "), {})
        elif "=" in line:
            key, value = line.split("=", 1)
            group[key.replace("%20", " ")] = value.strip('"')
    return groups
