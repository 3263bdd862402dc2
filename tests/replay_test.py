#!/usr/bin/env python3
"""Converts random SVF files and has tapforge-replay compare them with the results.

    replay_test.py TAPFORGE TAPFORGE-REPLAY [-files N] [-first SEED] [-faults N]

Each row of FORMS says how the conversions with its options may differ from their source.
A second part puts faults into files of each form. A model of this test's own says whether
a fault changes what the file does; if so it has to be found, at its place.
"""
import argparse, collections, os, pathlib, random, re, subprocess, tempfile
from decimal import Decimal

from random_svf import FEATURES, random_svf, way

parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
parser.add_argument("tapforge", type=os.path.abspath)
parser.add_argument("replay", type=os.path.abspath)
parser.add_argument("-files", type=int, default=40)
parser.add_argument("-first", type=int, default=0)
parser.add_argument("-faults", type=int, default=5, help="in each of so many files")
ARGS = parser.parse_args()
RATE, IN, OUT = "-tck_freq 1000000", pathlib.Path("in.svf"), pathlib.Path("out")

# Features that no conversion of a mode takes: a comment hides what shares its line.
TCL_REFUSES = "hidden remarks sharing maximum bare-maximum"
KSVF_REFUSES = "bare-maximum sck"

# Without these a form says all that its source says.
SVF_LOSES = "hidden fine-times fine-frequency chain-tdo pio smask"
TCL_LOSES = f"{SVF_LOSES} {TCL_REFUSES} sck both frequency reset-line run-states"
KWAIT_LOSES = (f"{KSVF_REFUSES} fine-times both maximum chain-tdo ir-tdo pio reset-line frequency "
               "odd-ends")
KSVF_LOSES = f"{KWAIT_LOSES} end-states run-states moves loose-waits"

SVF = "care rounded-waits longer-waits compared-less compared-more parallel-io frequency"
STATES = "state-moves end-states"
TCL = f"{SVF} {STATES} moved-waits shorter-waits lost-waits too-fast reset-line reset-line-off"
KWAIT = f"{SVF} too-fast shorter-waits lost-waits {STATES} reset-line reset-line-off maximum-times"
KSVF = f"{KWAIT} moved-waits"

# Options, | between such as have the same limits; how a result may differ from files of all
# features; features that are lost, and differences from files without these.
FORMS = [
    ("", SVF, SVF_LOSES, ""),
    ("-s", SVF, SVF_LOSES, "compared-less"),
    ("-wait 7", f"{TCL} unknown-rate maximum-times beyond-maximum",
     SVF_LOSES + " end-states moves run-states sck", "longer-waits"),
    ("-tapbus -c|-tapbus -c -max_rti_tck 1000 -tck_freq 3000000", TCL, TCL_LOSES, ""),
    ("-ksvf|-ksvf -v2|-ksvf -useKSDR|-ksvf -multiple_runtest", KSVF, KSVF_LOSES, "longer-waits"),
    ("-ksvf -extensions", KSVF, KWAIT_LOSES + " run-states loose-waits",
     "longer-waits end-states state-moves moved-waits lost-waits"),
    ("-ksvf -kwait -extensions|-ksvf -kwait -extensions -kprintsrc 3", KWAIT, KWAIT_LOSES, ""),
    ("-ksvf -kwait -runmin 100", KSVF,
     KWAIT_LOSES + " times end-states moves run-states", "longer-waits"),
    ("-ksvf -fpga", KSVF, KSVF_LOSES, "longer-waits lost-waits moved-waits compared-more"),
    ("-ksvf -fpga -rlen 68 -kwait -extensions", KWAIT, KWAIT_LOSES, "compared-more"),
    ("-ksvf -fpga -rlen 64 -kwait -extensions -s", KWAIT, KWAIT_LOSES, "compared-less"),
    ("-ksvf -inorder", KSVF, KSVF_LOSES, "longer-waits lost-waits moved-waits shorter-waits"),
]


def convert(source, options):
    IN.write_bytes(source.encode())
    rate = RATE if "-ksvf" in options else ""
    subprocess.run([ARGS.tapforge, *f"{options} {rate} -w -o out -i in.svf".split()], check=True,
                   capture_output=True)


def replay(*arguments):
    done = subprocess.run([ARGS.replay, *arguments], capture_output=True)
    assert done.returncode in (0, 1, 2), done
    return done.returncode, (done.stderr if done.returncode == 2 else done.stdout).decode()


def compare(rate):
    """Report, and the set of differences in it; a file may be "broken"."""
    status, report = replay(*rate.split(), "in.svf", "out")
    if status == 2:
        return report, {"broken"}
    last = report.splitlines()[-1]
    assert last.startswith(("the same", "NOT the same")[status]), report
    return report, set(last.partition(":")[2].replace("; also:", "").split())


def play(options, differences, loses, without, seeds):
    refuses = {"-k": KSVF_REFUSES, "-t": TCL_REFUSES, "-w": "hidden moves"}
    rate = re.search(r"-tck_freq \d+", f"{options} {RATE}")[0]
    for left_out, allowed in ((refuses.get(options[:2], "hidden"), differences), (loses, without)):
        for seed in seeds:
            source = random_svf(seed, 3 + seed % 60, left_out.split())
            convert(source, options)
            report, found = compare("" if options[:2] in ("", "-s", "-w") else rate)
            more = found - set(allowed.split()) - {"no-scans"}  # some are that short
            message = f"random_svf.py {seed} {3 + seed % 60} {left_out}: {more}\n{report}"
            assert not more, f"tapforge {options}: {message}"


# Forms that -exact promises, and statements of all kinds, some of which it has to refuse.
EXACT = ("", "-s", "-tapbus", "-tapbus -max_rti_tck 999 -linenum 3", "-ksvf", "-ksvf -fpga",
         "-ksvf -useKSDR -kprintsrc 3")
ODD = r"""RUNTEST 1.5 TCK;|RUNTEST IDLE 32 TCK 2.00E+00 SEC;|RUNTEST DRPAUSE 1E-3 SEC;
RUNTEST 10 SCK;|STATE DRPAUSE; STATE DRPAUSE;|STATE IRPAUSE IRPAUSE IDLE;
RUNTEST 4041E-6 SEC ENDSTATE IRPAUSE;
! C:\work\|! $x [puts x] "y {|! \x1a|HIR 4 TDI (F); SIR 8 TDI (2C);|HDR 3 TDI (5) TDO (2);
HDR 3 TDI (5) MASK (2);|TDR 2 TDI (1) TDO (1) MASK (1);|TDR 2 TDI (1);|HDR 0;|RUNTEST 1 MS;
SDR 70 TDI (123456789) TDO (1F) MASK (3F) SMASK (FFFF);|SDR 70 TDI (1);|SDR 12 TDI (1) TDO (0);
SIR 8 TDI (FF) TDO (12);|SIR 8 TDI ();|TRST ON;|TRST Z;|FREQUENCY 5E5 HZ;|FREQUENCY 33333333.5 HZ;
ENDIR DRPAUSE;|ENDDR DRPAUSE;|FOO;|RUNTEST 5000000000 TCK;|RUNTEST 1E-13 SEC;|RUNTEST 1E SEC;"""


def prove_exact(seeds):
    """A file is refused with the line of a statement, or what is written does the same."""
    ends = collections.Counter()
    for seed in seeds:
        choice = random.Random(seed)
        lines = random_svf(seed, choice.choice((1, 10, 40)), choice.sample(
            sorted(FEATURES), choice.randrange(len(FEATURES)))).splitlines(keepends=True)
        for odd in choice.sample(re.split(r"[|\n]", ODD), choice.randrange(3)):
            lines.insert(choice.randrange(len(lines) + 1), f"\n{odd}\n")
        IN.write_text("".join(lines))
        options, rate = choice.choice(EXACT), choice.choice(("", RATE, "-tck_freq 1234567"))
        command = f"{ARGS.tapforge} -exact {options} {rate} -w -i in.svf -o out".split()
        done = subprocess.run(command, capture_output=True, text=True)
        message = f"{seed}: {command}\n{done.stdout}"
        if done.returncode == 1:
            assert re.search(r"begins in line \d|no SIR or SDR|EOF", done.stdout), message
            assert not OUT.exists(), message
        else:
            report, found = compare(rate)
            lost = "frequency reset-line-off maximum-times" if options[:2] not in ("", "-s") else ""
            less = options == "-s" or "TDO of an SIR" in done.stdout
            more = found - {*lost.split(), "frequency", *["compared-less"] * less}
            assert not more, f"{message}{more}\n{report}"
        ends[done.returncode] += 1
    return ends


# Forms that faults are put into, as "same" the source itself; features that they lose.
SPOILED = [
    ("same", "hidden remarks"), ("", SVF_LOSES), ("-tapbus -c", TCL_LOSES),
    ("-ksvf -kwait -extensions", KWAIT_LOSES), ("-ksvf -kwait", KWAIT_LOSES + " end-states moves"),
]
NAMES = ("lose", "double", "move", "digit", "digit", "word", "split", "layout")
SETS = ("RESET IDLE DRPAUSE IRPAUSE", "TCK SCK SEC", "ON OFF Z", "TDI TDO MASK SMASK", "SIR SDR",
        "ENDIR ENDDR", "-tdi -tdo -mask", "scan_ir scan_dr", "HIR HDR TIR TDR", "hir hdr tir tdr")
WORDS = {word: words.split() for words in SETS for word in words.split()}
WORD = rf"(?<![A-Za-z-])({'|'.join(WORDS)})(?![A-Z])"
DIGIT = r"(?<=[ ({0-9A-F.-])[0-9A-F](?=[0-9A-F.-]*[ );}\n])"  # of a number or a value
# Of a line of Tcl: what a shell reads as before, and what it does not.
LAYOUTS = (r" \1\t;\n", r"# x\n\1;# y\n", r"\1 # y\n", r"\1 \\\n", r"# x\\\n\1\n", r"{\1}\n",
           r"\1 $x\n", "\x1a\\1\n", r"\1; puts x\n")


def spoil_line(choice, name, line):
    """Lines with a fault of this name, or the same one where it cannot have it."""
    if found := list(re.finditer({"word": WORD, "digit": DIGIT}.get(name, "(?!)"), line)):
        match = choice.choice(found)
        digits = "0123456789ABCDEF"[:16 if re.search(r"[({]|-tdi", line) else 10]
        other = choice.choice(WORDS[match[0]] if name == "word" else digits)
        line = line[:match.start()] + other + line[match.end():]
    elif name == "split" and (count := re.search(r"(?<= )\d+(?= TCK;|\n)", line)):
        first = int(count[0]) // 3
        return [re.sub(count[0], str(part), line) for part in (first, int(count[0]) - first)]
    elif name == "layout" and "tapbus" in line:
        line = re.sub("(.*)\n", choice.choice(LAYOUTS), line)
    return {"lose": [], "double": [line, line]}.get(name, [line])


def spoil(choice, data):
    """A file with a fault, and the name of the fault."""
    name = choice.choice(NAMES)
    if data[0] == 7:  # KSVF: a byte lost, doubled or with another bit
        at = choice.randrange(2, len(data))
        bit = [data[at] ^ 1 << choice.randrange(8)]
        other = {"lose": [], "double": [data[at]] * 2}.get(name, bit)
        return data[:at] + bytes(other) + data[at + 1:], "byte"
    lines = data.decode().splitlines(keepends=True)
    kinds = collections.defaultdict(list)
    for number, line in enumerate(lines):
        if line[0] not in "#\n ":
            kinds[re.split(r"[\s;]", line)[0]].append(number)
    at = choice.choice(kinds[choice.choice(sorted(kinds))])  # rare ones as often
    line = lines.pop(at)
    to = min(at + choice.randrange(1, 8), len(lines)) if name == "move" else at
    lines[to:to] = spoil_line(choice, name, line)
    return "".join(lines).encode(), name


class Steps(list):
    """What a listed file does, as (step, place): each state entered, scan and setting,
    and between them the waits. `cares`: by scan the TDI bits that matter."""

    def __init__(self, listing, is_ksvf, cares=()):
        self.waits, self.place, self.state = collections.Counter(), 0, "reset"
        self.is_entered, self.cares, self.scans, self.fixed = is_ksvf, cares, [0], []
        self.hertz = self.said = "any"
        for line in listing.splitlines():
            place, kind, text = re.match(r"\w+ (\d+): (\w+) (.*)", line).groups()
            self.place = int(place)
            text, _, end = text.partition(" -> ")
            words = text.split()
            if kind in ("scan", "wait"):
                getattr(self, kind)(words, end.lower() or words[0].lower())
            elif kind == "move":
                self.go(word.lower() for word in words)
            elif kind == "frequency":
                self.hertz = words[0]
            elif kind != "end" and words[-1] != "absent":  # an end state is seen in scans
                self.put(text, is_clocked=False)
        self.put("end", is_clocked=False)
        self.scans += [float("inf")] * 3

    def put(self, step, is_clocked=True):
        if any(self.waits.values()):
            self.append((dict(self.waits), self.place))
        self.waits.clear()
        if is_clocked and self.said != self.hertz:
            self.said = self.hertz
            self.append((self.hertz, self.place))
        if step:
            self.append((step, self.place))

    def go(self, states):
        for state in states:
            if state != self.state or not self.is_entered or state[-5:] == "shift":
                self.put(state)
            elif state != "reset":
                self.waits["TCK"] += 1
            self.state, self.is_entered = state, True

    def scan(self, words, end):
        register = words[1].lower()
        values = {name: int(value, 16) for name, value in zip(words[3::2], words[4::2])}
        fixed = values.get("SMASK", (1 << int(words[2])) - 1)
        care = (self.cares[len(self.fixed):] or [fixed])[0]
        mask = values.get("MASK", 0)
        capture, shift = register + "capture", register + "shift"
        self.go(way(self.state, capture) + way(capture, shift))
        tdo = values.get("TDO", 0) & mask
        self.put((register, words[2], values["TDI"] & care, care & ~fixed, mask, tdo))
        self.scans.append(self.place)
        self.fixed.append(fixed)
        self.go(way(shift, end))

    def wait(self, words, end):
        self.go(way(self.state, words[0].lower()))
        if self.said != self.hertz:
            self.put(None)
        both = words[2:3] == ["TCK"] and words[4:5] == ["SEC"] and self.hertz != "any"
        if both and float(words[3]) * float(self.hertz) <= float(words[1]):
            del words[3:5]  # shorter at each rate that is allowed
        is_one = len(words) == 3
        self.waits[words[2] if is_one else str(words)] += Decimal(words[1]) if is_one else 1
        self.go(way(self.state, end))


def is_alike(old, new, has_times):
    """Whether two steps are the same; a time that became clocks may have one more."""
    return old == new or has_times and isinstance(old, dict) and old.keys() == {"TCK"} and (
        new == {"TCK": old["TCK"] + 1})


def find_faults(options, loses, seeds):
    """How many faults of each name were found, refused, and without effect."""
    choice, is_svf = random.Random(f"{options} {seeds}"), options[:1] != "-"
    seen = {end: collections.Counter() for end in ("found", "refused", "without effect")}
    for seed in seeds:
        source = random_svf(seed, 40, loses.split())
        has_times = not is_svf and " SEC" in source.upper()
        rate = "" if is_svf or seed % 2 else RATE
        convert("FREQUENCY 1E6 HZ;\n" * (not rate) + source, options.replace("same", ""))
        right = (IN if options == "same" else OUT).read_bytes()
        if is_svf:  # a statement a line
            statements = re.sub(r"(?m)(!|//).*", "", right.decode()).upper().split(";")[:-1]
            right = "".join(" ".join(each.split()) + ";\n" for each in statements).encode()
        OUT.write_bytes(right)
        _, usual = compare(rate)
        assert usual <= {"frequency"}, usual
        given = Steps(replay("in.svf")[1], False)
        before = Steps(replay("out")[1], right[0] == 7, given.fixed)
        for _ in range(ARGS.faults):
            spoiled, name = spoil(choice, right)
            OUT.write_bytes(spoiled)
            status, listing = replay("out")
            report, found = compare(rate)
            message = f"tapforge {options}: file {seed}, {name}: {found}\n{report}"
            after = Steps(listing if status == 0 else "", right[0] == 7, given.fixed)
            same = [is_alike(old, new, has_times) for (old, _), (new, _) in zip(before, after)]
            if status == 2:
                result = "refused"
                assert found & {"broken", "not-playable"}, message
            elif all(same) and len(before) == len(after):
                result = "without effect"
            else:
                result = "found"
                assert found != usual, message
                alike = before[:[*same, False].index(False)]
                scans = sum(isinstance(step, tuple) for step, _ in alike)
                near = {"source": given.scans, "converted": after.scans}
                places = re.findall(r"(source|converted) (?:line|byte) (\d+)", report)
                assert any(near[file][max(scans - 1, 0)] <= int(place) <= near[file][scans + 2]
                           for file, place in places), message
            seen[result][name] += 1
    return seen


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    first = ARGS.first
    for forms, *limits in FORMS:
        for options in forms.split("|"):
            play(options, *limits, range(first, first + ARGS.files))
            print(f"tapforge {options}: {2 * ARGS.files} files differ as they may", flush=True)
            first += ARGS.files  # other files for each form
    ends = prove_exact(range(ARGS.first, ARGS.first + 10 * ARGS.files))
    print(f"tapforge -exact: {ends[0]} files proved, {ends[1]} refused", flush=True)
    assert min(ends[0], ends[1]) >= ARGS.files, ends
    for options, loses in SPOILED:
        seen = find_faults(options, loses, range(ARGS.first, ARGS.first + ARGS.files))
        assert ARGS.files < 40 or all(seen.values()), seen
        for result, names in seen.items():
            print(f"tapforge {options}: {sum(names.values())} {result}: {dict(names)}", flush=True)
