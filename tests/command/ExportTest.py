import json
import os
import plistlib
import unittest

from home import COMPLETE, HomeTest, cores

OVERRIDES = {"CLSF": 1, "CPUM": 0}


class Export(HomeTest):
    def export(self, *words):
        answer = self.run_command("export", *words)
        self.assertEqual((answer.status, answer.err), (0, ""), answer)
        return answer.out

    def test_it_is_a_property_list_of_what_is_stored(self):
        self.write_domain(COMPLETE)
        self.write_record(OVERRIDES)
        self.assertEqual(plistlib.loads(self.export().encode()), {**COMPLETE, **OVERRIDES})
        self.assertEqual(self.export(), self.export("--format", "plist"))

    def test_it_is_json_where_that_is_asked_for(self):
        self.write_domain(COMPLETE)
        self.write_record(OVERRIDES)
        self.assertEqual(json.loads(self.export("--format", "json")), {**COMPLETE, **OVERRIDES})

    def test_foreign_missing_and_mistyped_keys_are_left_out(self):
        self.write_domain({"foreign": 1, "look": "-bool", "gamma": True, "RenderDebayer": 0.5})
        self.write_record({"THEM": 1})
        self.assertEqual(json.loads(self.export("--format=json")), {"gamma": True})
        self.wipe()
        self.assertEqual(plistlib.loads(self.export().encode()), {})
        self.assertEqual(self.export("--format=json"), "{}\n")

    def test_the_same_settings_give_the_same_bytes(self):
        self.write_domain(COMPLETE)
        exports = {form: self.export("--format", form) for form in ("plist", "json")}
        self.write_domain(dict(reversed(COMPLETE.items())))
        self.domain_file.write_bytes(plistlib.dumps(COMPLETE, fmt=plistlib.FMT_BINARY))
        self.assertEqual({form: self.export("--format", form) for form in exports}, exports)

    def test_exported_wiped_and_applied_the_stores_are_the_same_again(self):
        texts = {"LUTsPath": "/<&>\"' \t日本😀", "OverridePath": ""}
        for domain, record in ((COMPLETE, OVERRIDES), ({}, {}), ({"FormatRGB8": False}, {}), ({"look": False, "ColorProcessingPath": 0}, {}),
                               ({}, {"CPUM": cores()}),
                               ({**COMPLETE, **texts}, {"CLSF": 0}),
                               ({"ColorProcessingPath": -2**63}, {}),
                               ({"look": True, "RenderDebayer": 5, "ColorProcessingPath": 0x10500068}, {})):
            for form in ("plist", "json"):
                with self.subTest(form, domain=domain, record=record):
                    self.wipe()
                    self.write_domain(domain)
                    self.write_record(record)
                    profile = self.export("--format", form)
                    self.wipe()
                    answer = self.run_command("apply", "-", said=profile)
                    self.assertEqual((answer.status, answer.err), (0, ""), answer)
                    self.assertEqual((self.domain(), self.record()), (domain, record))

    def test_only_a_path_that_was_missing_beside_a_stage_comes_to_be_as_by_a_click(self):
        self.write_domain({"look": True})
        profile = self.export()
        self.wipe()
        self.run_command("apply", "-", said=profile)
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": 9})

    def test_stores_that_the_command_wrote_come_back_byte_for_byte(self):
        self.run_command("reset")
        self.run_command("set", "fcpRTEnableSwap", "off", "LUTsPath", "a\x01\r\n\\U0041", "gamma", "off")
        before = self.stores()
        for form in ("plist", "json"):
            profile = self.export("--format", form)
            self.wipe()
            self.run_command("apply", "-", said=profile)
            self.assertEqual(self.stores(), before)

    def test_what_apply_would_refuse_is_told(self):
        self.write_domain({"8bitDebayer": 9, "look": True, "ColorProcessingPath": 0x90000})
        answer = self.run_command("export", "--format", "json")
        self.assertEqual(json.loads(answer.out), self.domain())
        self.assertEqual((answer.status, answer.err),
                         (0, "vantrelctl: look: it is on, and off in ColorProcessingPath; "
                             "apply refuses a profile with that\n"
                             "vantrelctl: 8bitDebayer: 9 is not in its menu here; apply refuses a profile with that\n"))

    def test_nothing_is_written(self):
        self.write_domain({"look": "-bool"})
        before = self.stores()
        self.export()
        self.assertEqual(self.stores(), before)

    def test_a_store_that_cant_be_read_is_no_empty_profile(self):
        self.write_domain(COMPLETE)
        self.domain_file.write_text("damaged", encoding="utf-8")
        self.expect(["export"], status=1,
                    err=f"vantrelctl: {self.domain_file}: can't be read, so nothing is exported\n")
        self.domain_file.unlink()
        self.write_record(OVERRIDES)
        self.record_file.unlink()
        os.mkfifo(self.record_file)
        hidden = {"status": 1, "err": f"vantrelctl: {self.record_file}: can't be read, so nothing is exported\n"}
        self.expect(["export"], **hidden)
        self.record_file.unlink()
        self.record_file.symlink_to("elsewhere")
        self.expect(["export"], **hidden)
        self.record_file.unlink()
        self.record_file.write_text("<plist><dict/></plist>" + " " * 512 * 1024, encoding="utf-8")
        self.expect(["export"], **hidden)

    def test_without_the_library_of_the_overrides_it_tells_what_is_left_out(self):
        self.write_domain({"look": True})
        self.write_record(OVERRIDES)
        done = self.run_command("export", "--format", "json", environment=self.without_library())
        self.assertEqual((done.status, json.loads(done.out)), (0, {"look": True}))
        self.assertEqual(done.err, "vantrelctl: CLSF and CPUM are left out: there is no library of the override metadata\n")

    def test_an_unknown_format_is_refused(self):
        self.expect_misuse(["export", "--format", "xml"],
                           "--format: xml not in {plist,json,mobileconfig}; see vantrelctl --help")


class MobileConfiguration(HomeTest):
    def test_it_forces_the_domains_keys_and_says_that_the_overrides_are_left_out(self):
        self.write_domain(COMPLETE)
        self.write_record(OVERRIDES)
        answer = self.run_command("export", "--format", "mobileconfig")
        self.assertEqual((answer.status, answer.err), (0, "vantrelctl: CLSF and CPUM are left out: "
                                                          "a configuration profile doesn't reach the override metadata\n"))
        profile = plistlib.loads(answer.out.encode())
        self.assertEqual((profile["PayloadType"], profile["PayloadVersion"]), ("Configuration", 1))
        [payload] = profile["PayloadContent"]
        self.assertEqual(payload["PayloadType"], "com.apple.ManagedClient.preferences")
        self.assertEqual(payload["PayloadContent"],
                         {"com.vantrel.codec": {"Forced": [{"mcx_preference_settings": COMPLETE}]}})
        identifiers = [part[name] for part in (profile, payload) for name in ("PayloadUUID", "PayloadIdentifier")]
        self.assertEqual(len(set(identifiers)), 4)


if __name__ == "__main__":
    unittest.main()
