"""Every example that the documents show is run, document by document, each in a home of its own."""

import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

from EnablerTest import EnablerTest
from home import HomeTest
from UsageTest import COMMANDS

PROJECT = Path(__file__).resolve().parents[2]
DOCUMENTS = ["README.md", "docs/command.md", "docs/fleet.md", "docs/settings.md", "docs/troubleshooting.md"]

# These build and test the project itself, this test among all others.
NOT_RUN = re.compile(r"\./run|\./test")


def examples(document):
    """Yields each command of the indented blocks, with the lines that it prints where the document shows any. What stands
    between fences is for other programs."""
    text = re.sub(r"^```.*?^```$", "", (PROJECT / document).read_text(encoding="utf-8"), flags=re.DOTALL | re.MULTILINE)
    lines = text.splitlines()
    shown = None
    for line in [*lines, ""]:
        is_prompt = line.startswith("    $ ")
        if shown and line.startswith("    ") and not is_prompt:
            shown[1].append(line[4:])
            continue
        if shown:
            yield shown
        shown = (line[6:], []) if is_prompt else None
        if line.startswith("    ") and not is_prompt and not NOT_RUN.match(line[4:]):
            yield line[4:], None


class Examples:
    """Of a test in a home of its own."""

    def run_in_shell(self, command):
        folder = os.path.dirname(os.environ["VANTRELCTL"])
        process = subprocess.run(["bash", "-c", command], cwd=self.home, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, text=True, check=False,
                                 env={**self.environment, "PATH": f"{folder}:{self.environment['PATH']}"})
        return process.returncode, process.stdout

    def expect_examples(self, document):
        count = 0
        for command, shown in examples(document):
            with self.subTest(document, command=command):
                status, said = self.run_in_shell(command)
                if shown is None:
                    self.assertEqual(status, 0, said)
                else:
                    self.assertEqual(said.splitlines(), shown)
                count += 1
        self.assertGreater(count, 0)


class Documents(Examples, HomeTest):
    def test_the_readmes_examples_work(self):
        self.expect_examples("README.md")

    def test_the_commands_document_shows_what_it_really_prints(self):
        self.expect_examples("docs/command.md")

    def test_the_fleets_document_shows_what_it_really_prints(self):
        self.expect_examples("docs/fleet.md")

    def test_the_settings_documents_examples_store_what_they_say(self):
        self.expect_examples("docs/settings.md")
        self.assertIs(self.domain()["FormatRGB8"], False)
        self.assertEqual((self.domain()["MaxEncodeThreads"], type(self.domain()["MaxEncodeThreads"])), (0, int))

    def test_every_command_in_a_line_is_one(self):
        for document in DOCUMENTS:
            text = " ".join((PROJECT / document).read_text(encoding="utf-8").split())
            for command in re.findall(r"`vantrelctl ([a-z]+)", text):
                self.assertIn(command, COMMANDS, document)

    def test_the_commands_document_has_each_command_as_it_is_used(self):
        headings = re.findall(r"^### (.*)$", (PROJECT / "docs/command.md").read_text(encoding="utf-8"), re.MULTILINE)
        usages = [self.run_command(command, "--help").out.splitlines()[0] for command in COMMANDS]
        self.assertEqual([f"Usage: vantrelctl {heading}" for heading in headings], usages)


class Troubleshooting(Examples, EnablerTest):
    def test_its_examples_work_where_final_cut_pro_is(self):
        self.expect_examples("docs/troubleshooting.md")


class ManualPage(unittest.TestCase):
    def test_it_has_all_of_the_document_in_the_printers_language(self):
        page = subprocess.run([sys.executable, "-B", PROJECT / "packaging/manpage.py", PROJECT / "docs/command.md",
                               "1.2.3", "2024-02-29"], capture_output=True, text=True, check=True).stdout
        self.assertIn('.TH VANTRELCTL 1 "2024-02-29" "Vantrel 1.2.3" "Vantrel codec"\n', page)
        self.assertIn("\nvantrelctl \\- the settings of the Vantrel codec, without a window\n", page)
        for command in COMMANDS:
            self.assertIn(f'\n.SS "{command}', page)
        for leftover in ("`", "**", "](", "\n#", "\n| ", "\n- "):
            self.assertNotIn(leftover, page)
        self.assertIn(".TP\n\\fBCPUM\\fR\nlikewise, or \\fBall\\fR\n", page)


if __name__ == "__main__":
    unittest.main()
