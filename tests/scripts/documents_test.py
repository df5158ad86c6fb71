"""What the documents point at is there, and what they have for a shell is something that a shell reads."""

import re
import subprocess
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
DOCUMENTS = [PROJECT / "README.md", PROJECT / "CONTRIBUTING.md", *sorted(PROJECT.glob("docs/*.md"))]


class Links(unittest.TestCase):
    def test_of_the_documents_lead_somewhere(self):
        for document in DOCUMENTS:
            for target in re.findall(r"\]\((?!https?:|#)([^)#]+)", document.read_text()):
                self.assertTrue((document.parent / target).exists(), f"{document.name}: {target}")

    def test_within_a_document_lead_to_a_heading(self):
        for document in DOCUMENTS:
            text = document.read_text()
            outside_code = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
            headings = {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")
                        for title in re.findall(r"^#+ (.+)$", outside_code, re.MULTILINE)}
            for anchor in re.findall(r"\]\(#([^)]+)\)", text):
                self.assertIn(anchor, headings, document.name)


class ShellLines(unittest.TestCase):
    def test_of_the_documents_are_read_by_a_shell(self):
        for document in DOCUMENTS:
            for block in re.findall(r"^ *```sh\n(.*?)^ *```$", document.read_text(), re.MULTILINE | re.DOTALL):
                read = subprocess.run(["bash", "-n"], input=block, stderr=subprocess.PIPE, text=True, check=False)

                self.assertEqual((0, ""), (read.returncode, read.stderr), f"{document.name}: {block}")


if __name__ == "__main__":
    unittest.main()
