#!/usr/bin/env python3
"""Converts random SVF files and has tapforge-replay compare them with the results.

    replay_test.py TAPFORGE TAPFORGE-REPLAY [-files N] [-first SEED] [OPTIONS ...]

Each row of FORMS says how the conversions with its options may differ from their
source; of the OPTIONS given, only these rows are played. A second part puts faults
into converted files, each of which has to be found where it was put.
"""

import argparse
import os
import random
import re
import subprocess
import tempfile

from random_svf import random_svf

# Features that no conversion of a mode takes: a comment hides what shares its line.
TCL_REFUSES = "hidden,maximum,bare-maximum"
KSVF_REFUSES = "bare-maximum,sck"

# Without these a form says all that its source says.
COPY_LOSES = "hidden,fine-times,fine-frequency,chain-tdo,pio"
SVF_LOSES = f"{COPY_LOSES},smask"
TCL_LOSES = f"{COPY_LOSES},{TCL_REFUSES},sck,both,frequency,reset-line,run-states"
KWAIT_LOSES = (f"{KSVF_REFUSES},fine-times,both,maximum,chain-tdo,ir-tdo,pio,reset-line,"
               "frequency,odd-ends")  # fmt: skip
KSVF_LOSES = f"{KWAIT_LOSES},end-states,run-states,moves,loose-waits"

SVF = "care shorter-waits longer-waits compared-less compared-more parallel-io frequency"
STATES = "state-moves end-states moved-waits"
TCL = f"{SVF} {STATES} shared-lines reset-line reset-line-off"
KWAIT = (f"{SVF} state-moves end-states reset-line reset-line-off maximum-times")  # fmt: skip
KSVF = f"{KWAIT} lost-waits moved-waits"

# Options; features that are refused, and differences without them; features
# that are lost, and differences without these.
FORMS = [
    ("", "hidden", SVF, SVF_LOSES, ""),
    ("-s", "hidden", SVF, SVF_LOSES, "compared-less"),
    ("-wait 7", "hidden,moves", f"{SVF} {STATES} maximum-times",
     SVF_LOSES + ",end-states,moves,run-states,sck", "longer-waits"),
    ("-c", "hidden", SVF, COPY_LOSES, ""),
    ("-tapbus", TCL_REFUSES, TCL, TCL_LOSES, "shared-lines"),
    ("-tapbus -c", TCL_REFUSES, TCL, TCL_LOSES + ",sharing", ""),
    ("-tapbus -max_rti_tck 1000 -tck_freq 3000000", TCL_REFUSES, TCL, TCL_LOSES, "shared-lines"),
    ("-tapbus -wait 0x10 -s", TCL_REFUSES + ",moves", TCL,
     TCL_LOSES + ",end-states,moves,times", "longer-waits compared-less shared-lines"),
    ("-ksvf", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -extensions", KSVF_REFUSES, KSVF,
     KWAIT_LOSES + ",run-states,loose-waits", "longer-waits end-states state-moves"),
    ("-ksvf -kwait -extensions", KSVF_REFUSES, KWAIT, KWAIT_LOSES, ""),
    ("-ksvf -kwait -runmin 100", KSVF_REFUSES, KSVF,
     KWAIT_LOSES + ",times,end-states,moves,run-states", "longer-waits"),
    ("-ksvf -fpga", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits lost-waits moved-waits compared-more"),
    ("-ksvf -fpga -rlen 68 -kwait -extensions", KSVF_REFUSES, KWAIT, KWAIT_LOSES, "compared-more"),
    ("-ksvf -fpga -rlen 64 -kwait -extensions -s", KSVF_REFUSES, KWAIT, KWAIT_LOSES, "compared-less"),
    ("-ksvf -v2", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -useKSDR", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -useKSDR -s", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits compared-less"),
    ("-ksvf -inorder", KSVF_REFUSES, KSVF, KSVF_LOSES,
     "longer-waits lost-waits moved-waits shorter-waits"),
    ("-ksvf -kwait -extensions -kprintsrc 3", KSVF_REFUSES, KWAIT, KWAIT_LOSES, ""),
    ("-ksvf -multiple_runtest", KSVF_REFUSES, KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -runmin 100", KSVF_REFUSES, KSVF, KSVF_LOSES + ",times", "longer-waits"),
]  # fmt: skip


class Runner:
    def __init__(self, tapforge, replay):
        self.tapforge, self.replay = os.path.abspath(tapforge), os.path.abspath(replay)

    def convert(self, source, options):
        with open("in.svf", "w", newline="") as out:
            out.write(source)
        extra = ["-tck_freq", "1000000"] if "-ksvf" in options else []
        command = [self.tapforge, *options.split(), "-w", "-o", "out", *extra, "-i", "in.svf"]
        done = subprocess.run(command, capture_output=True, text=True)
        assert done.returncode == 0, done.stdout
        with open("out", "rb") as file:
            return file.read()

    def compare(self, options=""):
        """Report, and the set of differences in it."""
        rate = re.findall(r"-tck_freq \d+", options)  # too few waits may show it
        command = [self.replay, *" ".join(rate).split(), "in.svf", "out"]
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode == 2 and "no way of one TCK" in done.stderr:
            return done.stderr, {"no-way"}
        assert done.returncode in (0, 1), f"status {done.returncode}: {done.stderr}"
        last = done.stdout.splitlines()[-1]
        assert last.startswith(("the same", "NOT the same")[done.returncode]), done.stdout
        return done.stdout, set(last.partition(":")[2].replace("; also:", "").split())

    def operations(self, path):
        """(place, text) of each operation by kind: scan, wait, move, end, all."""
        done = subprocess.run([self.replay, path], capture_output=True, text=True, check=True)
        found = {"all": []}
        for line in done.stdout.splitlines():
            place, text = line.split(": ", 1)
            found.setdefault(text.split()[0], []).append((place, text))
            found["all"].append((place, text))
        return found


def play(runner, form, seeds):
    options, refuses, differences, loses, without = form
    for left_out, allowed in ((refuses, differences), (loses, without)):
        for seed in seeds:
            runner.convert(random_svf(seed, 3 + seed % 60, left_out.split(",")), options)
            report, found = runner.compare(options)
            more = found - set(allowed.split())
            assert not more, f"tapforge {options}: file {seed}, -no {left_out}: {more}\n{report}"


def flip(character):
    return "1032547698badcfe"["0123456789abcdef".index(character.lower())]


def spoil_text(data, place, kind, text):
    """The statement with one fault, or None: first digit of a value, count, state."""
    lines = data.decode("latin-1").splitlines(keepends=True)
    at = int(place.split()[1]) - 1
    rest = "".join(lines[at:])
    patterns = {
        "TDI": r"(TDI \(|-tdi )(\w)", "TDO": r"(TDO \(|-tdo )(\w)", "MASK": r"(MASK \(|-mask )(\w)",
        "wait": r"(\s)(\d+)", "end": r"(END\w+ \{?)(\w+)",
        "move": r"((?:STATE|run_state_tapbus) )(\w+)",
    }  # fmt: skip

    def other(match):
        if kind in ("TDI", "TDO", "MASK"):
            return match[1] + flip(match[2])
        if kind == "wait":
            return match[1] + str(max(int(match[2]) - 1, 0))
        return match[1] + ("IDLE" if match[2].lower() != "idle" else "RESET")

    end = re.search(r"\n(?![ !])|$", rest).start()  # a statement's further lines are indented
    spoiled = re.sub(patterns[kind], other, rest[:end], count=1, flags=re.IGNORECASE)
    return "".join(lines[:at] + [spoiled, rest[end:]]).encode("latin-1")


HEADS = {2: 2, 21: 3}  # bytes of KSIR and KSIR2 before the vector


def spoil_ksvf(data, place, kind, text):
    at = int(place.split()[1])
    data = bytearray(data)
    if kind in ("TDI", "TDO", "MASK"):
        size = (int(text.split()[3]) + 7) // 8
        if kind == "MASK" and data[at - 1 - size] != 1:  # no KTDOMASK right before it
            return None
        data[at + {"TDI": HEADS.get(data[at], 1), "TDO": 1 + size, "MASK": -size}[kind]] ^= 1
    elif kind == "wait":
        data[at + 3 : at + 7] = (int.from_bytes(data[at + 3 : at + 7], "big") - 1).to_bytes(4, "big")
    else:  # KSTATE, KENDIR, KENDDR
        data[at + 1] = 0 if data[at + 1] != 0 else 1
    return bytes(data)


def cut(data, place, text, copies):
    """Drops or doubles a scan."""
    at = int(place.split()[1])
    if place.startswith("byte"):
        size = (int(text.split()[3]) + 7) // 8
        end = at + (HEADS[data[at]] + size if data[at] in HEADS else 1 + 2 * size)
        return data[:at] + data[at:end] * copies + data[end:]
    lines = data.splitlines(keepends=True)
    end = at
    while end < len(lines) and lines[end].strip().startswith((b"TDI", b"TDO", b"MASK", b"!", b"SMASK")) | (
        re.fullmatch(rb"[!\s]*[0-9a-fA-F]+\)?\s*;?\s*", lines[end]) is not None
    ):
        end += 1
    return b"".join(lines[: at - 1] + lines[at - 1 : end] * copies + lines[end:])


EXPECTED = {
    "TDI": ({"scans"}, "TDI differs"), "TDO": ({"scans"}, "expected TDO differs"),
    "MASK": ({"compared-less", "compared-more"}, ""), "wait": ({"shorter-waits", "lost-waits"}, ""),
    "move": ({"state-moves", "end-states"}, ""), "end": ({"end-states", "state-moves"}, ""),
    "drop": ({"scans"}, ""), "double": ({"scans"}, ""),
}  # fmt: skip


def find_faults(runner, options, loses, seeds):
    choice = random.Random(options)
    seen = set()
    for seed in seeds:
        source = random_svf(seed, 40, (loses + ",sharing,smask").split(","))
        data = runner.convert(source, options)
        assert not runner.compare()[1]
        before, after = runner.operations("in.svf"), runner.operations("out")
        for fault, (classes, what) in EXPECTED.items():
            kind = fault if fault in ("wait", "move", "end") else "scan"
            number = choice.randrange(max(1, len(after.get(kind, ()))))
            if number >= len(after.get(kind, ())):
                continue
            place, text = after[kind][number]
            digits = dict(zip(text.split()[4::2], text.split()[5::2]))
            unit = 8 if place.startswith("byte") else 4
            bit = (len(digits.get("TDI", "")) * 4 - 1) // unit * unit if "TDI" in digits else 0
            if "MASK" not in digits and fault in ("TDO", "MASK"):
                continue
            if fault == "TDO" and int(digits["MASK"], 16) >> bit & 1 == 0:
                continue  # not compared
            if fault == "TDO" and "-c" in options and digits["MASK"].strip("f"):
                continue  # nor may the data's first digit be, which stands elsewhere there
            if fault in ("drop", "double"):
                following = after["scan"][number + 1 :][:1]
                if not following or following[0][1].split()[2:6] == text.split()[2:6]:
                    continue
                spoiled = cut(data, place, text, 0 if fault == "drop" else 2)
            else:
                spoil = spoil_ksvf if place.startswith("byte") else spoil_text
                spoiled = spoil(data, place, fault, text)
            if spoiled in (None, data):
                continue
            with open("out", "wb") as out:
                out.write(spoiled)
            report, found = runner.compare()
            message = f"tapforge {options}: file {seed}, {fault} at {place}: {found}\n{report}"
            if "no-way" in found or (fault in ("end", "move") and not found):
                continue  # what comes after it leads nowhere, or to the same states
            assert found & classes and what in report, message
            heading = r"(?:" + "|".join(classes) + r"): \d.*\n  first: (.*)"
            first = re.search(heading, report)[1]
            if fault in ("drop", "double"):
                places = [f"scan {number + 1 + (fault == 'double')},"]
            elif fault == "move":  # it may show only in what comes after it
                ahead = after["all"][after["all"].index(after[kind][number]) :]
                scans = [i for i, (_, text) in enumerate(ahead) if text.startswith("scan")]
                places = [f"converted {at} " for at, _ in ahead[: scans[0] + 1 if scans else None]]
                if not place.startswith("byte"):  # where each step of a path is a move
                    places.append(f"source {before[kind][number][0]} ")
            elif fault != "end":
                places = [f"source {before[kind][number][0]}" + sign for sign in " ,"]
            assert fault == "end" or any(place in first for place in places), message
            seen.add(fault)
    return seen


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tapforge")
    parser.add_argument("replay")
    parser.add_argument("-files", type=int, default=40)
    parser.add_argument("-first", type=int, default=0)
    parser.add_argument("options", nargs="*")
    args = parser.parse_args()
    runner = Runner(args.tapforge, args.replay)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for i, form in enumerate(FORMS):
            first = args.first + i * args.files  # other files for each form
            if not args.options or form[0] in args.options:
                play(runner, form, range(first, first + args.files))
                print(f"tapforge {form[0]}: {2 * args.files} files differ as they may", flush=True)
        tried = set()
        for options, loses in (("", SVF_LOSES), ("-c", SVF_LOSES), ("-tapbus -max_rti_tck 99999999", TCL_LOSES),
                               ("-tapbus -c -max_rti_tck 99999999", TCL_LOSES),
                               ("-ksvf -kwait -extensions", KWAIT_LOSES)):  # fmt: skip
            seen = find_faults(runner, options, loses, range(args.first, args.first + args.files // 2))
            assert args.files < 40 or len(seen) >= len(EXPECTED) - 1, f"{options}: only {seen}"
            tried |= seen
        assert args.files < 40 or tried == set(EXPECTED), f"only {tried} were tried"


if __name__ == "__main__":
    main()
