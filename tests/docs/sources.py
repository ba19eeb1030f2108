"""The sources of the product and the tables of the documents, as the tests of the documents read them."""

import re
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]


def source(*patterns):
    """The text of the files that fit, each run of white space as one blank."""
    files = [file for pattern in patterns for file in sorted(TOP.glob(pattern))]
    return " ".join(" ".join(file.read_text().split()) for file in files)


def document(name):
    return (TOP / "docs" / name).read_text()


def table_rows(text):
    """The cells of every row of every table, without headings."""
    rows = []
    for line in text.splitlines():
        if line.startswith("|"):
            rows.append([cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]])
        elif rows and rows[-1] is not None:
            rows.append(None)  # between two tables
    headed = [row for before, row in zip([None, *rows], rows) if row and before]
    return [row for row in headed if not set("".join(row)) <= set("-: ")]


def quoted(text):
    """What stands between back-quotes."""
    return re.findall(r"`([^`]*)`", text)
