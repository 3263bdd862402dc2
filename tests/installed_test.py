#!/usr/bin/env python3
"""Installs what was built into a scratch folder and tries it there: installed_test.py BUILD"""
import os, pathlib, subprocess, sys, tempfile, unittest

import transcript

BUILD = sys.argv.pop(1)


def setUpModule():
    global prefix
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    prefix = pathlib.Path(folder.name)
    os.environ.pop("DESTDIR", None)
    subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix], check=True,
                   stdout=subprocess.DEVNULL)


class Documents(unittest.TestCase):
    def test_links(self):
        documents = list(prefix.rglob("*.md"))
        self.assertGreater(len(documents), 5)
        self.assertEqual([link for path in documents for link in transcript.dead_links(path)], [])


if __name__ == "__main__":
    unittest.main()
