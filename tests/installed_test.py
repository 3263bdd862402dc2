#!/usr/bin/env python3
"""Installs what was built into a scratch folder and tries it there: installed_test.py BUILD"""
import os, pathlib, shutil, subprocess, sys, tempfile, unittest

import transcript

BUILD = sys.argv.pop(1)
SCAN = "SIR 8 TDI (2C);\nRUNTEST IDLE 1E-3 SEC;\n"
BAD = {"refused.svf": SCAN + "TRST ON;\n", "unproved.svf": "FREQUENCY 1E6 HZ;\n" + SCAN}
MAKEFILE = """TCK_FREQ = 1000000
PROOF_FLAGS = -strict
all: $(patsubst %.svf,%.ksvf,$(wildcard *.svf))
include EXAMPLES/tapforge.mk
"""
CMAKE = """cmake_minimum_required(VERSION 3.22)
project(board LANGUAGES NONE)
include(EXAMPLES/tapforge.cmake)
file(GLOB files *.svf)
tapforge_convert(vectors FORM ksvf TCK_FREQ 1000000 PROOF_FLAGS -strict FILES ${files})
"""
BUILDS = [("make", "Makefile", MAKEFILE, "make -k -j2"),
          ("make", "CMakeLists.txt", CMAKE,
           "cmake -G 'Unix Makefiles' . && cmake --build . -j2 -- -k"),
          ("ninja", "CMakeLists.txt", CMAKE, "cmake -G Ninja . && cmake --build . -j2 -- -k0")]


def setUpModule():
    global prefix, examples
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    prefix = pathlib.Path(folder.name)
    subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)
    examples = next(prefix.rglob("examples"))
    os.environ["PATH"] = f"{prefix}/bin{os.pathsep}{os.environ['PATH']}"
    os.environ.pop("MAKEFLAGS", None)


class Installed(unittest.TestCase):
    def test_links(self):
        documents = list(prefix.rglob("*.md"))
        self.assertGreater(len(documents), 5)
        self.assertEqual([link for path in documents for link in transcript.dead_links(path)], [])

    def test_builds(self):
        for number, (needed, name, text, commands) in enumerate(BUILDS):
            folder = prefix / str(number)

            def build(changes, status):
                for path, content in changes.items():
                    (folder / path).write_text(content)
                done = subprocess.run(commands, shell=True, cwd=folder, capture_output=True)
                self.assertEqual(min(done.returncode, 1), status, done)
                made = {path.stem for path in folder.iterdir() if path.suffix in (".ksvf", ".part")}
                return str(done), made

            if shutil.which(needed):
                with self.subTest(commands):
                    folder.mkdir()
                    rules = {name: text.replace("EXAMPLES", str(examples))}
                    said, made = build(rules | {"a.svf": SCAN, "b.svf": SCAN} | BAD, 1)
                    self.assertEqual(made, {"a", "b"})
                    self.assertIn("-exact: KSVF has no TRST ON", said)
                    self.assertIn("NOT the same: frequency", said)
                    self.assertIn("TRST ON", build({}, 1)[0])
                    stamp = (folder / "a.ksvf").stat().st_mtime_ns
                    good = {path: SCAN for path in BAD}
                    _, made = build(good | {"b.svf": BAD["refused.svf"]}, 1)
                    self.assertEqual(made, {"a", "refused", "unproved"})
                    self.assertEqual((folder / "a.ksvf").stat().st_mtime_ns, stamp)
                    build({name: rules[name].replace("1000000", "2000000"), "b.svf": SCAN}, 0)
                    self.assertIn(b"\0\0\x07\xd0", (folder / "a.ksvf").read_bytes())


if __name__ == "__main__":
    unittest.main()
