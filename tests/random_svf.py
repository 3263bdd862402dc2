#!/usr/bin/env python3
"""Writes a random SVF file, always the same one for the same arguments.

    random_svf.py SEED STATEMENTS [-no FEATURE,...]

The file is valid SVF: values may be left out where they are carried over, and
statements, values and comments are laid out in every way that SVF allows.
"""

import random
import sys

# What a file may hold beside plain statements, one a line.
FEATURES = {
    "sharing": "statements that share a line",
    "hidden": "... also after a header, trailer, FREQUENCY, TRST or PIO",
    "smask": "SMASK",
    "chain-tdo": "TDO and MASK of header and trailer",
    "ir-tdo": "TDO and MASK of SIR",
    "times": "RUNTEST in seconds",
    "fine-times": "... with more than three digits",
    "both": "... beside a count",
    "maximum": "MAXIMUM beside a count",
    "bare-maximum": "... without a count",
    "sck": "counts of the system clock",
    "run-states": "RUNTEST in other states than IDLE",
    "loose-waits": "RUNTEST anywhere but after a scan",
    "end-states": "ENDIR, ENDDR",
    "odd-ends": "... in RESET or the pause state of the other register",
    "moves": "STATE",
    "paths": "... with states that are passed",
    "reset-line": "TRST",
    "frequency": "FREQUENCY",
    "fine-frequency": "... with a fraction",
    "pio": "PIO and PIOMAP",
}

STABLE = ("reset", "idle", "drpause", "irpause")
NEXT = {  # by TMS 0 and 1
    "reset": ("idle", "reset"), "idle": ("idle", "drselect"),
    "drselect": ("drcapture", "irselect"), "drcapture": ("drshift", "drexit1"),
    "drshift": ("drshift", "drexit1"), "drexit1": ("drpause", "drupdate"),
    "drpause": ("drpause", "drexit2"), "drexit2": ("drshift", "drupdate"),
    "drupdate": ("idle", "drselect"), "irselect": ("ircapture", "reset"),
    "ircapture": ("irshift", "irexit1"), "irshift": ("irshift", "irexit1"),
    "irexit1": ("irpause", "irupdate"), "irpause": ("irpause", "irexit2"),
    "irexit2": ("irshift", "irupdate"), "irupdate": ("idle", "drselect"),
}  # fmt: skip
COMMENTS = (" note\n", " SDR 8 TDI (FF);\n", "x; y\n", "// again\n", "\n")


class Generator:
    def __init__(self, seed, without=()):
        self.random = random.Random(seed)
        self.has = {name: name not in without for name in FEATURES}
        self.text = []
        self.comments = not self.one_in(3)
        self.lengths = {}
        self.state = "reset"
        self.ends = {"sir": "idle", "sdr": "idle"}
        self.after_scan = False

    def one_in(self, count):
        return self.random.randrange(count) == 0

    def pick(self, *choices):
        return self.random.choice(choices)

    def comment(self):
        at_start = not self.text or self.text[-1].endswith("\n")
        self.text.append(("//" if at_start and self.one_in(2) else "!") + self.pick(*COMMENTS))

    def item(self, word, values=False):
        """A word in any spelling, and what divides it from the next one."""
        if not values:
            word = self.pick(word.upper(), word.lower(), word.capitalize())
        self.text += word, self.pick("\t ", "\n") if self.one_in(10) else " "
        if self.comments and self.one_in(60):
            self.comment()

    def end(self, hides=False):
        shared = self.has["sharing"] and self.one_in(6) and (self.has["hidden"] or not hides)
        self.text.append(";" + " " * self.random.randrange(4))
        if self.comments and self.one_in(8):
            self.comment()
        elif not shared:
            self.text.append("\n")

    def statement_of(self, *words, hides=False):
        for word in words:
            self.item(word)
        self.end(hides)

    def value(self, name, length):
        bits = self.pick(*[self.random.getrandbits(length)] * 6, 0, (1 << length) - 1)
        digits = f"{bits:0{(length + 3) // 4}x}"
        if self.one_in(10):
            digits = digits.lstrip("0") or "0"
        elif self.one_in(12):
            digits = "0" * self.random.randrange(1, 6) + digits
        line = self.pick(1 + self.random.randrange(40), 64, len(digits))
        digits = "\n".join(digits[i : i + line] for i in range(0, len(digits), line))
        self.item(name + self.pick("", " "))
        self.item(self.pick("(", "(\n") + self.pick(digits, digits.upper()) + self.pick(")", " )"), True)

    def scan(self, keyword):
        before = self.lengths.get(keyword, 0)
        length = before
        if before == 0 or self.one_in(2):
            if keyword[0] != "s":
                length = 0 if self.one_in(3) else self.random.randrange(1, 21)
            elif self.one_in(6):
                length = self.pick(1, 4, 63, 64, 65, 128, 192, 255, 256)
            else:
                most = 40 if keyword == "sir" else 5000 if self.one_in(60) else 300
                length = self.random.randrange(1, most)
        self.lengths[keyword] = length
        self.item(keyword)
        self.item(str(length))
        names = ["tdi"] if length != before or self.one_in(2) else []
        compared = self.has["chain-tdo"] if keyword[0] != "s" else self.has["ir-tdo"] or keyword == "sdr"
        names += [n for n, odds in (("tdo", 2), ("mask", 3)) if compared and self.one_in(odds)]
        names += ["smask"] if self.has["smask"] and self.one_in(6) else []
        self.random.shuffle(names)
        for name in names if length > 0 else ():
            self.value(name, length)
        self.end(hides=keyword[0] != "s")
        if keyword[0] == "s":
            self.state = self.ends[keyword]
            self.after_scan = True

    def wait(self):
        run = self.pick(*STABLE) if self.has["run-states"] and self.one_in(3) else None
        self.item("runtest")
        if run:
            self.item(run)
        counted = not self.has["times"] or not self.one_in(3)
        if counted:
            most = 1 << 24 if self.one_in(20) else 5000
            self.item("2E3" if self.one_in(10) else str(self.random.randrange(most)))
            self.item("sck" if self.has["sck"] and self.one_in(5) else "tck")
        if not counted or (self.has["both"] and self.has["times"] and self.one_in(5)):
            fine = ("3.757e-02", "50021E-6", "0.0004041") if self.has["fine-times"] else ()
            self.item(self.pick("1E-3", "2.5E-4", "0.0125", "1", "1.5", "5e-6", *fine))
            self.item("sec")
            if self.has["maximum" if counted else "bare-maximum"] and self.one_in(3):
                for word in ("maximum", "1.75e+5", "sec"):  # longer than any count here
                    self.item(word)
        # A run state is the end state too, unless one is given.
        if run or (self.has["run-states"] and self.one_in(3)):
            self.state = self.run_end = self.pick(*STABLE)
            self.item("endstate")
            self.item(self.state)
        else:
            self.state = getattr(self, "run_end", "idle")
        self.end()

    def move(self):
        others = [state for state in STABLE if state != self.state or "pause" not in state]
        path = [self.pick(*others)]
        if self.has["paths"] and self.one_in(2):
            path = [self.pick(*NEXT[self.state])] if self.one_in(2) else path
            while path[-1] not in STABLE or len(path) < 2 or self.one_in(3):
                path.append(self.pick(*NEXT[path[-1]]))
        self.state = path[-1]
        self.statement_of("state", *path)

    def statement(self):
        kinds = {"sdr": 28, "sir": 18, "chain": 12, "wait": 18}
        kinds |= {"end": 8} if self.has["end-states"] else {}
        kinds |= {"move": 8} if self.has["moves"] else {}
        kinds |= {n: 3 for n in ("frequency", "reset-line", "pio") if self.has[n]}
        kind = self.random.choices(*zip(*kinds.items()))[0]
        if kind == "wait" and not self.after_scan and not self.has["loose-waits"]:
            kind = "sdr"
        after_scan, self.after_scan = self.after_scan, False
        if kind in ("sdr", "sir"):
            self.scan(kind)
        elif kind == "chain":
            self.scan(self.pick("hir", "hdr", "tir", "tdr"))
        elif kind == "wait":
            self.after_scan = after_scan and self.has["loose-waits"]
            self.wait()
        elif kind == "end":
            register = self.pick("sir", "sdr")
            own = ("idle", register[1:] + "pause")
            self.ends[register] = self.pick(*STABLE if self.has["odd-ends"] else own)
            self.statement_of("end" + register[1:], self.ends[register])
        elif kind == "move":
            self.move()
        elif kind == "frequency":
            fine = ("1234567.25 hz", "1500.5 hz") if self.has["fine-frequency"] else ()
            self.statement_of("frequency", self.pick("", "1E6 hz", "2.5e6  hz", *fine), hides=True)
        elif kind == "reset-line":
            self.statement_of("trst", self.pick("on", "off", "z"), hides=True)
        else:
            self.statement_of("piomap (in a out b_2\ninout c)", hides=True)
            self.statement_of("pio", self.pick("(HUX)", "( z\nd l )", "(L)"), hides=True)

    def file(self, statements):
        for _ in range(statements):
            self.statement()
        text = "".join(self.text)
        return text.replace("\n", "\r\n") if self.one_in(6) else text


def random_svf(seed, statements, without=()):
    return Generator(seed, without).file(statements)


if __name__ == "__main__":
    if len(sys.argv) not in (3, 5) or sys.argv[3:4] not in ([], ["-no"]):
        listing = "".join(f"    {name:15} {text}\n" for name, text in FEATURES.items())
        sys.exit(f"{__doc__}\nFeatures:\n{listing}")
    left_out = sys.argv[4].split(",") if len(sys.argv) == 5 else []
    if unknown := set(left_out) - set(FEATURES):
        sys.exit(f"random_svf.py: unknown feature {', '.join(unknown)}")
    sys.stdout.write(random_svf(int(sys.argv[1]), int(sys.argv[2]), left_out))
