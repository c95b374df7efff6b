"""The check of plug-in bundles for macOS finds each fault and names it, and none in a bundle that is whole."""

import plistlib
import shutil
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

import small_bundle
from small_bundle import INFORMATION, PROJECT


class CheckBundleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.shared = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.system = cls.shared / "system"
        small_bundle.make_system(cls.system)
        cls.good = {name: small_bundle.link(cls.system, cls.shared / name, name) for name in small_bundle.SYSTEMS}
        cls.whole = cls.shared / "Small.fmplugin"
        small_bundle.write_bundle(cls.whole, cls.good.values())

    def setUp(self):
        self.work = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.bundle = self.work / "Small.fmplugin"
        self.contents = self.bundle / "Contents"
        self.executable = self.contents / "MacOS/Small"
        self.strings = self.contents / "Resources/English.lproj/KORUFMPlugin.strings"

    def check(self):
        """Runs the check; returns the faults without the bundle's name before them."""
        result = subprocess.run([PROJECT / "scripts/check-mac-bundle", self.bundle], capture_output=True, text=True)
        faults = [line.removeprefix(f"{self.bundle}: ") for line in result.stderr.splitlines()]
        self.assertEqual(result.returncode, 1 if faults else 0)
        return faults

    def copy_whole(self):
        shutil.copytree(self.whole, self.bundle)

    def build(self, architecture="arm64", **otherwise):
        """Makes a bundle one architecture of which is linked otherwise."""
        different = small_bundle.link(self.system, self.work / architecture, architecture, **otherwise)
        small_bundle.write_bundle(self.bundle, (self.good | {architecture: different}).values())

    def write_information(self, **otherwise):
        information = {key: value for key, value in (INFORMATION | otherwise).items() if value is not None}
        (self.contents / "Info.plist").write_bytes(plistlib.dumps(information))

    def patch(self, at, data):
        """Overwrites bytes of the arm64 slice in the universal executable."""
        content = bytearray(self.executable.read_bytes())
        start = content.index(self.good["arm64"].read_bytes())
        content[start + at:start + at + len(data)] = data
        self.executable.write_bytes(content)

    def signature(self):
        """Where the arm64 slice has its signature."""
        return self.good["arm64"].read_bytes().index(b"\xfa\xde\x0c\xc0")

    # The whole bundle

    def test_nothing_is_wrong_with_a_whole_bundle(self):
        self.copy_whole()
        result = subprocess.run([PROJECT / "scripts/check-mac-bundle", self.bundle], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        told = [line.removeprefix(f"{self.bundle}: ") for line in result.stdout.splitlines()]
        self.assertEqual(len(told), 12)
        self.assertIn("arm64: links AddressBook weakly, symbols: 1", told)
        self.assertIn("x86_64: leaves to the host what its interface has, functions: 1", told)

    def test_no_bundle(self):
        self.assertEqual(self.check(), ["Info.plist: it cannot be read: No such file or directory",
                                        "Small: there is no such file"])

    def test_all_faults_are_told_at_once(self):
        self.build(entry="Other")
        self.strings.unlink()
        self.write_information(LSMinimumSystemVersion=None)
        self.assertEqual(len(self.check()), 3)

    # The executable

    def test_no_executable(self):
        self.copy_whole()
        self.executable.unlink()
        self.assertEqual(self.check(), ["Small: there is no such file"])

    def test_an_executable_of_another_kind(self):
        self.copy_whole()
        self.executable.write_text("not for a Mac")
        (fault,) = self.check()
        self.assertRegex(fault, "^Small: .*not recognized as a valid object file")

    def test_a_missing_architecture(self):
        small_bundle.write_bundle(self.bundle, [self.good["x86_64"]])
        self.assertEqual(self.check(), ["Small: no arm64, only x86_64"])

    def test_a_library_instead_of_a_bundle(self):
        self.build(kind="-dynamiclib")
        self.assertEqual(self.check(), ["arm64: it is no loadable bundle (MH_BUNDLE)"])

    def test_too_new_a_system(self):
        self.build(oldest="12.0")
        self.assertEqual(self.check(), ["arm64: the oldest system is macOS 12.0, not 11.0"])
        shutil.rmtree(self.bundle)
        self.build("x86_64", oldest="10.14")
        self.assertEqual(self.check(), ["x86_64: the oldest system is macOS 10.14, not 10.13"])

    # Symbols and libraries

    def test_no_entry_point(self):
        self.build(entry="Other")
        self.assertEqual(self.check(), ["arm64: the entry point _FMExternCallProc is not exported"])

    def test_a_further_export(self):
        self.build("x86_64", more='__attribute__((visibility("default"))) int leaked = 1;')
        self.assertEqual(self.check(), ["x86_64: exports more than the entry point: _leaked"])

    def test_a_weak_definition_is_an_export(self):
        self.build(more='__attribute__((weak, visibility("default"))) int leaked(void) { return 1; }')
        self.assertEqual(self.check(), ["arm64: exports more than the entry point: _leaked"])

    def test_address_book_linked_strongly(self):
        self.build(address_book=("-framework", "AddressBook"))
        self.assertEqual(self.check(), ["arm64: AddressBook is not linked weakly but with LC_LOAD_DYLIB"])

    def test_address_book_not_linked(self):
        self.build(address_book=(), undefined=("_FM_Text_Uppercase", "_kABFirstNameProperty"))
        self.assertEqual(self.check(), ["arm64: AddressBook is not linked",
                                        "arm64: undefined, and not of the host's interface: _kABFirstNameProperty"])

    def test_a_symbol_that_is_wanted_of_address_book_at_any_price(self):
        self.copy_whole()
        # Of an undefined symbol the table has: external, no section, weak, the second library; no value.
        at = self.good["arm64"].read_bytes().index(b"\x01\x00\x40\x02" + bytes(8))
        self.patch(at + 2, b"\x00")
        self.assertIn("arm64: wanted from AddressBook, but not weakly: _kABFirstNameProperty", self.check())

    def test_an_undefined_symbol(self):
        self.build(more="extern int strange(void); __attribute__((used)) static int f(void) { return strange(); }",
                   undefined=("_FM_Text_Uppercase", "_strange"))
        self.assertEqual(self.check(), ["arm64: undefined, and not of the host's interface: _strange"])

    def test_a_function_that_the_interface_does_not_have(self):
        self.build(more="extern int FM_Text_Nothing(void);"
                        "__attribute__((used)) static int f(void) { return FM_Text_Nothing(); }",
                   undefined=("_FM_Text_Uppercase", "_FM_Text_Nothing"))
        self.assertEqual(self.check(), ["arm64: undefined, and not of the host's interface: _FM_Text_Nothing"])

    def test_an_undefined_symbol_without_library_names(self):
        self.build("x86_64", linker=("-adhoc_codesign", "-flat_namespace"))
        self.assertIn("x86_64: undefined, and not of the host's interface: "
                      "_getpid, _kABFirstNameProperty, dyld_stub_binder", self.check())

    def test_a_foreign_library(self):
        self.build(libraries=("-lForeign",),
                   more="extern int foreign(void); __attribute__((used)) static int f(void) { return foreign(); }")
        self.assertEqual(self.check(), [
            "arm64: loads what is neither public in macOS nor the host's: /opt/lib/libForeign.dylib"])

    # Signatures

    def test_an_unsigned_architecture(self):
        self.build("x86_64", linker=("-no_adhoc_codesign",))
        self.assertEqual(self.check(), ["x86_64: it is not signed"])

    def test_a_page_that_was_changed(self):
        self.copy_whole()
        at = self.good["arm64"].read_bytes().index(b"_kABFirstNameProperty")
        self.patch(at + len("_kAB"), b"f")
        self.assertRegex(self.check()[-1], r"^arm64: page \d+ is not what was signed$")

    def test_a_hash_that_was_changed(self):
        self.copy_whole()
        content = self.good["arm64"].read_bytes()
        directory = content.index(b"\xfa\xde\x0c\x02")
        (hashes,) = struct.unpack_from(">I", content, directory + 16)
        self.patch(directory + hashes + 32, bytes(32))
        self.assertEqual(self.check(), ["arm64: page 1 is not what was signed"])

    def test_a_signature_of_no_kind(self):
        self.copy_whole()
        self.patch(self.good["arm64"].read_bytes().index(b"\xfa\xde\x0c\x02") + 12, bytes(4))
        self.assertEqual(self.check(), ["arm64: the signature is neither a certificate's nor an ad-hoc one"])

    def test_a_signature_of_nothing(self):
        self.copy_whole()
        self.patch(self.signature() + 8, struct.pack(">I", 0))
        self.assertEqual(self.check(), ["arm64: the signature has no code directory"])

    def test_a_signature_that_covers_too_little(self):
        self.copy_whole()
        limit = self.good["arm64"].read_bytes().index(b"\xfa\xde\x0c\x02") + 32
        self.patch(limit, struct.pack(">I", 4096))
        (fault,) = self.check()
        self.assertRegex(fault, r"^arm64: the signature covers \d+ pages, 4096 bytes, of \d+$")

    def test_a_signature_that_is_cut_short(self):
        self.copy_whole()
        self.patch(self.signature() + 16, struct.pack(">I", 0xFFFFFF))
        (fault,) = self.check()
        self.assertRegex(fault, "^arm64: the signature is cut short")

    # String tables

    def test_no_string_table(self):
        self.copy_whole()
        shutil.rmtree(self.strings.parent)
        self.assertEqual(self.check(), ["English.lproj: no KORUFMPlugin.strings"])

    def test_missing_and_empty_strings(self):
        self.copy_whole()
        text = self.strings.read_text()
        text = text.replace('"KORUFMPlugin 204"', '"KORUFMPlugin 99204"').replace('= "Velocard";', '= "";')
        self.strings.write_text(text)
        (fault,) = self.check()
        self.assertRegex(fault, r"^English.lproj: KORUFMPlugin.strings lacks 2 of \d+ strings: "
                                "KORUFMPlugin 128, KORUFMPlugin 204$")

    def test_a_string_table_with_an_error(self):
        self.copy_whole()
        lines = self.strings.read_text().splitlines()
        lines[1] = lines[1].removesuffix(";")
        self.strings.write_text("\n".join(lines))
        self.assertEqual(self.check(), ['English.lproj: KORUFMPlugin.strings, line 2: expected "key" = "text";'])

    def test_the_string_table_of_another_language(self):
        self.copy_whole()
        german = self.contents / "Resources/German.lproj"
        german.mkdir()
        shutil.copy(self.strings, german)
        (german / "KORUFMPlugin.strings").write_bytes(self.strings.read_text().encode("utf-16"))
        self.assertEqual(self.check(), [])
        (german / "KORUFMPlugin.strings").write_bytes(b"\xff\x00")
        (fault,) = self.check()
        self.assertRegex(fault, "^German.lproj: KORUFMPlugin.strings is neither UTF-8 nor UTF-16")

    # Info.plist

    def test_no_property_list(self):
        self.copy_whole()
        for content in b"<plist><dict>", b"", b"<plist><array/></plist>", b"bplist00 and nothing":
            (self.contents / "Info.plist").write_bytes(content)
            (fault,) = self.check()
            self.assertRegex(fault, "^Info.plist: it is no property list")

    def test_missing_properties(self):
        self.copy_whole()
        for key in INFORMATION.keys() - {"CFBundlePackageType"}:
            self.write_information(**{key: None})
            self.assertEqual(self.check(), [f"Info.plist: it lacks {key}"])

    def test_wrong_properties(self):
        self.copy_whole()
        for key, value, fault in (
                ("CFBundlePackageType", "APPL", "CFBundlePackageType is not BNDL"),
                ("LSMinimumSystemVersion", "11.0", "LSMinimumSystemVersion is 11.0, not 10.13"),
                ("LSMinimumSystemVersion", "@TARGET@", "LSMinimumSystemVersion is @TARGET@, not 10.13"),
                ("CFBundleExecutable", "Large", "CFBundleExecutable is Large, not the bundle's name")):
            self.write_information(**{key: value})
            self.assertEqual(self.check(), [f"Info.plist: {fault}"])


if __name__ == "__main__":
    unittest.main()
