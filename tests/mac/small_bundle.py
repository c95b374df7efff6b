"""Makes small plug-in bundles for macOS, with clang and lld and without an SDK: stand-ins for the real one, whole or
broken in one place."""

import plistlib
import shutil
import subprocess
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
STRINGS = PROJECT / "plugin/resources/English.lproj/KORUFMPlugin.strings"

SOURCE = """
extern const void* const kABFirstNameProperty;
extern int getpid(void);
extern void FM_Text_Uppercase(const void*);
__attribute__((visibility("default"))) void %(entry)s(void* call) {
    FM_Text_Uppercase(kABFirstNameProperty == call ? call : (const char*)call + getpid());
}
%(more)s
"""

INFORMATION = {
    "CFBundleDevelopmentRegion": "English",
    "CFBundleExecutable": "Small",
    "CFBundleIdentifier": "org.velocard.Small",
    "CFBundleName": "Small",
    "CFBundlePackageType": "BNDL",
    "CFBundleShortVersionString": "1.0",
    "CFBundleVersion": "1.0",
    "LSMinimumSystemVersion": "10.13",
}

SYSTEMS = {"x86_64": "10.13", "arm64": "11.0"}
ADDRESS_BOOK = "-weak_framework", "AddressBook"


def run(*command):
    subprocess.run([str(part) for part in command], check=True)


def llvm(name, *arguments):
    path = subprocess.run(["clang", f"-print-prog-name=llvm-{name}"], check=True, capture_output=True, text=True).stdout
    run(path.strip(), *arguments)


def write_library(path, name, *symbols):
    """Writes the text form of a system's library, which is all that a linker needs of it."""
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("--- !tapi-tbd\n"
                    "tbd-version: 4\n"
                    "targets: [ x86_64-macos, arm64-macos ]\n"
                    f"install-name: '{name}'\n"
                    "exports:\n"
                    "  - targets: [ x86_64-macos, arm64-macos ]\n"
                    f"    symbols: [ {', '.join(symbols)} ]\n")


def make_system(folder):
    """Writes the libraries that small bundles are linked with."""
    write_library(folder / "libSystem.tbd", "/usr/lib/libSystem.B.dylib", "_getpid", "dyld_stub_binder")
    write_library(folder / "libForeign.tbd", "/opt/lib/libForeign.dylib", "_foreign")
    write_library(folder / "AddressBook.framework/AddressBook.tbd",
                  "/System/Library/Frameworks/AddressBook.framework/Versions/A/AddressBook", "_kABFirstNameProperty")


def link(system, output, architecture, entry="FMExternCallProc", more="", oldest=None, kind="-bundle",
         address_book=ADDRESS_BOOK, undefined=("_FM_Text_Uppercase",), linker=("-adhoc_codesign",), libraries=()):
    """Makes one architecture of an executable; each argument is one thing to do otherwise."""
    source = output.with_suffix(".c")
    source.write_text(SOURCE % {"entry": entry, "more": more})
    options = [f"-Wl,-U,{symbol}" for symbol in undefined] + [f"-Wl,{option}" for option in linker]
    run("clang", f"--target={architecture}-apple-macos{oldest or SYSTEMS[architecture]}", "-O1", "-fvisibility=hidden",
        "-fno-stack-protector", "-fuse-ld=lld", kind, "-nostdlib", "-Wno-overriding-t-option", source, "-o", output,
        f"-L{system}", f"-F{system}", "-lSystem", *address_book, *libraries, *options)
    return output


def write_bundle(bundle, slices, information=None):
    """Writes a bundle of these architectures' executables."""
    contents = bundle / "Contents"
    (contents / "MacOS").mkdir(parents=True)
    (contents / "Resources/English.lproj").mkdir(parents=True)
    shutil.copy(STRINGS, contents / "Resources/English.lproj")
    (contents / "Info.plist").write_bytes(plistlib.dumps(information or INFORMATION))
    llvm("lipo", "-create", *slices, "-output", contents / "MacOS/Small")
