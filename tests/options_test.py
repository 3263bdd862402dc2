#!/usr/bin/env python3
"""Compares the options of each mode with its help, the manual, the README and the completions:
options_test.py TAPFORGE ..."""
import pathlib, re, subprocess, sys, unittest

PROGRAM, sys.argv[1:] = sys.argv[1:], []  # an emulator may stand in front
ROOT = pathlib.Path(__file__).resolve().parent.parent
SHARED = {"kLogOption": "l", "kKeyOption": "z", "kFrequencyOption": "tck_freq"}
INTERNAL = {"inorder", "kmaxsrclines", "kshowallopts", "runmin", "ver"}
COMPLETE = """. completions/tapforge.bash
COMP_WORDS=(tapforge $1 -) COMP_CWORD=2; _tapforge; echo " ${COMPREPLY[*]}" """


def part(path, start, end):
    return (ROOT / path).read_text().split(start, 1)[1].split(end, 1)[0]


def names(pattern, text):
    return {name.lower() for name in re.findall(pattern, text)}


def output(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout


def manual(number):
    sections = [f"Options of {mode}\n" for mode in ("both modes", f"mode {number}")]
    lines = "".join(part("docs/tapforge.1", section, ".Ss") for section in sections)
    return names(r"(?:Fl|,) (\w+)", "".join(re.findall(r"(?m)^\.It Fl.*", lines)))


def synopsis(number):
    return names(r"Fl (\w+)", part("docs/tapforge.1", "SYNOPSIS\n", ".Sh").split(".Nm\n")[number + 1])


def zsh(mode):
    arrays = [part("completions/_tapforge", f"\n{name}=(", "\n)") for name in ("both", mode)]
    return names(r"(?m)^  '(?:\(-\w\)|\*)?-(\w+)\[", "".join(arrays))


class Options(unittest.TestCase):
    def compare(self, mode, number, words, **places):
        rows = part(f"shell/{mode}_options.cc", "kOptions[] = {", "\n};")
        options = names(r'(?:\{|overwriteOption<\w+>\()"(\w+)"', rows)
        options |= {name for word, name in SHARED.items() if word in rows}
        places |= {"manual": manual(number) | words, "synopsis": synopsis(number)}
        for place, found in places.items():
            self.assertEqual(found, options, place)

    def test_svf_and_tcl(self):
        self.compare("script", 0, set(), zsh=zsh("svf"),
                     bash=names(r" -(\w+)", output("bash", "-c", COMPLETE, "-", "-c")),
                     help=names(r"\t-(\w+)", output(*PROGRAM)) | {"d", "exact", "i", "l", "o", "z"},
                     readme=names(r"`-(\w+)", part("README.md", "| SVF and Tcl |", "\n\n")))

    def test_ksvf(self):
        told = output(*PROGRAM, "-ksvf", "-kshowallopts")
        silent = {"exact", "i", "inorder", "kshowallopts", "ksvf", "l", "o", "runmin", "z"}
        self.compare("ksvf", 1, INTERNAL, zsh=zsh("ksvf"),
                     bash=names(r" -(\w+)", output("bash", "-c", COMPLETE, "-", "-ksvf")),
                     help=names(r"\t-(\w+)", told) | silent,
                     readme=names(r"`-(\w+)", part("README.md", "| KSVF | |", "\n\n")) | INTERNAL)


if __name__ == "__main__":
    unittest.main()
