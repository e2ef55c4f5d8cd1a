"""The pane and the command as they are configured and built on a Mac, with the preset's own settings.

    MacOSTest.py BUILD-FOLDER

Debian's clang compiles for macOS in both word sizes. The tools that only a Mac has are played by those in stand-ins/,
and nothing is linked, for want of what to link with. The build folder is kept, so that only changes are built again.
"""

import json
import os
import plistlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

TESTS = Path(__file__).resolve().parent
PROJECT = TESTS.parents[1]
RESOURCES = PROJECT / "Preference" / "Vantrel" / "Resources"
LANGUAGES = ("de", "en", "es", "fr", "ja")
ARCHITECTURES = {"bundle": ("i386", "x86_64"), "program": ("x86_64",)}
OLDEST_SYSTEM = "10.7"

SHORTER_NAMES = (
    (r"std::__1::", "std::"),
    (r"std::basic_string<char, std::char_traits<char>, std::allocator<char> ?>", "std::string"),
    (r"(?:\.objc_class_name_|OBJC_(?:META)?CLASS_\$_)(\w+)", r"class \1"),
)

sys.path.insert(0, str(PROJECT / "Preference" / "Vantrel"))
import localize  # noqa: E402


def preset(name):
    """The preset with what it inherits."""
    presets = json.loads((PROJECT / "CMakePresets.json").read_text(encoding="utf-8"))["configurePresets"]
    found = next(preset for preset in presets if preset["name"] == name)
    parent = preset_of(found.get("inherits"))
    return {**parent, **found, "cacheVariables": {**parent.get("cacheVariables", {}), **found["cacheVariables"]}}


def preset_of(name):
    return preset(name) if name else {}


def run(*command):
    """What the command says; it has the stand-ins. A command that fails ends the program."""
    environment = dict(os.environ, PATH=f"{TESTS / 'stand-ins'}:{os.environ['PATH']}")
    for variable in ("CMAKE_GENERATOR", "LIBRARY_PATH", "CPLUS_INCLUDE_PATH"):
        environment.pop(variable, None)
    # clang leaves a folder behind for each file that it compiles for two architectures.
    with tempfile.TemporaryDirectory() as environment["TMPDIR"]:
        result = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                check=False)
    if result.returncode != 0:
        sys.exit(f"{result.stdout}\n{command[0]} failed")
    return result.stdout


def llvm(tool, *arguments):
    return run(run("/usr/bin/clang++", f"-print-prog-name=llvm-{tool}").strip(), *map(str, arguments))


def build(folder):
    settings = preset("macos")
    root = folder / "empty-system"
    root.mkdir(parents=True, exist_ok=True)
    variables = {**settings["cacheVariables"], "CMAKE_SYSTEM_NAME": "Darwin", "CMAKE_OSX_SYSROOT": root}
    run("cmake", "-S", PROJECT, "-B", folder, "-G", settings["generator"],
        *(f"-D{name}={value}" for name, value in variables.items()))
    run("cmake", "--build", folder)


class Building(unittest.TestCase):
    """What the compiler and the linker are told and what comes of it."""

    def objects(self):
        return sorted(path for path in BUILD.glob("*/**/*.o") if path.relative_to(BUILD).parts[0] != "CMakeFiles")

    def sources_and_headers(self):
        """Those of the project that are compiled."""
        used = {(BUILD / path).resolve() for path in run("ninja", "-C", BUILD, "-t", "deps").split()}
        return [path for path in used if PROJECT in path.parents and TESTS.parent not in path.parents and path.is_file()]

    def linked(self, kind, architecture):
        return (BUILD / f"{kind}-{architecture}.txt").read_text(encoding="utf-8").split("\n")

    def frameworks(self, kind, architecture):
        arguments = self.linked(kind, architecture)
        return {name for option, name in zip(arguments, arguments[1:]) if option == "-framework"}

    def test_the_bundle_has_both_word_sizes_and_the_command_the_one_of_every_processor(self):
        programs = {"bundle": BUNDLE / "Contents" / "MacOS" / "Vantrel", "program": BUILD / "bin" / "vantrelctl"}
        for kind, program in programs.items():
            self.assertCountEqual(llvm("lipo", "-archs", program).split(), ARCHITECTURES[kind])

    def test_it_is_linked_as_a_bundle_for_the_oldest_system(self):
        for architecture in ARCHITECTURES["bundle"]:
            with self.subTest(architecture):
                arguments = self.linked("bundle", architecture)
                version = arguments[arguments.index("-macosx_version_min") + 1]
                self.assertEqual(version, OLDEST_SYSTEM + ".0")

    def test_both_are_linked_with_every_framework_that_the_sources_name_and_the_command_without_a_windows(self):
        imports = {match for path in self.sources_and_headers()
                   for match in re.findall(r"^#(?:import|include) <(\w+)/\1\.h>", path.read_text(encoding="utf-8"),
                                           re.MULTILINE)}
        for kind, wanted in (("bundle", imports), ("program", imports - {"AppKit", "PreferencePanes"})):
            for architecture in ARCHITECTURES[kind]:
                with self.subTest(kind, architecture=architecture):
                    self.assertEqual(self.frameworks(kind, architecture), wanted)

    def test_the_standard_library_is_the_systems_own(self):
        for kind, architectures in ARCHITECTURES.items():
            for architecture in architectures:
                with self.subTest(kind, architecture=architecture):
                    self.assertIn("-lc++", self.linked(kind, architecture))
        self.assertFalse([path for path in BUNDLE.rglob("*") if "c++" in path.name])

    def test_nothing_is_called_that_the_oldest_system_lacks(self):
        lines = (TESTS / "what-10.7-has.txt").read_text(encoding="utf-8").splitlines()
        known = {re.sub(r"\s*#.*", "", line) for line in lines} - {""}
        called = self.functions_and_classes_called() | self.messages_sent()
        if called - known:
            self.fail("\n".join(["not listed among what macOS 10.7 has:", *sorted(called - known)]))

    def functions_and_classes_called(self):
        wanted, defined = set(), set()
        for kind, name in re.findall(r"^[0-9a-f ]+ (\w) (\S+)$", llvm("nm", "--arch=all", *self.objects()), re.MULTILINE):
            (wanted if kind == "U" else defined).add(name)
        # C's and C++'s names have a further underscore in front.
        names = llvm("cxxfilt", *sorted(name.removeprefix("_") for name in wanted - defined))
        for pattern, replacement in SHORTER_NAMES:
            names = re.sub(pattern, replacement, names)
        return set(names.splitlines())

    def messages_sent(self):
        """The selectors that the objects name, those of methods and instance variables of our own left out."""
        named, ours = set(), set()
        with tempfile.TemporaryDirectory() as folder:
            thin, names = Path(folder) / "thin.o", Path(folder) / "names"
            for path in (path for path in self.objects() if path.name.endswith(".mm.o")):
                llvm("lipo", path, "-thin", "x86_64", "-output", thin)
                symbols = llvm("nm", thin)
                ours.update(re.findall(r"[-+]\[\w+ ([\w:]+)\]", symbols))
                ours.update(re.findall(r"_OBJC_IVAR_\$_\w+\.(\w+)", symbols))
                if "__objc_methname" in llvm("objdump", "--section-headers", thin):
                    llvm("objcopy", f"--dump-section=__TEXT,__objc_methname={names}", thin, Path(folder) / "copy.o")
                    named.update(names.read_text(encoding="utf-8").split("\0"))
        return named - ours - {""}


class Bundle(unittest.TestCase):
    """What the settings host and the system find."""

    def test_it_has_these_files_and_no_others(self):
        files = {str(path.relative_to(BUNDLE)) for path in BUNDLE.rglob("*") if path.is_file()}
        expected = {"Contents/Info.plist", "Contents/MacOS/Vantrel", "Contents/Resources/Vantrel.icns"}
        for language in LANGUAGES:
            expected |= {f"Contents/Resources/{language}.lproj/{name}" for name in ("Localizable.strings", "VantrelPref.nib")}
        self.assertEqual(files, expected)

    def test_the_information_dictionary_names_what_is_there(self):
        with (BUNDLE / "Contents" / "Info.plist").open("rb") as file:
            information = plistlib.load(file)
        version = re.search(r"project\(Vantrel VERSION (\S+)", (PROJECT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
        self.assertEqual(information, {
            "CFBundleDevelopmentRegion": "en",
            "CFBundleExecutable": "Vantrel",
            "CFBundleIdentifier": "com.vantrel.PreferencePane",
            "CFBundleInfoDictionaryVersion": "6.0",
            "CFBundleName": "Vantrel",
            "CFBundlePackageType": "BNDL",
            "CFBundleShortVersionString": version,
            "CFBundleVersion": version,
            "LSMinimumSystemVersion": OLDEST_SYSTEM,
            "NSMainNibFile": "VantrelPref",
            "NSPrefPaneAllowsXAppleSystemPreferencesURLScheme": True,
            "NSPrefPaneIconFile": "Vantrel.icns",
            "NSPrefPaneIconLabel": "Vantrel",
            "NSPrincipalClass": "VantrelPref",
        })

    def test_every_language_has_its_default_folders(self):
        for language in LANGUAGES:
            with self.subTest(language):
                table = BUNDLE / "Contents" / "Resources" / f"{language}.lproj" / "Localizable.strings"
                source = localize.read_table(RESOURCES / f"{language}.lproj" / "Localizable.strings")
                entries = dict(re.findall(r'^"(.*)" = "(.*)";$', table.read_text(encoding="utf-8-sig"), re.MULTILINE))
                self.assertEqual(entries, localize.folder_texts(source))

    def test_every_language_has_its_interface_compiled_for_the_oldest_system(self):
        for language in LANGUAGES:
            with self.subTest(language):
                compiled = BUNDLE / "Contents" / "Resources" / f"{language}.lproj" / "VantrelPref.nib"
                arguments, interface = compiled.read_text(encoding="utf-8").split("\n\n", 1)
                arguments = arguments.split("\n")
                self.assertEqual(arguments[arguments.index("--minimum-deployment-target") + 1], OLDEST_SYSTEM)
                self.assertEqual(arguments[arguments.index("--target-device") + 1], "mac")
                table = localize.read_table(RESOURCES / f"{language}.lproj" / "Localizable.strings")
                texts = {key: element.get(attribute)
                         for element, attribute, key in localize.texts(ElementTree.ElementTree(ElementTree.fromstring(interface)))}
                self.assertEqual(texts, {key: text for key, text in table.items() if key in texts})
                self.assertEqual(len(texts) + len(localize.FOLDER_KEYS), len(table))

    def test_the_icon_is_drawn_in_every_size_that_the_system_asks_for(self):
        with (BUNDLE / "Contents" / "Resources" / "Vantrel.icns").open(encoding="utf-8") as file:
            drawings = Path(file.read().split("\n")[-2])
        sizes = {path.name: int.from_bytes(path.read_bytes()[16:20], "big") for path in drawings.iterdir()}
        expected = {}
        for points in (16, 32, 128, 256):
            expected |= {f"icon_{points}x{points}.png": points, f"icon_{points}x{points}@2x.png": 2 * points}
        self.assertEqual(sizes, expected)


if __name__ == "__main__":
    BUILD = Path(sys.argv.pop(1)).resolve()
    BUNDLE = BUILD / "Vantrel.prefPane"
    build(BUILD)
    unittest.main()
