import unittest

from home import COMPLETE, FLAGS, HomeTest, cores


class Get(HomeTest):
    def test_a_flag_is_on_or_off(self):
        self.write_domain({"look": True, "FormatRGB8": False})
        self.expect(["get", "look"], "on\n")
        self.expect(["get", "FormatRGB8"], "off\n")

    def test_a_row_and_an_item_are_an_index(self):
        self.write_domain({"QTGammaCorrection": 1, "RenderDebayer": 5})
        self.expect(["get", "QTGammaCorrection"], "1\n")
        self.expect(["get", "RenderDebayer"], "5\n")

    def test_the_encoders_limit_is_one_more_than_is_stored(self):
        self.write_domain({"MaxEncodeThreads": 0})
        self.expect(["get", "MaxEncodeThreads"], "1\n")

    def test_the_decoders_limit_is_a_number_or_all(self):
        self.write_record({"CPUM": 0})
        self.expect(["get", "CPUM"], "all\n")
        self.write_record({"CPUM": 1})
        self.expect(["get", "CPUM"], "1\n")

    def test_the_chroma_filter_is_on_or_off(self):
        self.write_record({"CLSF": 1})
        self.expect(["get", "CLSF"], "on\n")
        self.write_record({"CLSF": 0})
        self.expect(["get", "CLSF"], "off\n")

    def test_a_folder_is_told_as_it_stands(self):
        for text in ("/Volumes/a b", "[a,b]", "", " ", "日本", "a\nb"):
            self.write_domain({"LUTsPath": text})
            self.expect(["get", "LUTsPath"], f"{text}\n")

    def test_the_path_of_colour_processing_can_be_read(self):
        self.write_domain({"ColorProcessingPath": 0x30002F})
        self.expect(["get", "ColorProcessingPath"], f"{0x30002F}\n")

    def test_a_missing_key_has_the_default_that_the_pane_shows(self):
        for key in FLAGS:
            self.expect(["get", key], "on\n")
        for key, shown in (("fcpRTEnableSwap", "off"), ("FormatDualStream3D", "off"), ("CLSF", "off"), ("CPUM", "all"),
                           ("QTGammaCorrection", "0"), ("8bitDebayer", "0"), ("ColorProcessingPath", "0"),
                           ("MaxEncodeThreads", str(min(8, cores()))),
                           ("LUTsPath", "/Library/Application Support/Vantrel/LUTs"),
                           ("OverridePath", "/Library/Application Support/Vantrel/Overrides")):
            self.expect(["get", key], f"{shown}\n")

    def test_a_store_that_cant_be_read_is_told(self):
        self.write_domain({"look": False})
        self.write_record({"CPUM": 1})
        self.domain_file.write_text("damaged", encoding="utf-8")
        err = self.counts_as_missing(self.domain_file)
        self.expect(["get", "look"], "on\n", err=err)
        self.expect(["get", "CPUM"], "1\n", err=err)
        self.expect(["get", "look", "--stored"], status=1, err=err + "vantrelctl: look: nothing is stored\n")
        self.record_file.unlink()
        self.record_file.symlink_to("elsewhere")
        self.expect(["get", "CPUM"], "all\n", err=err + self.counts_as_missing(self.record_file))

    def test_a_mistyped_key_counts_as_missing(self):
        self.write_domain({"look": 0, "gamma": "-bool", "QTGammaCorrection": True, "LUTsPath": 3, "RenderDebayer": "2",
                           "MaxEncodeThreads": 0.5})
        for key, shown in (("look", "on"), ("gamma", "on"), ("QTGammaCorrection", "0"), ("RenderDebayer", "0"),
                           ("MaxEncodeThreads", str(min(8, cores())))):
            self.expect(["get", key], f"{shown}\n")

    def test_a_row_outside_the_matrix_is_the_first_and_a_limit_is_lowered(self):
        self.write_domain({"QTGammaCorrection": 2, "FCPGammaCorrection": 0x100000001, "MaxEncodeThreads": 99})
        self.expect(["get", "QTGammaCorrection"], "0\n")
        self.expect(["get", "FCPGammaCorrection"], "1\n")
        self.expect(["get", "MaxEncodeThreads"], f"{cores()}\n")

    def test_a_name_is_known_in_any_case(self):
        self.write_domain(COMPLETE)
        self.expect(["get", "formatrgb8"], "off\n")
        self.expect(["get", "FORMATRGB8"], "off\n")
        self.expect(["get", "cpum"], "all\n")

    def test_nothing_is_written(self):
        self.write_domain({"look": 1})
        before = self.stores()
        self.run_command("get", "look")
        self.assertEqual(self.stores(), before)

    def test_an_unknown_name_offers_the_nearest(self):
        self.expect_misuse(["get", "FormatRGB9"], "no setting FormatRGB9; did you mean FormatRGB8?")
        self.expect_misuse(["get", "lok"], "no setting lok; did you mean look?")
        self.expect_misuse(["get", "encodethreads"], "no setting encodethreads; did you mean MaxEncodeThreads?")


class GetStored(HomeTest):
    def test_the_value_is_told_as_it_is(self):
        self.write_domain({"look": True, "FormatRGB8": False, "MaxEncodeThreads": 7, "LUTsPath": "/a",
                           "QTGammaCorrection": 5, "gamma": "-bool", "colorMatrix": 0})
        self.write_record({"CLSF": 1})
        for key, stored in (("look", "true"), ("FormatRGB8", "false"), ("MaxEncodeThreads", "7"), ("LUTsPath", "/a"),
                            ("QTGammaCorrection", "5"), ("gamma", "-bool"), ("colorMatrix", "0"), ("CLSF", "1")):
            self.expect(["get", key, "--stored"], f"{stored}\n")
            self.expect(["get", "--stored", key], f"{stored}\n")

    def test_where_there_is_none_the_status_is_1(self):
        self.expect(["get", "look", "--stored"], status=1, err="vantrelctl: look: nothing is stored\n")
        self.expect(["get", "CLSF", "--stored"], status=1, err="vantrelctl: CLSF: nothing is stored\n")


if __name__ == "__main__":
    unittest.main()
