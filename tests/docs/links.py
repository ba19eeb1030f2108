"""Links of the documents: what they point to in this tree is there."""

import re
import unittest

from sources import TOP, quoted

NOT_OURS = {"build", ".git"}
# A path from the root of the tree, without a wildcard or a name to be filled in.
PATH = re.compile(r"(app|link|camera|views|algorithms|storage|platform|simulator|tests|bench|scripts|docs|packaging|cmake)"
                  r"/[\w./-]+")


def documents():
    return [file for file in TOP.rglob("*.md") if not NOT_OURS & set(file.relative_to(TOP).parts)]


def links(file):
    """Targets within the tree, without their anchors."""
    prose = re.sub(r"```.*?```|`[^`]*`|(?m:^ {4}.*$)", "", file.read_text(), flags=re.DOTALL)
    targets = re.findall(r"\]\(([^)\s]+)\)", prose)
    return [target.split("#")[0] for target in targets if "://" not in target and not target.startswith("#")]


class Links(unittest.TestCase):
    def test_everyLink_leadsToAFile(self):
        self.assertGreater(len(documents()), 10)
        broken = [f"{file.relative_to(TOP)}: {target}" for file in documents() for target in links(file)
                  if not (file.parent / target).exists()]
        self.assertEqual(broken, [])

    def test_everyPathThatADocumentNames_isThere(self):
        named = {(page.name, text.rstrip("/")) for page in (TOP / "docs").glob("*.md")
                 for text in quoted(page.read_text()) if PATH.fullmatch(text)}
        self.assertGreater(len(named), 20)
        # A class or module stands for its header and its source.
        missing = [f"{page}: {path}" for page, path in sorted(named) if not any(TOP.glob(path + "*"))]
        self.assertEqual(missing, [])

    def test_everyPictureOfTheDocuments_isShownSomewhere(self):
        shown = {(file.parent / target).resolve() for file in documents() for target in links(file)}
        unused = [picture.name for picture in (TOP / "docs/images").iterdir() if picture.resolve() not in shown]
        self.assertEqual(unused, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
