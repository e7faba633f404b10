"""What `cmake --install` puts in place: whole, valid, and in agreement with the programs.

usage: install_test.py CMAKE BUILD_DIRECTORY VERSION
"""
import configparser
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

VERSION = sys.argv.pop()
BUILD = sys.argv.pop()
CMAKE = sys.argv.pop()
ID = "org.notlet.Notlet"


def run(*command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)


class InstallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = tempfile.mkdtemp(prefix="notlet-install-")
        cls.addClassCleanup(shutil.rmtree, cls.root)
        # Staged as a distribution does it: the files must name the prefix, not the stage.
        cls.prefix = "/opt/no tlet"
        done = run(CMAKE, "--install", BUILD, "--prefix", cls.prefix, env={**os.environ, "DESTDIR": cls.root})
        assert done.returncode == 0, done.stdout

    def path(self, *parts):
        return os.path.join(self.root + self.prefix, *parts)

    def read(self, *parts):
        with open(self.path(*parts), encoding="utf-8") as file:
            return file.read()

    def entry(self, *parts):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read_string(self.read(*parts))
        return parser

    def must_succeed(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def test_entries_are_valid_and_start_what_is_installed(self):
        for parts in (("share", "applications"), ("share", "notlet", "autostart")):
            self.assertEqual(self.must_succeed("desktop-file-validate", self.path(*parts, f"{ID}.desktop")), "")
            entry = self.entry(*parts, f"{ID}.desktop")
            for section in entry.sections():
                program, *arguments = entry[section]["Exec"].split()
                self.assertTrue(os.access(self.path("bin", program), os.X_OK), program)
                known = run(self.path("bin", program), "--help", env={"QT_QPA_PLATFORM": "offscreen"}).stdout
                for argument in arguments:
                    self.assertTrue(argument == "%U" or argument in known, argument)

    def test_the_bus_starts_the_program_under_the_name_of_its_entry(self):
        service = self.entry("share", "dbus-1", "services", f"{ID}.service")["D-BUS Service"]
        self.assertEqual(service["Name"], ID)
        self.assertEqual(service["Exec"], f'"{self.prefix}/bin/notlet-desktop" --background')
        entry = self.entry("share", "applications", f"{ID}.desktop")["Desktop Entry"]
        self.assertEqual(entry["DBusActivatable"], "true")
        self.assertEqual(entry["MimeType"], "x-scheme-handler/notlet;")

    def test_the_installed_program_finds_the_library_for_dictation(self):
        library = [os.path.relpath(os.path.join(folder, name), self.path())
                   for folder, _, names in os.walk(self.path()) for name in names if name == "notlet-dictation.so"]
        self.assertEqual(len(library), 1, library)
        self.assertNotEqual(os.path.dirname(library[0]), "bin", "programs only")
        # The same search as the program's, from where the programs are installed.
        self.must_succeed(os.path.join(BUILD, "tests", "test_platform_speech"), "--gtest_filter=*LibraryMakesEachKind",
                          env={**os.environ, "NOTLET_INSTALLED_PROGRAMS": self.path("bin")})

    def test_the_software_centre_finds_everything_that_is_named(self):
        file = self.path("share", "metainfo", f"{ID}.metainfo.xml")
        self.must_succeed("appstreamcli", "validate", "--no-net", "--pedantic", file)
        tree = xml.etree.ElementTree.parse(file)
        for kind, folder in (("launchable", ("share", "applications")), ("provides/binary", ("bin",))):
            named = tree.findall(kind)
            self.assertTrue(named)
            for found in named:
                self.assertTrue(os.path.exists(self.path(*folder, found.text)), found.text)
        self.assertEqual(tree.find("releases/release").get("version"), VERSION)

    def test_icons_render_as_a_shape_on_nothing(self):
        icon = self.entry("share", "applications", f"{ID}.desktop")["Desktop Entry"]["Icon"]
        picture = os.path.join(self.root, "icon.png")
        for folder, name in (("scalable", icon), ("symbolic", f"{icon}-symbolic")):
            file = self.path("share", "icons", "hicolor", folder, "apps", f"{name}.svg")
            for size in (16, 256):
                self.must_succeed("rsvg-convert", "-w", str(size), "-h", str(size), "-o", picture, file)
                covered = float(self.must_succeed("convert", picture, "-format", "%[fx:mean.a]", "info:"))
                self.assertTrue(0.05 < covered < 0.95, (file, size, covered))

    def test_every_verb_is_explained_and_completed(self):
        verbs = set(re.findall(r"^  ([a-z]+)\b", self.must_succeed(self.path("bin", "notlet"), "help"), re.MULTILINE))
        self.assertIn("capture", verbs)
        manual = self.path("share", "man", "man1", "notlet.1")
        self.assertEqual(self.must_succeed("groff", "-man", "-ww", "-z", manual), "")
        page = self.read("share", "man", "man1", "notlet.1")
        completion = self.path("share", "bash-completion", "completions", "notlet")
        offered = self.must_succeed("bash", "-c", f'. "{completion}"; COMP_WORDS=(notlet ""); COMP_CWORD=1; _notlet; '
                                                  'printf "%s\\n" "${COMPREPLY[@]}"').split()
        for verb in verbs:
            self.assertRegex(page, rf"(?m)^\.B[IR]? .*\b{verb}\b")
            self.assertIn(verb, offered)


if __name__ == "__main__":
    unittest.main(verbosity=2)
