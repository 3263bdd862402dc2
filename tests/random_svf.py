#!/usr/bin/env python3
"""Writes a random SVF file, always the same one for the same arguments.

    random_svf.py SEED STATEMENTS [FEATURE ...]

The file is valid SVF without these features: values may be left out where they are
carried over, and statements, values and comments are laid out in every way.
"""
import random, sys

# What a file may hold beside plain statements, one a line.
FEATURES = {
    "sharing",  # statements that share a line
    "hidden",  # ... also after a header, trailer, FREQUENCY, TRST or PIO
    "remarks",  # comments in and behind what is neither scan nor header nor trailer
    "smask", "pio", "frequency", "fine-frequency", "reset-line",
    "chain-tdo", "ir-tdo",  # TDO and MASK of header and trailer, of SIR
    "times", "fine-times",  # RUNTEST in seconds, with more than three digits
    "both", "maximum", "bare-maximum",  # ... beside a count, MAXIMUM with it and without
    "sck",  # counts of the system clock
    "run-states",  # RUNTEST in other states than IDLE
    "loose-waits",  # ... anywhere but after a scan
    "end-states",  # ENDIR, ENDDR
    "odd-ends",  # ... in RESET or the pause state of the other register
    "moves", "paths",  # STATE, with states that are passed
}
STABLE = ("reset", "idle", "drpause", "irpause")
STATES = """reset idle drselect drcapture drshift drexit1 drpause drexit2 drupdate
            irselect ircapture irshift irexit1 irpause irexit2 irupdate""".split()
NEXT = {state: [STATES[int(after, 16)] for after in pair]  # by TMS 0 and 1
        for state, *pair in zip(STATES, "113446641abbddb1", "0295587820ccfef2")}
COMMENTS = (" note\n", " SDR 8 TDI (FF);\n", "x; y\n", "// again\n", "\n")


class Generator:
    def __init__(self, seed, without=()):
        self.random, self.text, self.lengths = random.Random(seed), [], {}
        assert FEATURES.issuperset(without), without
        self.has = FEATURES - set(without)
        self.comments, self.after_scan = not self.one_in(3), False
        self.state, self.run_end, self.ends = "reset", "idle", {"sir": "idle", "sdr": "idle"}

    def one_in(self, count, feature=""):
        """True now and then, but never without a feature."""
        return self.random.randrange(count) == 0 and (not feature or feature in self.has)

    def pick(self, *choices):
        return self.random.choice(choices)

    def comment(self):
        at_start = not self.text or self.text[-1].endswith("\n")
        self.text.append(("//" if at_start and self.one_in(2) else "!") + self.pick(*COMMENTS))

    def item(self, *words, value=False):
        """Words in any spelling, each with what divides it from the next one."""
        for word in words:
            if not value:
                word = self.pick(word.upper(), word.lower(), word.capitalize())
            self.text += word, self.pick("\t ", "\n") if self.one_in(10) else " "
            if self.remarks and self.one_in(60):
                self.comment()

    def end(self, hides=False):
        shared = self.one_in(6, "sharing") and ("hidden" in self.has or not hides)
        self.text.append(";" + " " * self.random.randrange(4))
        if self.remarks and self.one_in(8):
            self.comment()
        elif not shared:
            self.text.append("\n")

    def statement_of(self, *words, hides=False):
        self.item(*words)
        self.end(hides)

    def value(self, name, length):
        bits = self.pick(*[self.random.getrandbits(length)] * 6, 0, (1 << length) - 1)
        digits = f"{bits:0{(length + 3) // 4}x}"
        if self.one_in(10):
            digits = digits.lstrip("0") or "0"
        elif self.one_in(12):
            digits = "0" * self.random.randrange(1, 6) + digits
        line = self.pick(1 + self.random.randrange(40), 64, len(digits))
        digits = "\n".join(digits[i:i + line] for i in range(0, len(digits), line))
        given = self.pick("(", "(\n") + self.pick(digits, digits.upper()) + self.pick(")", " )")
        self.item(name + self.pick("", " "))
        self.item(given, value=True)

    def scan(self, keyword):
        length = before = self.lengths.get(keyword, 0)
        chain = keyword[0] != "s"  # header or trailer
        if before == 0 or self.one_in(2):
            most = {"sir": 40, "sdr": 300}.get(keyword, 20) * (16 if self.one_in(30) else 1)
            length = self.random.randrange(1, most + 1)
            if self.one_in(3 if chain else 6):
                length = 0 if chain else self.pick(1, 4, 63, 64, 65, 128, 192, 255, 256)
        self.lengths[keyword] = length
        self.item(keyword, str(length))
        names = ["tdi"] if length != before or self.one_in(2) else []
        compared = keyword == "sdr" or ("chain-tdo" if chain else "ir-tdo") in self.has
        names += [n for n, odds in (("tdo", 2), ("mask", 3)) if compared and self.one_in(odds)]
        names += ["smask"] * self.one_in(6, "smask")
        self.random.shuffle(names)
        for name in names if length > 0 else ():
            self.value(name, length)
        self.end(hides=chain)
        if not chain:
            self.state, self.after_scan = self.ends[keyword], True

    def wait(self):
        run = [self.pick(*STABLE)] * self.one_in(3, "run-states")
        timed = self.one_in(3, "times")
        self.item("runtest", *run)
        if not timed:
            most = 1 << 24 if self.one_in(20) else 5000
            self.item("2E3" if self.one_in(10) else str(self.random.randrange(1, most)))
            self.item("sck" if self.one_in(5, "sck") else "tck")
        if timed or (self.one_in(5, "both") and "times" in self.has):
            fine = ("3.757e-02", "50021E-6", "0.0004041") if "fine-times" in self.has else ()
            self.item(self.pick("1E-3", "2.5E-4", "0.0125", "1", "1.5", "5e-6", *fine), "sec")
            if self.one_in(3, "bare-maximum" if timed else "maximum"):
                self.item("maximum", "1.75e+5", "sec")  # longer than any count here
        # A run state is the end state too, unless one is given.
        if run or self.one_in(3, "run-states"):
            self.run_end = self.pick(*STABLE)
            self.item("endstate", self.run_end)
        self.state = self.run_end
        self.end()

    def move(self):
        others = [state for state in STABLE if state != self.state or "pause" not in state]
        path = [self.pick(*others)]
        if self.one_in(2, "paths"):
            path = [self.pick(*NEXT[self.state])] if self.one_in(2) else path
            while path[-1] not in STABLE or len(path) < 2 or self.one_in(3):
                path.append(self.pick(*NEXT[path[-1]]))
        self.state = path[-1]
        self.statement_of("state", *path)

    def statement(self):
        kinds = {"sdr": 28, "sir": 18, "chain": 12, "wait": 18}
        some = {"end-states": 8, "moves": 8, "frequency": 3, "reset-line": 3, "pio": 3}
        kinds |= {name: odds for name, odds in some.items() if name in self.has}
        kind = self.random.choices(*zip(*kinds.items()))[0]
        if kind == "wait" and not self.after_scan and "loose-waits" not in self.has:
            kind = "sdr"
        self.after_scan = False
        self.remarks = self.comments and ("remarks" in self.has or kind in ("sdr", "sir", "chain"))
        if kind in ("sdr", "sir", "chain"):
            self.scan(self.pick("hir", "hdr", "tir", "tdr") if kind == "chain" else kind)
        elif kind == "wait":
            self.wait()
        elif kind == "end-states":
            register = self.pick("sir", "sdr")
            own = ("idle", register[1:] + "pause")
            self.ends[register] = self.pick(*STABLE if "odd-ends" in self.has else own)
            self.statement_of("end" + register[1:], self.ends[register])
        elif kind == "moves":
            self.move()
        elif kind == "frequency":
            fine = ("1234567.25 hz", "1500.5 hz") if "fine-frequency" in self.has else ()
            self.statement_of(kind, self.pick("", "1E6 hz", "2.5e6  hz", *fine), hides=True)
        elif kind == "reset-line":
            self.statement_of("trst", self.pick("on", "off", "z"), hides=True)
        else:
            self.statement_of("piomap (in a out b_2\ninout c)", hides=True)
            self.statement_of("pio", self.pick("(HUX)", "( z\nd l )", "(L)"), hides=True)


def way(state, target):
    """The states of the shortest way, the last one included."""
    ways = {state: []}
    while target not in ways:
        ways = {end: path + [end] for at, path in ways.items() for end in NEXT[at]} | ways
    return ways[target]


def random_svf(seed, statements, without=()):
    generator = Generator(seed, without)
    for _ in range(statements):
        generator.statement()
    text = "".join(generator.text)
    return text.replace("\n", "\r\n") if generator.one_in(6) else text


if __name__ == "__main__":
    seed, statements, *without = sys.argv[1:]
    sys.stdout.write(random_svf(int(seed), int(statements), without))
