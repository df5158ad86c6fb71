#!/usr/bin/python3
"""Makes a release of a bundle and the feed that offers it.

  make_release.py keys FOLDER
      makes FOLDER/key.pem and prints the public key in base64
  make_release.py trust BUNDLE PUBLIC-KEY
      lets that bundle take updates that the key signed
  make_release.py release BUNDLE VERSION FOLDER URL [FLAW]
      writes FOLDER/Karno.tar and FOLDER/appcast.xml, to be served under URL, with FOLDER/../key.pem; FLAW is one
      of the names in FLAWS
  make_release.py build BUNDLE FOLDER -DNAME=VALUE...
      writes FOLDER/Karno.app, what a build with these cache variables would make of the bundle's sources
"""
import base64
import io
import os
import plistlib
import shutil
import subprocess
import sys
import tarfile
import tempfile

SPARKLE = "http://www.andymatuschak.org/xml-namespaces/sparkle"


def openssl(*words):
    return subprocess.run(["openssl", *words], check=True, capture_output=True).stdout


def make_keys(folder):
    key = os.path.join(folder, "key.pem")
    openssl("genpkey", "-algorithm", "ed25519", "-out", key)
    raw = openssl("pkey", "-in", key, "-pubout", "-outform", "DER")[-32:]
    print(base64.b64encode(raw).decode(), end="")


def change_information(bundle, **changes):
    path = os.path.join(bundle, "Contents/Info.plist")
    with open(path, "rb") as file:
        information = plistlib.load(file)
    information.update(changes)
    with open(path, "wb") as file:
        plistlib.dump(information, file)


def copy_of(bundle, version, folder):
    copy = os.path.join(folder, "Karno.app")
    shutil.copytree(bundle, copy, symlinks=True)
    for program in ("MacOS/Karno", "MacOS/karnoctl", "Helpers/karno-installer", "Helpers/Karno.app/Contents/MacOS/Karno",
                    "Helpers/Karno(Fuse).app/Contents/MacOS/Karno(Fuse)"):
        subprocess.run(["strip", os.path.join(copy, "Contents", program)], check=True)
    change_information(copy, CFBundleVersion=version, CFBundleShortVersionString=version)
    return copy


def add_hostile_member(archive):
    member = tarfile.TarInfo("Karno.app/../../../escaped")
    member.size = 3
    archive.addfile(member, io.BytesIO(b"bad"))


def write_archive(copy, path, flaw):
    with tarfile.open(path, "w") as archive:
        if flaw == "hostile":
            add_hostile_member(archive)
        archive.add(copy, "Karno.app")


def build(bundle, folder, *definitions):
    shutil.rmtree(os.path.join(folder, "Karno.app"), ignore_errors=True)
    copy = copy_of(bundle, "0", folder)
    given = dict(definition.removeprefix("-D").split("=", 1) for definition in definitions)
    change_information(copy, **{CACHE_VARIABLES[name]: value for name, value in given.items()})


def truncate(path):
    os.truncate(path, os.path.getsize(path) // 2)


def sign(path, folder):
    return base64.b64encode(openssl("pkeyutl", "-sign", "-inkey", os.path.join(folder, "key.pem"), "-rawin",
                                    "-in", path)).decode()


def feed(version, url, length, signature):
    return f"""<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="{SPARKLE}"><channel><title>Karno</title><item>
<title>Karno {version}</title><sparkle:version>{version}</sparkle:version>
<sparkle:shortVersionString>{version}</sparkle:shortVersionString>
<description><![CDATA[<h2>New in {version}</h2><ul><li>Starts faster</li><li>Mends what was broken</li></ul>]]></description>
<enclosure url="{url}/Karno.tar" length="{length}" type="application/x-tar" sparkle:edSignature="{signature}"/>
</item></channel></rss>
"""


def make_release(bundle, version, folder, url, flaw="none"):
    if flaw not in FLAWS:
        raise SystemExit(f"{flaw} is no flaw")
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, "Karno.tar")
    with tempfile.TemporaryDirectory() as work:
        write_archive(copy_of(bundle, version, work), path, flaw)
    if flaw == "truncated-before-signing":
        truncate(path)
    signature = sign(path, os.path.dirname(folder))
    length = os.path.getsize(path)
    if flaw == "changed":
        with open(path, "r+b") as file:
            file.seek(length // 2)
            byte = file.read(1)
            file.seek(length // 2)
            file.write(bytes([byte[0] ^ 1]))
    if flaw == "truncated":
        truncate(path)
    with open(os.path.join(folder, "appcast.xml"), "w") as file:
        file.write("no feed at all" if flaw == "no-feed" else feed(version, url, length, signature))


CACHE_VARIABLES = {"KARNO_VERSION": "CFBundleShortVersionString", "KARNO_BUNDLE_VERSION": "CFBundleVersion",
                   "KARNO_UPDATE_PUBLIC_KEY": "SUPublicEDKey", "KARNO_UPDATE_FEED_HOST": "KarnoUpdateFeedHost"}
FLAWS = ("none", "changed", "truncated", "truncated-before-signing", "hostile", "no-feed")
COMMANDS = {"keys": make_keys, "release": make_release, "build": build,
            "trust": lambda bundle, key: change_information(bundle, SUPublicEDKey=key)}

if __name__ == "__main__":
    COMMANDS[sys.argv[1]](*sys.argv[2:])
