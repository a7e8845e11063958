"""Makes builds of one app with the tools that make archives in the wild: make-archives.py FOLDER ZIP BSDTAR

Each is named after the tool and what is special about it. The app is com.example.glowworm, version 1.4, build 27, and
uses no encryption of its own.
"""
import io
import pathlib
import plistlib
import shutil
import subprocess
import sys
import zipfile

folder, zip_tool, bsdtar = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
NAME = "Payload/Glowworm.app/Info.plist"
APP = {
    "CFBundleIdentifier": "com.example.glowworm",
    "CFBundleShortVersionString": "1.4",
    "CFBundleVersion": "27",
    "CFBundleSupportedPlatforms": ["iPhoneOS"],
    "ITSAppUsesNonExemptEncryption": False,
}
EXTENSION = {**APP, "CFBundleIdentifier": "com.example.glowworm.widget"}
DISTRIBUTION = """<?xml version="1.0" encoding="utf-8"?>
<installer-gui-script minSpecVersion="2">
    <title>Glowworm</title>
    <pkg-ref id="com.example.glowworm"><bundle-version>
        <bundle id="com.example.glowworm.helper" path="Helper.app"/>
        <bundle CFBundleShortVersionString="1.4" CFBundleVersion="27" id="com.example.glowworm" path="Glowworm.app"/>
        <bundle CFBundleShortVersionString="9" CFBundleVersion="9" id="com.example.framework" path="F.framework"/>
    </bundle-version></pkg-ref>
</installer-gui-script>
"""


def plist(values, binary=True):
    return plistlib.dumps(values, fmt=plistlib.FMT_BINARY if binary else plistlib.FMT_XML)


def unpacked(name, binary):
    """The app as a folder, with an extension that an archive lists first."""
    root = folder / name
    for path, values in {"Payload/Glowworm.app/A.appex/Info.plist": EXTENSION, NAME: APP}.items():
        file = root / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(plist(values, binary))
    (root / "Payload/Glowworm.app/Glowworm").write_bytes(bytes(range(256)) * 1000)
    return root


def run(*words, cwd, output=None):
    subprocess.run(words, cwd=cwd, check=True, stdout=output or subprocess.DEVNULL)


def streamed(*words, cwd, target):
    """A tool that can't go back in its output writes the sizes behind each member."""
    result = subprocess.run(words, cwd=cwd, check=True, stdout=subprocess.PIPE)
    target.write_bytes(result.stdout)


def info_zip():
    for binary, kind in ((True, "binary"), (False, "xml")):
        root = unpacked(kind, binary)
        run(zip_tool, "-q", "-r", folder / f"infozip-deflated-{kind}.ipa", "Payload", cwd=root)
        run(zip_tool, "-q", "-0", "-r", folder / f"infozip-stored-{kind}.ipa", "Payload", cwd=root)
    run(zip_tool, "-q", "-fz", "-r", folder / "infozip-zip64.ipa", "Payload", cwd=root)
    streamed(zip_tool, "-q", "-r", "-", "Payload", cwd=root, target=folder / "infozip-streamed.ipa")


def libarchive():
    root = unpacked("libarchive", True)
    run(bsdtar, "--format", "zip", "-cf", folder / "libarchive-deflated.ipa", "Payload", cwd=root)
    run(bsdtar, "--format", "zip", "--options", "zip:compression=store", "-cf", folder / "libarchive-stored.ipa",
        "Payload", cwd=root)
    run(bsdtar, "--format", "zip", "--options", "zip:zip64", "-cf", folder / "libarchive-zip64.ipa", "Payload", cwd=root)
    streamed(bsdtar, "--format", "zip", "-cf", "-", "Payload", cwd=root, target=folder / "libarchive-streamed.ipa")

    package = folder / "package"
    (package / "Glowworm.pkg").mkdir(parents=True)
    (package / "Distribution").write_text(DISTRIBUTION)
    (package / "Glowworm.pkg/Distribution").write_text("<not-this-one/>")
    (package / "Glowworm.pkg/Payload").write_bytes(bytes(range(256)) * 1000)
    for compression in ("gzip", "none"):
        run(bsdtar, "--format", "xar", "--options", f"xar:compression={compression}", "-cf",
            folder / f"libarchive-{compression}.pkg", "Glowworm.pkg", "Distribution", cwd=package)
    for compression in ("bzip2", "xz"):
        run(bsdtar, "--format", "xar", "--options", f"xar:compression={compression}", "-cf",
            folder / f"libarchive-{compression}.pkg", "Distribution", cwd=package)


def python(name, method=zipfile.ZIP_DEFLATED, binary=True, app=APP, comment=b"", others=0):
    with zipfile.ZipFile(folder / name, "w", method) as archive:
        archive.comment = comment
        for i in range(others):
            archive.writestr(zipfile.ZipInfo(f"Payload/Glowworm.app/{i}.strings"), b"")
        archive.writestr("Payload/Glowworm.app/PlugIns/W.appex/Info.plist", plist(EXTENSION, binary))
        archive.writestr(NAME, plist(app, binary))


class Unseekable(io.BytesIO):
    def seekable(self):
        return False

    def tell(self):
        raise OSError("a stream")

    def seek(self, *_):
        raise OSError("a stream")


def python_zipfile():
    python("python-deflated.ipa")
    python("python-deflated-xml.ipa", binary=False)
    python("python-stored.ipa", zipfile.ZIP_STORED)
    python("python-bzip2.ipa", zipfile.ZIP_BZIP2)
    python("python-lzma.ipa", zipfile.ZIP_LZMA)
    python("python-longest-comment.ipa", comment=b"PK" + b"c" * 65_533)
    python("python-70000-entries.ipa", others=70_000)
    python("python-tv.ipa", app={**APP, "CFBundleSupportedPlatforms": ["AppleTVOS"]})
    python("python-vision.ipa", app={**APP, "CFBundleSupportedPlatforms": ["XROS"]})
    stream = Unseekable()
    with zipfile.ZipFile(stream, "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr(NAME, plist(APP))
    (folder / "python-streamed.ipa").write_bytes(stream.getvalue())
    # The end record leaves room for 65,535 bytes; what is behind it is nobody's comment any more.
    longest = (folder / "python-longest-comment.ipa").read_bytes()
    (folder / "python-comment-too-long.ipa").write_bytes(longest + b"c")


info_zip()
libarchive()
python_zipfile()
for path in folder.iterdir():
    if path.is_dir():
        shutil.rmtree(path)
