import os
import subprocess
import unittest

from home import HomeTest
from ListTest import KEYS
from SetTest import METHOD_TITLES
from UsageTest import COMMANDS

THREADS = [str(threads + 1) for threads in range(32)]

# What is typed, the last word being the one to complete, and what is offered.
CASES = [
    ([""], COMMANDS),
    (["e"], ["export", "enabler"]),
    (["get", ""], KEYS),
    (["get", "formatrgb"], ["FormatRGB8", "FormatRGB16", "FormatRGB32"]),
    (["get", "look", ""], []),
    (["set", "look", ""], ["on", "off"]),
    (["set", "CLSF", "o"], ["on", "off"]),
    (["set", "look", "on", "Q"], ["QTGammaCorrection"]),
    (["set", "look", "on", "QTGammaCorrection", ""], ["As recorded", "Corrected for display"]),
    (["set", "RenderDebayer", ""], METHOD_TITLES),
    (["set", "MaxEncodeThreads", ""], THREADS),
    (["set", "CPUM", ""], ["all", *THREADS]),
    (["set", "LUTsPath", ""], []),
    (["reset", "look", "8"], ["8bitDebayer"]),
    (["enabler", ""], ["status", "on", "off", "mend"]),
    (["enabler", "on", ""], []),
    (["completion", ""], ["bash", "zsh", "fish"]),
    (["apply", "profile"], ["profile.plist"]),
    (["apply", "--c"], ["--check"]),
    (["list", "--"], ["--json", "--help"]),
    (["export", "--format", ""], ["plist", "json", "mobileconfig"]),
]


class Completion(HomeTest):
    def setUp(self):
        super().setUp()
        (self.home / "profile.plist").touch()
        self.environment["PATH"] = f"{os.path.dirname(os.environ['VANTRELCTL'])}:{self.environment['PATH']}"
        self.environment["HOME"] = str(self.home)

    def offered(self, shell, *script):
        """The lines that a shell prints."""
        process = subprocess.run([*shell, *script], env=self.environment, cwd=self.home, capture_output=True, text=True,
                                 check=False)
        self.assertEqual((process.returncode, process.stderr), (0, ""), process)
        return process.stdout.splitlines()

    def test_bash_completes(self):
        script = ('source <(vantrelctl completion bash); COMP_WORDS=(vantrelctl "$@"); COMP_CWORD=$#; _vantrelctl; '
                  '((${#COMPREPLY[@]} == 0)) || printf "%s\\n" "${COMPREPLY[@]}"')
        for words, candidates in CASES:
            with self.subTest(words):
                offered = self.offered(["bash", "--norc", "-euc"], script, "bash", *words)
                self.assertEqual(offered[:len(candidates)], candidates)
                self.assertTrue(set(offered[len(candidates):]) <= {"--help", "--version"}, offered)

    def test_bash_completes_what_is_quoted(self):
        for word in ('"Near', "'near", "Nearest\\ n"):
            offered = self.offered(["bash", "--norc", "-euc"],
                                   'source <(vantrelctl completion bash); COMP_WORDS=(vantrelctl set RenderDebayer "$1");'
                                   'COMP_CWORD=3; _vantrelctl; printf "%s\\n" "${COMPREPLY[@]}"', "bash", word)
            self.assertEqual(offered, ["Nearest neighbour (fastest)"])

    def test_bash_knows_the_command(self):
        self.assertEqual(self.offered(["bash", "--norc", "-euc"],
                                      "source <(vantrelctl completion bash); complete -p vantrelctl"),
                         ["complete -o filenames -F _vantrelctl vantrelctl"])

    def test_zsh_completes(self):
        # The parts of its completion system that the script calls.
        script = ('compdef() { }; compadd() { while [[ $1 != -- ]]; do shift; done; shift; print -rl -- "$@"; }; '
                  '_files() { print -rl -- "${words[CURRENT]}"*(N); }; source <(vantrelctl completion zsh); '
                  'words=(vantrelctl "$@"); CURRENT=$#words; _vantrelctl')
        for words, candidates in CASES:
            with self.subTest(words):
                # zsh itself picks those that begin with the word.
                offered = [line for line in self.offered(["zsh", "-fc"], script, "zsh", *words)
                           if line.lower().startswith(words[-1].lower()) and line]
                self.assertEqual(offered[:len(candidates)], candidates)
                self.assertTrue(set(offered[len(candidates):]) <= {"--help", "--version"}, offered)

    def test_fish_completes(self):
        for words, candidates in CASES:
            with self.subTest(words):
                line = " ".join(["vantrelctl", *words])
                offered = [text.split("\t")[0] for text in self.offered(
                    ["fish", "--no-config", "-c"], f"vantrelctl completion fish | source; complete -C '{line}'")]
                self.assertEqual(set(offered) - {"--help", "--version", "-h"}, set(candidates) - {"--help", "--version"})

    def test_the_scripts_are_the_same_wherever_the_home_is(self):
        for shell in ("bash", "zsh", "fish"):
            answer = self.run_command("completion", shell)
            self.assertEqual((answer.status, answer.err), (0, ""))
            self.assertEqual(self.run_command("completion", shell, environment={"GNUSTEP_CONFIG_FILE": "/none"}).out,
                             answer.out)


if __name__ == "__main__":
    unittest.main()
