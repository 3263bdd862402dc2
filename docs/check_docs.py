#!/usr/bin/env python3
"""Runs the examples of the documents and looks for dead relative links.

    docs/check_docs.py PROGRAM

An example is a line "$ command" in a ```console block or a .Bd block; lines with
"> " go on with it, and all up to the next one is what it must print.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BLOCK = re.compile(r"^```console\n(.*?)^```|^\.Bd -literal[^\n]*\n(.*?)^\.Ed", re.S | re.M)
BANNER = re.compile(r"\n\*{6} .*\n  \*{4} .*\n    \*\* .*\n\n\n")
LINK = re.compile(r"\]\(([^)#]+)")


def examples(document):
    text = document.read_text()
    for markdown, roff in BLOCK.findall(text):
        block = markdown or roff.replace(r"\&", "").replace(r"\e", "\\")
        for part in re.split(r"^\$ ", block, flags=re.M)[1:]:
            command = re.match(r"[^\n]*\n(?:> [^\n]*\n)*", part)[0]
            yield re.sub(r"^> ", "", command, flags=re.M), part[len(command):]


def main(program):
    documents = sorted(p for d in (".", "docs", "examples", "bench") for p in (ROOT / d).glob("*.md"))
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        for name in ("tapforge", "tapforge-replay"):
            os.symlink(pathlib.Path(program).resolve().with_name(name), pathlib.Path(folder, name))
        for part in ("examples", "player"):
            shutil.copytree(ROOT / part, pathlib.Path(folder, part))
        environment = {**os.environ, "PATH": folder + os.pathsep + os.environ["PATH"]}
        for document in [*documents, *ROOT.glob("docs/*.1")]:
            for command, expected in examples(document):
                run = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, text=True,
                                     stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                printed = BANNER.sub("", run.stdout)
                if printed.rstrip("\n") != expected.rstrip("\n"):
                    faults.append(f"{document.name}: $ {command}printed:\n{printed}instead of:\n{expected}")
    for document in documents:
        for link in LINK.findall(document.read_text()):
            if "://" not in link and not (document.parent / link).exists():
                faults.append(f"{document.name}: dead link {link}")
    print(*faults, sep="\n", end="\n" * bool(faults))
    return bool(faults)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
