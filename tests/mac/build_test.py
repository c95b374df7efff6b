"""The build for macOS as far as it goes without an SDK: what it says when there is none, and what it configures."""

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from small_bundle import PROJECT


class BuildTest(unittest.TestCase):
    def setUp(self):
        self.work = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.sdk = self.work / "MacOSX.sdk"
        self.sdk.mkdir()
        (self.sdk / "SDKSettings.json").write_text('{"Version": "11.3", "CanonicalName": "macosx11.3"}')

    def run_with(self, sdk, *command):
        environment = {key: value for key, value in os.environ.items() if key not in ("MACOS_SDK", "FMWRAPPER_SDK")}
        if sdk is not None:
            environment["MACOS_SDK"] = str(sdk)
        return subprocess.run(command, capture_output=True, text=True, env=environment)

    def configure(self, sdk, *options):
        return self.run_with(sdk, "cmake", "-S", PROJECT, "-B", self.work / "build", "-G", "Ninja", "--toolchain",
                             PROJECT / "cmake/macos-cross.cmake", "-D", "CMAKE_OSX_ARCHITECTURES=x86_64;arm64", *options)

    def test_make_mac_says_in_a_line_that_it_needs_an_sdk(self):
        for sdk in None, "", self.work:
            result = self.run_with(sdk, PROJECT / "scripts/build-mac")
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertEqual(result.stderr, "make mac needs MACOS_SDK, the folder of a macOS SDK (with its SDKSettings); "
                                            f'it is "{sdk or ""}"\n')

    def test_an_sdk_is_taken_after_a_configuration_without_one(self):
        result = self.configure(None)
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("MACOS_SDK must be the folder of a macOS SDK", result.stderr)
        result = self.configure(self.sdk)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        rules = (self.work / "build/build.ninja").read_text()
        for option in f"-isysroot {self.sdk}", "-O2", "-Xarch_arm64 -mmacosx-version-min=11.0":
            self.assertTrue(option in rules, option)
        # The interface's functions, and nothing else, are left to the host.
        calls = (PROJECT / "tests/sdk/calls.def").read_text()
        functions = {f"FM_{owner}_{name}" for owner, name in re.findall(r"^CALL\w*\(\w+, \w+, (\w+), (\w+),", calls, re.M)}
        self.assertGreater(len(functions), 200)
        self.assertEqual(set(re.findall(r"-Wl,-U,_(\S+)", rules)), functions)
        self.assertTrue("dynamic_lookup" not in rules)

    def test_an_interface_that_is_not_there(self):
        result = self.configure(self.sdk, "-D", f"FMWRAPPER_SDK={self.work}")
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("FMWRAPPER_SDK must be a folder that holds FMWrapper/", " ".join(result.stderr.split()))


if __name__ == "__main__":
    unittest.main()
