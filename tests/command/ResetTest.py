import unittest

from home import COMPLETE, HomeTest, cores

DEFAULTS = {
    "FormatRGB8": True, "FormatRGB16": True, "FormatRGB32": True, "FormatDualStream3D": False, "FormatYUV8": True,
    "FormatYUV16": True, "FormatYUV32": True, "FormatYUV8A": True, "FCPForceLetterBox": True,
    "PProCS5HasMovieSetup": True, "QTGammaCorrection": 0, "FCPGammaCorrection": 0, "whiteBalance": True,
    "colorMatrix": True, "look": True, "gamma": True, "8bitDebayer": 0, "RenderDebayer": 0,
    "ColorProcessingPath": 0x2F, "MaxEncodeThreads": min(8, cores()) - 1,
    "LUTsPath": "/Library/Application Support/Vantrel/LUTs",
    "OverridePath": "/Library/Application Support/Vantrel/Overrides", "ShowStereoStatusMenu": True,
}


class Reset(HomeTest):
    def test_without_a_name_all_but_the_enabler_get_their_defaults(self):
        answer = self.run_command("reset")
        self.assertEqual((answer.status, answer.err), (0, ""), answer)
        self.assertEqual(self.domain(), DEFAULTS)
        self.assertEqual(self.record(), {"CLSF": 0, "CPUM": 0})
        self.assertEqual(len(answer.out.splitlines()), len(DEFAULTS) - 1 + 2)

    def test_what_has_its_default_is_not_written_again(self):
        self.run_command("reset")
        before = self.stores()
        answer = self.run_command("reset")
        self.assertTrue(all(line.endswith(" (unchanged)") for line in answer.out.splitlines()), answer)
        self.assertEqual(self.stores(), before)

    def test_the_enabler_and_foreign_keys_stay(self):
        self.write_domain({"fcpRTEnableSwap": True, "foreign": 3})
        self.run_command("reset")
        self.assertEqual((self.domain()["fcpRTEnableSwap"], self.domain()["foreign"]), (True, 3))

    def test_a_named_one_alone_gets_its_default(self):
        self.write_domain(COMPLETE)
        self.expect(["reset", "FormatRGB8", "LUTsPath", "gamma"],
                    "FormatRGB8: off -> on\nLUTsPath: /luts -> /Library/Application Support/Vantrel/LUTs\n"
                    "gamma: off -> on\n")
        self.assertEqual(self.domain(), {**COMPLETE, "FormatRGB8": True, "gamma": True, "ColorProcessingPath": 0x2F,
                                         "LUTsPath": "/Library/Application Support/Vantrel/LUTs"})

    def test_a_mistyped_one_is_mended(self):
        self.write_domain({"look": "-bool"})
        self.expect(["reset", "look"], "look: mistyped -> on\n")
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": 9})

    def test_an_unknown_name_changes_nothing(self):
        self.write_domain(COMPLETE)
        self.expect_misuse(["reset", "FormatRGB8", "gama"], "no setting gama; did you mean gamma?")
        self.expect_misuse(["reset", "ColorProcessingPath"],
                           "ColorProcessingPath: only apply can set it, from a profile")


if __name__ == "__main__":
    unittest.main()
