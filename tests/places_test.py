#!/usr/bin/env python3
"""Compares places that must agree: places_test.py [EMULATOR ...] TAPFORGE TAPFORGE-REPLAY

Options with help, manuals, README and completions; messages with the manual; words of SVF with
random_svf.py, fuzz/svf.dict and tapforge-replay; KSVF commands with player/, docs/ksvf.md and
transcript.py."""
import pathlib, re, subprocess, sys, tempfile, unittest

import transcript
from random_svf import random_svf

*EMULATOR, TAPFORGE, REPLAY = sys.argv[1:]  # an emulator may stand in front
del sys.argv[1:]
ROOT = pathlib.Path(__file__).resolve().parent.parent
SHARED = {"kLogOption": "l", "kKeyOption": "z", "kFrequencyOption": "tck_freq"}
INTERNAL = {"inorder", "kmaxsrclines", "kshowallopts", "runmin", "ver"}
COMPLETE = ("bash", "-c", """. completions/$1.bash; COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_${1//-/_}; echo " ${COMPREPLY[*]}" """, "bash")
# Texts of several words, and those that are no messages: help, progress, parts of the output.
SEVERAL = r"[A-Za-z]{2}[^\sA-Za-z]*\s\W*[A-Za-z]{2}"
NO_MESSAGE = (r"^\t|-->|Usage|Ondrel|Version|\*\*\*|---|Elapsed|ENDSTATE_|Header/Trailer|Process|"
              "item read|too long$|tapbus -wait|Tcl form$")


def source(*patterns):
    """Text of these files, but no tests, comments, directives, assertions and locale report."""
    paths = [path for pattern in patterns for path in sorted(ROOT.glob(pattern))
             if path.suffix in (".h", ".cc", ".c") and not re.search("_test|locale", path.stem)]
    text = "\n".join(path.read_text() for path in paths)
    return re.sub(r"(?m)//.*$|^\s*#.*$|assert\([^;]*;", "", text)


def part(path, start, end):
    return (ROOT / path).read_text().split(start, 1)[1].split(end, 1)[0]


def names(pattern, text):
    return {name.lower() for name in re.findall(pattern, text)}


def output(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout


def completed(*words):
    return names(r" -+([-\w]+)", output(*COMPLETE, *words, "-"))


def zsh(mode):
    arrays = [part("completions/_tapforge", f"\n{name}=(", "\n)") for name in ("both", mode)]
    return names(r"(?m)^  '(?:\(-\w\)|\*)?-(\w+)\[", "".join(arrays))


class Options(unittest.TestCase):
    def compare(self, mode, number, words, **places):
        rows = part(f"shell/{mode}_options.cc", "kOptions[] = {", "\n};")
        options = names(r'(?:\{|overwriteOption<\w+>\()"(\w+)"', rows)
        options |= {name for word, name in SHARED.items() if word in rows}
        form = part("docs/tapforge.1", "SYNOPSIS\n", ".Sh").split(".Nm\n")[number + 1]
        tags = "".join(re.findall(r"(?m)^\.It Fl.*", "".join(
            part("docs/tapforge.1", f"Options of {modes}\n", ".Ss")
            for modes in ("both modes", f"mode {number}"))))
        places |= {"manual": names(r"(?:Fl|,) (\w+)", tags) | words,
                   "synopsis": names(r"Fl (\w+)", form)}
        for place, found in places.items():
            self.assertEqual(found, options, place)

    def test_svf_and_tcl(self):
        told = output(*EMULATOR, TAPFORGE)
        shown = names(r"\t-(\w+)", told) | {"d", "exact", "i", "l", "o", "z"}
        usual = names(r"`-(\w+)", part("README.md", "| SVF and Tcl |", "\n\n"))
        self.compare("script", 0, set(), zsh=zsh("svf"), bash=completed("tapforge", "-c"),
                     help=shown, readme=shown | usual)

    def test_ksvf(self):
        told = output(*EMULATOR, TAPFORGE, "-ksvf", "-kshowallopts")
        silent = {"exact", "i", "inorder", "kshowallopts", "ksvf", "l", "o", "runmin", "z"}
        shown = names(r"\t-(\w+)", told) | silent
        usual = names(r"`-(\w+)", part("README.md", "| KSVF | |", "\n\n"))
        self.compare("ksvf", 1, INTERNAL, zsh=zsh("ksvf"), bash=completed("tapforge", "-ksvf"),
                     help=shown, readme=shown | usual)

    def test_replay(self):
        told = output(*EMULATOR, REPLAY, "--help")
        page = (ROOT / "docs/tapforge-replay.1").read_text()
        zsh = (ROOT / "completions/_tapforge-replay").read_text()
        tags = "".join(re.findall(r"\n\.It Fl.*", page))
        places = {"manual": names(r"(?:Fl -?|, -)([-\w]+)", tags),
                  "synopsis": names(r"Fl -?([-\w]+)", page.split(".Sh DESC")[0]) | {"h", "version"},
                  "zsh": names(r"(?<=[',{*)])-+([-\w]+)", zsh),
                  "bash": completed("tapforge-replay"),
                  "source": names(r'\{"(\w+)", \[&', source("replay/main.cc"))}
        # An option may have two names; "--", the end of the options, need not be completed.
        rows = [names(r"(?:^|, )-+([-\w]*)", row) for row in re.findall(r"(?m)^-.*?(?=  |$)", told)]
        self.assertGreater(len(rows), 8)
        for place, found in places.items():
            self.assertLessEqual(found, set().union(*rows), place)
            self.assertEqual([row for row in rows if not row & found and row != {""}], [], place)
        classes = names(r"(?m)^  [ *!] ([-\w]+) ", told)
        tags = "".join(re.findall(r"\n\.It .*", part("docs/tapforge-replay.1", ".Ss Cl", ".Sh")))
        self.assertEqual(names(r"(?:Sy|,) ([-\w]+)", tags), classes)
        known = {"zsh": names(r"[-\w]+", zsh.split("classes=(")[1].split(")")[0]),
                 "bash": set(output(*COMPLETE, "tapforge-replay", "-allow", "").split())}
        for place, found in known.items():
            self.assertEqual(found, classes - names(r"(?m)^  ! ([-\w]+) ", told), place)


class Words(unittest.TestCase):
    def test_messages_are_in_the_manual(self):
        page = part("docs/tapforge.1", ".Sh DIAGNOSTICS", ".Sh").replace(r"\&", "")
        told = re.findall(r'(?m)^\.It Sy "(.*)"$', page.replace('""', '"'))
        ours = re.sub(r'"\s*\n\s*"', "", source("io/*", "s*/*", "vector/*"))
        ours = set(re.findall(r'"((?:\\.|[^"\\\n])*)"', ours.replace(r"%d", "")))
        ours = {text.encode().decode("unicode_escape") for text in ours}
        lacking = [text for text in ours if re.search(SEVERAL, text)
                   and not re.search(NO_MESSAGE, text) and text.strip() not in "\n".join(told)]
        self.assertEqual(lacking, [])
        pieces = [piece.strip() for text in told
                  for piece in re.split(r"[][():]|\b(?:word|file|form|c|n|t|f|98)\b", text)]
        gone = [piece for piece in pieces if " " in piece and piece not in "\n".join(ours)]
        self.assertEqual(gone, [])

    def test_words_of_svf(self):
        words = names(r'"([a-z]\w+)"', source("svf/*", "scan/tap_pattern.h"))
        self.assertLessEqual({"sir", "smask", "irupdate", "maximum", "absent"}, words)
        self.assertEqual(words - names(r"\w+", (ROOT / "fuzz/svf.dict").read_text()), set())
        svf = random_svf(1, 5000)
        self.assertEqual(words - names(r"\w+", re.sub("(!|//).*", "", svf)), {"absent"})
        with tempfile.TemporaryDirectory() as folder:  # nor does replay refuse any
            file = pathlib.Path(folder, "all.svf")
            file.write_text(svf + "TRST ABSENT;\n")
            output(*EMULATOR, REPLAY, file)

    def test_ksvf_commands(self):
        codes = dict(re.findall(r"\b(K\w+) = (\d+)", source("vector/ksvf_commands.h")))
        self.assertGreater(len(codes), 19)
        page = re.findall(r"\| (\d+) \(`\w+`\) \| `(K\w+)`", (ROOT / "docs/ksvf.md").read_text())
        header = source("player/ksvf_player.h")
        places = {"document": {name: code for code, name in page},
                  "header": dict(re.findall(r"\b(?:KSVF_)?(K\w+) = (\d+)", header)),
                  "transcript": {row[0]: str(code) for code, row in transcript.COMMANDS.items()}}
        for place, found in places.items():
            self.assertEqual(found, codes, place)
        player = (ROOT / "player/ksvf_player.c").read_text()
        self.assertLessEqual(set(codes), set(re.findall(r"\b(?:KSVF_)?(K[A-Z]+2?)\b", player)))


if __name__ == "__main__":
    unittest.main()
