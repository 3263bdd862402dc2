#!/usr/bin/env python3
"""Installs what was built into a scratch folder and tries it there: installed_test.py BUILD"""
import os, pathlib, shutil, subprocess, sys, tempfile, unittest

import transcript

BUILD = sys.argv.pop(1)
SCAN = "SIR 8 TDI (2C);\nRUNTEST IDLE 1E-3 SEC;\n"
BAD = {"refused.svf": SCAN + "TRST ON;\n", "unproved.svf": "FREQUENCY 1E6 HZ;\n" + SCAN}
MAKE = "Makefile", """TCK_FREQ = 1000000
PROOF_FLAGS = -strict
all: $(patsubst %.svf,%.ksvf,$(wildcard *.svf))
include EXAMPLES/tapforge.mk"""
CMAKE = "CMakeLists.txt", """cmake_minimum_required(VERSION 3.22)
project(board LANGUAGES NONE)
include(EXAMPLES/tapforge.cmake)
file(GLOB files *.svf)
tapforge_convert(vectors FORM ksvf TCK_FREQ 1000000 PROOF_FLAGS -strict FILES ${files})"""
BUILDS = [("make", MAKE, "make -k -j2"),
          ("make", CMAKE, "cmake -G 'Unix Makefiles' . && cmake --build . -j2 -- -k"),
          ("ninja", CMAKE, "cmake -G Ninja . && cmake --build . -j2 -- -k0")]


class Installed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.prefix = pathlib.Path(folder.name)
        subprocess.run(["cmake", "--install", BUILD, "--prefix", folder.name], check=True,
                       stdout=subprocess.DEVNULL)

    def test_links(self):
        documents = list(self.prefix.rglob("*.md"))
        self.assertGreater(len(documents), 5)
        self.assertEqual([link for path in documents for link in transcript.dead_links(path)], [])

    def build(self, folder, commands, changes, status):
        """What a build after these changes says, and the names of what is there then."""
        for path, text in changes.items():
            (folder / path).write_text(text)
        path = f"{self.prefix}/bin{os.pathsep}{os.environ['PATH']}"
        done = subprocess.run(commands, shell=True, cwd=folder, capture_output=True,
                              env={**os.environ, "PATH": path, "MAKEFLAGS": ""})
        self.assertEqual(min(done.returncode, 1), status, done)
        left = (file for file in folder.iterdir() if file.suffix in (".ksvf", ".part"))
        return str(done), {file.stem for file in left}

    def test_builds(self):
        examples = str(next(self.prefix.rglob("examples")))
        for needed, (name, rules), commands in BUILDS:
            if not shutil.which(needed):
                continue
            with self.subTest(commands), tempfile.TemporaryDirectory(dir=self.prefix) as folder:
                rules, run = rules.replace("EXAMPLES", examples), (pathlib.Path(folder), commands)
                product = pathlib.Path(folder, "a.ksvf")
                said, made = self.build(*run, {name: rules, "a.svf": SCAN, "b.svf": SCAN} | BAD, 1)
                self.assertEqual(made, {"a", "b"})
                self.assertIn("-exact: KSVF has no TRST ON", said)
                self.assertIn("NOT the same: frequency", said)
                self.assertIn("TRST ON", self.build(*run, {}, 1)[0])
                time, good = product.stat().st_mtime_ns, {path: SCAN for path in BAD}
                _, made = self.build(*run, good | {"b.svf": BAD["refused.svf"]}, 1)
                self.assertEqual(made, {"a", "refused", "unproved"})
                self.assertEqual(product.stat().st_mtime_ns, time)
                self.build(*run, {name: rules.replace("1000000", "2000000"), "b.svf": SCAN}, 0)
                self.assertIn(b"\0\0\x07\xd0", product.read_bytes())


if __name__ == "__main__":
    unittest.main()
