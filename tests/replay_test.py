#!/usr/bin/env python3
"""Converts random SVF files and has tapforge-replay compare them with the results.

    replay_test.py TAPFORGE TAPFORGE-REPLAY [-files N] [-first SEED]

Each row of FORMS says how the conversions with its options may differ from their
source. A second part puts faults into sources after their conversion, each of which
has to be found where it was put.
"""

import argparse
import collections
import os
import pathlib
import random
import re
import subprocess
import tempfile

from random_svf import random_svf

# Features that no conversion of a mode takes: a comment hides what shares its line.
TCL_REFUSES = "hidden maximum bare-maximum"
KSVF_REFUSES = "bare-maximum sck"

# Without these a form says all that its source says.
COPY_LOSES = "hidden fine-times fine-frequency chain-tdo pio"
SVF_LOSES = f"{COPY_LOSES} smask"
TCL_LOSES = f"{COPY_LOSES} {TCL_REFUSES} sck both frequency reset-line run-states"
KWAIT_LOSES = (f"{KSVF_REFUSES} fine-times both maximum chain-tdo ir-tdo pio reset-line "
               "frequency odd-ends")  # fmt: skip
KSVF_LOSES = f"{KWAIT_LOSES} end-states run-states moves loose-waits"

SVF = "care shorter-waits longer-waits compared-less compared-more parallel-io frequency"
STATES = "state-moves end-states moved-waits"
TCL = f"{SVF} {STATES} shared-lines reset-line reset-line-off"
KWAIT = f"{SVF} state-moves end-states reset-line reset-line-off maximum-times"
KSVF = f"{KWAIT} lost-waits moved-waits"

# Options; how a result may differ from files of all features; features that are lost, and
# differences from files without these.
FORMS = [
    ("", SVF, SVF_LOSES, ""),
    ("-s", SVF, SVF_LOSES, "compared-less"),
    ("-wait 7", f"{SVF} {STATES} maximum-times",
     SVF_LOSES + " end-states moves run-states sck", "longer-waits"),
    ("-c", SVF, COPY_LOSES, ""),
    ("-tapbus", TCL, TCL_LOSES, "shared-lines"),
    ("-tapbus -c", TCL, TCL_LOSES + " sharing", ""),
    ("-tapbus -max_rti_tck 1000 -tck_freq 3000000", TCL, TCL_LOSES, "shared-lines"),
    ("-tapbus -wait 0x10 -s", TCL, TCL_LOSES + " end-states moves times",
     "longer-waits compared-less shared-lines"),
    ("-ksvf", KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -extensions", KSVF, KWAIT_LOSES + " run-states loose-waits",
     "longer-waits end-states state-moves"),
    ("-ksvf -kwait -extensions", KWAIT, KWAIT_LOSES, ""),
    ("-ksvf -kwait -extensions -kprintsrc 3", KWAIT, KWAIT_LOSES, ""),
    ("-ksvf -kwait -runmin 100", KSVF,
     KWAIT_LOSES + " times end-states moves run-states", "longer-waits"),
    ("-ksvf -fpga", KSVF, KSVF_LOSES, "longer-waits lost-waits moved-waits compared-more"),
    ("-ksvf -fpga -rlen 68 -kwait -extensions", KWAIT, KWAIT_LOSES, "compared-more"),
    ("-ksvf -fpga -rlen 64 -kwait -extensions -s", KWAIT, KWAIT_LOSES, "compared-less"),
    ("-ksvf -v2", KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -useKSDR", KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -useKSDR -s", KSVF, KSVF_LOSES, "longer-waits compared-less"),
    ("-ksvf -inorder", KSVF, KSVF_LOSES, "longer-waits lost-waits moved-waits shorter-waits"),
    ("-ksvf -multiple_runtest", KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -runmin 100", KSVF, KSVF_LOSES + " times", "longer-waits"),
]  # fmt: skip
# Those that lose nothing else, and merge no waits.
EXACT_FORMS = [
    ("", SVF_LOSES), ("-c", SVF_LOSES), ("-tapbus -max_rti_tck 99999999", TCL_LOSES),
    ("-tapbus -c -max_rti_tck 99999999", TCL_LOSES), ("-ksvf -kwait -extensions", KWAIT_LOSES),
]  # fmt: skip


class Runner:
    def __init__(self, tapforge, replay):
        self.tapforge, self.replay = os.path.abspath(tapforge), os.path.abspath(replay)

    def convert(self, source, options):
        pathlib.Path("in.svf").write_bytes(source.encode())
        extra = ["-tck_freq", "1000000"] if "-ksvf" in options else []
        command = [self.tapforge, *options.split(), "-w", "-o", "out", *extra, "-i", "in.svf"]
        done = subprocess.run(command, capture_output=True, text=True)
        assert done.returncode == 0, done.stdout

    def compare(self, options="", spoiled=False):
        """Report, and the set of differences in it; a spoiled file may be "broken"."""
        rate = re.findall(r"-tck_freq \d+", options)  # too few waits may show it
        command = [self.replay, *" ".join(rate).split(), "in.svf", "out"]
        done = subprocess.run(command, capture_output=True, text=True)
        if spoiled and done.returncode == 2:
            return done.stderr, {"broken"}
        assert done.returncode in (0, 1), f"status {done.returncode}: {done.stderr}"
        last = done.stdout.splitlines()[-1]
        assert last.startswith(("the same", "NOT the same")[done.returncode]), done.stdout
        found = set(last.partition(":")[2].replace("; also:", "").split())
        if found & {"state-moves", "end-states"}:
            assert "states: all the same" not in done.stdout, done.stdout
        return done.stdout, found

    def operations(self, path):
        """(place, text) of each operation by kind: scan, wait, move, end."""
        done = subprocess.run([self.replay, path], capture_output=True, text=True, check=True)
        found = collections.defaultdict(list)
        for line in done.stdout.splitlines():
            place, text = line.split(": ", 1)
            found[text.split()[0]].append((place, text))
        return found


def play(runner, form, seeds):
    options, differences, loses, without = form
    refuses = {"-k": KSVF_REFUSES, "-t": TCL_REFUSES}.get(options[:2], "hidden")
    refuses += " moves" if "-wait" in options else ""
    for left_out, allowed in ((refuses, differences), (loses, without)):
        for seed in seeds:
            runner.convert(random_svf(seed, 3 + seed % 60, left_out.split()), options)
            report, found = runner.compare(options)
            more = found - set(allowed.split())
            file = f"random_svf.py {seed} {3 + seed % 60} {left_out}"
            assert not more, f"tapforge {options}: {file}: {more}\n{report}"


# Faults: the kind of operation, the differences that show it, and words of the report.
FAULTS = {
    "TDI": ("scan", "scans", "TDI differs"), "TDO": ("scan", "scans", "expected TDO differs"),
    "MASK": ("scan", "compared-less compared-more", ""),
    "drop": ("scan", "scans", ""), "wait": ("wait", "shorter-waits lost-waits", ""),
    "move": ("move", "state-moves end-states", ""), "end": ("end", "state-moves end-states", ""),
}  # fmt: skip


def spoil(statement, fault):
    """The statement with other bits, a longer wait or another state; none of a dropped one."""
    operand = statement.split()[1].strip(";")
    if fault == "drop":
        return "\n"  # other lines keep their numbers
    if fault == "wait":
        return re.sub(r" (\d+)", lambda count: f" {int(count[1]) + 1}", statement, count=1)
    if fault in ("move", "end"):
        return statement.replace(operand, "RESET" if operand == "IDLE" else "IDLE", 1)

    def other(value):
        bits = int(value[2].replace(" ", ""), 16)
        return f"{value[1]}{bits ^ (1 << int(operand)) - 1:x}"

    return re.sub(rf"(\b{fault} ?\()([0-9A-F ]+)", other, statement)


def faulty(fault, lines, operations):
    """Number, line and new text of each statement in which this fault must be found."""
    for number, (place, text) in enumerate(operations):
        line = int(place.split()[1])
        new = spoil(lines[line], fault)
        if fault in ("TDO", "MASK"):
            certain = re.search("MASK .*[1-9a-f]", text)  # bits are compared
        else:  # without a scan the next one comes, which may look alike
            looks = [other.split()[2:6] for _, other in operations[number : number + 2]]
            certain = fault != "drop" or looks[0] != looks[-1]
        if certain and new != lines[line]:
            yield number, line, new


def find_faults(runner, options, loses, seeds):
    choice = random.Random(options)
    seen = collections.Counter()
    for seed in seeds:
        source = random_svf(seed, 40, [*loses.split(), "sharing", "smask"])
        statements = re.sub(r"(!|//).*", "", source).upper().split(";")[:-1]
        lines = ["", *(" ".join(statement.split()) + ";\n" for statement in statements)]  # from 1
        runner.convert("".join(lines), options)
        assert not runner.compare()[1]
        before, after = runner.operations("in.svf"), runner.operations("out")
        for fault, (kind, classes, words) in FAULTS.items():
            places = list(faulty(fault, lines, before[kind]))
            if not places:
                continue
            number, line, new = choice.choice(places)
            pathlib.Path("in.svf").write_text("".join([*lines[:line], new, *lines[line + 1 :]]))
            report, found = runner.compare("-tck_freq 1000000", spoiled=True)
            if "broken" in found or kind in ("end", "move") and not found:
                continue  # what comes after it cannot be played, or leads to the same states
            message = f"tapforge {options}: file {seed}, {fault} at {line}: {found}\n{report}"
            assert found & set(classes.split()) and words in report, message
            heading = rf"(?:{classes.replace(' ', '|')}): \d.*\n  first: (.*)"
            first = re.search(heading, report)[1]
            source = before[kind][number + (fault == "drop")][0]
            place = f"source {source} ("
            if kind == "scan":
                place = f"scan {number + 1}, source {source}, converted {after[kind][number][0]}:"
            named = int(re.search(r"source line (\d+)", first)[1])
            assert first.startswith(place) or kind in ("end", "move") and named > line, message
            seen[fault] += 1
    return seen


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tapforge")
    parser.add_argument("replay")
    parser.add_argument("-files", type=int, default=40)
    parser.add_argument("-first", type=int, default=0)
    args = parser.parse_args()
    runner = Runner(args.tapforge, args.replay)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for i, form in enumerate(FORMS):
            first = args.first + i * args.files  # other files for each form
            play(runner, form, range(first, first + args.files))
            print(f"tapforge {form[0]}: {2 * args.files} files differ as they may", flush=True)
        seeds = range(args.first, args.first + args.files // 2)
        for options, loses in EXACT_FORMS:
            seen = find_faults(runner, options, loses, seeds)
            assert args.files < 40 or set(FAULTS) == set(seen), f"{options}: {seen}"
            print(f"tapforge {options}: {sum(seen.values())} faults found", flush=True)


if __name__ == "__main__":
    main()
