#!/usr/bin/env python3
"""The zip of a bundle is the same whenever and however its files were written, and unpacks with their permissions."""

import os
import plistlib
import subprocess
import tempfile
import unittest
import zipfile

PROGRAM = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../scripts/zip-bundle")
FILES = {"Contents/MacOS/Toy": (b"machine code" * 99, 0o755), "Contents/Resources/a.txt": (b"words", 0o644)}


def bundle(folder, files, time, mode):
    path = os.path.join(folder, "Toy.fmplugin")
    for name, (contents, permissions) in files:
        file = os.path.join(path, name)
        os.makedirs(os.path.dirname(file), exist_ok=True)
        with open(file, "wb") as stream:
            stream.write(contents)
        os.chmod(file, permissions & mode)
        os.utime(file, (time, time))
    with open(os.path.join(path, "Contents/Info.plist"), "wb") as stream:
        plistlib.dump({"CFBundleShortVersionString": "1.2"}, stream)
    return path


def packed(path, folder, epoch):
    environment = {**os.environ, "SOURCE_DATE_EPOCH": str(epoch)}
    done = subprocess.run([PROGRAM, path, folder], capture_output=True, text=True, check=True, env=environment)
    return done.stdout.strip()


class ZipTest(unittest.TestCase):
    def test_two_bundles_with_the_same_contents_are_packed_alike(self):
        with tempfile.TemporaryDirectory() as one, tempfile.TemporaryDirectory() as other:
            first = packed(bundle(one, FILES.items(), 1_000_000_000, 0o777), one, 1_700_000_000)
            second = packed(bundle(other, reversed(FILES.items()), 1_600_000_000, 0o700), other, 1_700_000_000)
            self.assertEqual(os.path.basename(first), "Toy-1.2-macos.zip")
            with open(first, "rb") as left, open(second, "rb") as right:
                self.assertEqual(left.read(), right.read())

    def test_what_is_in_it(self):
        with tempfile.TemporaryDirectory() as folder:
            archive = zipfile.ZipFile(packed(bundle(folder, FILES.items(), 0, 0o777), folder, 1_700_000_000))
            program = archive.getinfo("Toy.fmplugin/Contents/MacOS/Toy")
            self.assertEqual(program.external_attr >> 16, 0o100755)
            self.assertEqual(program.date_time[:3], (2023, 11, 14))
            self.assertEqual(archive.read(program), FILES["Contents/MacOS/Toy"][0])
            self.assertEqual(archive.getinfo("Toy.fmplugin/Contents/Resources/a.txt").external_attr >> 16, 0o100644)


if __name__ == "__main__":
    unittest.main()
