import os
import pty
import subprocess
import unittest

from home import HomeTest

COMMANDS = ["list", "get", "set", "reset", "apply", "export", "doctor", "enabler", "watch", "completion"]


class Usage(HomeTest):
    def test_help_names_every_command(self):
        for words in (["--help"], ["-h"]):
            answer = self.run_command(*words)
            self.assertEqual((answer.status, answer.err), (0, ""))
            self.assertTrue(answer.out.startswith("Usage: vantrelctl COMMAND"))
            self.assertEqual([line.split()[0] for line in answer.out.splitlines() if line.startswith("  ")][:10], COMMANDS)

    def test_every_command_has_its_own_help(self):
        for command in COMMANDS:
            for words in ([command, "--help"], [command, "-h"]):
                answer = self.run_command(*words)
                self.assertEqual((answer.status, answer.err), (0, ""))
                self.assertTrue(answer.out.startswith(f"Usage: vantrelctl {command}"), answer)

    def test_help_fits_80_columns(self):
        for words in ([], *([command] for command in COMMANDS)):
            for line in self.run_command(*words, "--help").out.splitlines():
                self.assertLessEqual(len(line), 80, line)

    def test_help_behind_words_is_help(self):
        self.assertTrue(self.run_command("set", "look", "off", "--help").out.startswith("Usage: vantrelctl set"))
        self.assertEqual(self.domain(), {})

    def test_the_version_is_told(self):
        self.expect(["--version"], f"vantrelctl {os.environ['VERSION']}\n")

    def test_an_unknown_command_offers_the_nearest(self):
        self.expect_misuse(["lst"], "no command lst; did you mean list?")
        self.expect_misuse(["exprot"], "no command exprot; did you mean export?")

    def test_without_a_command_it_is_used_wrongly(self):
        self.expect_misuse([], "a command is missing; see vantrelctl --help")
        self.expect_misuse(["--"], "a command is missing; see vantrelctl --help")

    def test_an_unknown_option_is_refused(self):
        self.expect_misuse(["--jsno"], "The following argument was not expected: --jsno; see vantrelctl --help")
        for words in (["list", "--stored"], ["get", "look", "--json"], ["set", "look", "on", "-x"]):
            answer = self.run_command(*words)
            self.assertEqual((answer.status, answer.out), (64, ""))
            self.assertIn(f"vantrelctl: {words[0]}: no option {words[-1]}; ", answer.err)

    def test_too_few_and_too_many_words_are_refused(self):
        for words in (["get"], ["set", "look"], ["apply"], ["enabler"], ["completion"], ["get", "look", "gamma"],
                      ["list", "look"], ["export", "file"], ["doctor", "all"], ["apply", "a", "b"], ["watch", "look"],
                      ["enabler", "on", "off"]):
            with self.subTest(words):
                answer = self.run_command(*words)
                self.assertEqual((answer.status, answer.out), (64, ""), answer)
                self.assertEqual(len(answer.err.splitlines()), 1)
                self.assertTrue(answer.err.startswith("vantrelctl: "))
        self.assertEqual(self.stores().keys(), {self.home / "GNUstep.conf"})

    def test_a_word_that_is_none_of_a_commands_is_refused(self):
        self.expect_misuse(["enabler", "onn"],
                           "enabler: no onn; it is used so: vantrelctl enabler status|on|off|mend")
        self.expect_misuse(["completion", "csh"],
                           "completion: no csh; it is used so: vantrelctl completion bash|zsh|fish")


class ClosedStreams(HomeTest):
    def set_with_closed(self, closed):
        """`set` on a damaged store, of which there is something to tell, without the standard streams of these numbers."""
        self.wipe()
        self.defaults.mkdir(exist_ok=True)
        self.domain_file.write_text("damaged", encoding="utf-8")
        line = 'exec "$0" set look off ' + " ".join(f"{number}>&-" for number in closed)
        return subprocess.run(["bash", "-c", line, os.environ["VANTRELCTL"]], env=self.environment, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode

    def test_what_is_told_never_gets_into_the_settings(self):
        for closed in ((0,), (1,), (2,), (0, 1), (0, 2), (1, 2), (0, 1, 2)):
            with self.subTest(closed):
                self.assertEqual(self.set_with_closed(closed), 1 if 1 in closed else 0)
                self.assertEqual(self.domain(), {"look": False, "ColorProcessingPath": 0})


class Color(HomeTest):
    def on_terminal(self, *words, **environment):
        """What the command says on a terminal."""
        ours, theirs = pty.openpty()
        process = subprocess.Popen([os.environ["VANTRELCTL"], *words], env={**self.environment, **environment},
                                   stdin=subprocess.DEVNULL, stdout=theirs, stderr=theirs)
        os.close(theirs)
        said = b""
        try:
            while more := os.read(ours, 65536):
                said += more
        except OSError:  # the terminal has no other end any more
            pass
        os.close(ours)
        process.wait()
        return said.decode()

    def test_there_is_colour_on_a_terminal(self):
        self.assertIn("\x1b[1mPixel formats\x1b[0m", self.on_terminal("list"))
        self.write_domain({"look": "-bool"})
        self.assertIn("\x1b[", self.on_terminal("doctor"))

    def test_there_is_none_where_it_isnt_welcome(self):
        self.assertNotIn("\x1b", self.on_terminal("list", NO_COLOR="1"))
        self.assertIn("\x1b", self.on_terminal("list", NO_COLOR=""))


if __name__ == "__main__":
    unittest.main()
