#!/usr/bin/env python3
"""Writes SVF files on which platforms are compared: platform_files.py FOLDER COUNT

They are random, and a third holds what is refused, makes a message or has a number
beyond 32 or 64 bits. The same COUNT gives the same files."""
import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests"))
from random_svf import random_svf

REFUSED_IN_TCL = ["hidden", "maximum", "bare-maximum"]
ODD = ["RUNTEST 4294967299 TCK;\n", "RUNTEST 3E-7 SEC MAXIMUM 1E-9 SEC;\n", "FREQUENCY 1E300 HZ;\n",
       "FREQUENCY 99999999999999999999 HZ;\n", "SDR 12 TDI (ABC) TDO (1FFF) MASK (FFF);\n",
       "HDR 3 TDI (F);\n", "SDR 3;\n", "UNKNOWN 3;\n", "STATE IDLE DRSHIFT;\n", "! \xff\n",
       "\xff", "\0", "\r", ";", "!", "/", "(", "8"]  # fmt: skip


def platform_file(seed):
    choice = random.Random(seed)
    text = random_svf(seed, choice.randrange(1, 60), choice.choice([[], REFUSED_IN_TCL]))
    if choice.randrange(3) == 0:
        at = choice.randrange(len(text))
        if choice.randrange(4) > 0:  # between statements
            at = text.find("\n", at) + 1
        text = text[:at] + choice.choice(ODD) + text[at:]
    return text.encode("latin-1")


def main(folder, count):
    for seed in range(count):
        pathlib.Path(folder, f"{seed}.svf").write_bytes(platform_file(seed))


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]))
