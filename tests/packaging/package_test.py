"""The Debian package: what it brings, and what it brings along.

usage: package_test.py CPACK BUILD_DIRECTORY VERSION
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

VERSION = sys.argv.pop()
BUILD = sys.argv.pop()
CPACK = sys.argv.pop()


def output(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    assert done.returncode == 0, done.stdout
    return done.stdout


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.mkdtemp(prefix="notlet-package-")
        cls.addClassCleanup(shutil.rmtree, folder)
        output(CPACK, "--config", os.path.join(BUILD, "CPackConfig.cmake"), "-B", folder)
        packages = [name for name in os.listdir(folder) if name.endswith(".deb")]
        assert len(packages) == 1, packages
        cls.package = os.path.join(folder, packages[0])
        cls.files = os.path.join(folder, "files")
        output("dpkg-deb", "--extract", cls.package, cls.files)

    def test_needs_what_is_loaded_and_read_as_well_as_what_is_linked(self):
        self.assertEqual(output("dpkg-deb", "--field", self.package, "Version").strip(), VERSION)
        needed = re.split(r"[ ,\n]+", output("dpkg-deb", "--field", self.package, "Depends"))
        for name in ("pocketsphinx-en-us", "qt6-qpa-plugins", "libpulse0", "libpocketsphinx3", "libqt6widgets6"):
            self.assertIn(name, needed)

    def test_holds_programs_that_find_their_files(self):
        usr = os.path.join(self.files, "usr")
        for place in ("bin/notlet", "bin/notlet-desktop", "lib/notlet/notlet-dictation.so", "share/notlet/stopwords.txt",
                      "share/doc/notlet/copyright"):
            self.assertTrue(os.path.isfile(os.path.join(usr, place)), place)
        with open(os.path.join(usr, "share/dbus-1/services/org.notlet.Notlet.service")) as service:
            self.assertIn('Exec="/usr/bin/notlet-desktop"', service.read())


if __name__ == "__main__":
    unittest.main(verbosity=2)
