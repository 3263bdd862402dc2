"""Reckons what a workload must convert to, in whole numbers instead of digit rows.

Covers the statements that the workloads use. They give every value of a scan
anew, so that nothing is carried over from the statement before.
"""

import itertools
import re

STATEMENT = re.compile(r"\s*(\w+)\s+([^;]*);")
VALUE = re.compile(r"(\w+)\s*\(([^)]*)\)")
SCANS = ("HIR", "HDR", "TIR", "TDR", "SIR", "SDR")
FOLDED_NOTE = "!==* Header/Trailer info combined with SIR/SDR\n!"
TAPBUS = {
    "ENDIR": "set_property ENDSTATE_IR {%s} $current_tapbus\n",
    "ENDDR": "set_property ENDSTATE_DR {%s} $current_tapbus\n",
    "STATE": "run_state_tapbus %s\n",
    "TRST": "# TRST %s ;\n",
}
# Code: name, bytes of its number, vectors, form of its number in the listing.
COMMANDS = {
    0: ("KCOMPLETE", 0, 0, ""),
    1: ("KTDOMASK", 0, 1, ""),
    2: ("KSIR", 1, 1, " 0x%02X"),
    4: ("KRUNTEST", 4, 0, " 0x%08X"),
    7: ("KREPEAT", 1, 0, " 0x%02X"),
    8: ("KSDRSIZE", 4, 0, " 0x%08X"),
    9: ("KSDRTDO", 0, 2, ""),
    18: ("KSTATE", 1, 0, " 0x%02x"),
}


def statements(path):
    """Every statement: keyword, text (None for a scan), length, values by name."""
    with open(path, encoding="ascii") as source:
        text = source.read()
    for match in STATEMENT.finditer(text):
        word, rest = match.groups()
        if word not in SCANS:
            yield word, rest, 0, {}
            continue
        values = {name: int("".join(digits.split()), 16) for name, digits in VALUE.findall(rest)}
        yield word, None, int(rest[:12].split()[0]), values


class Chain:
    """The header and trailer in force, and scans joined with them."""

    def __init__(self):
        self.pieces = {}
        self.frames = {}

    def set(self, word, length, values):
        self.pieces[word] = length, values
        self.frames.clear()

    def frame(self, word, length, name):
        """A value of header and trailer with the scan's own bits left 0."""
        head_bits, head = self.pieces.get("H" + word[1:], (0, {}))
        tail_bits, tail = self.pieces.get("T" + word[1:], (0, {}))
        absent = -1 if name == "TDI" else 0
        head = head.get(name, absent) & ((1 << head_bits) - 1)
        tail = tail.get(name, absent) & ((1 << tail_bits) - 1)
        return head_bits, tail_bits + length + head_bits, tail << (length + head_bits) | head

    def whole(self, word, length, values):
        """Length and values of a scan of the whole chain."""
        joined = {}
        for name in ("TDI", "TDO", "MASK") if "TDO" in values else ("TDI",):
            key = word, length, name
            if key not in self.frames:
                self.frames[key] = self.frame(*key)
            shift, total, frame = self.frames[key]
            value = values[name] if name in values else (1 << length) - 1
            joined[name] = frame | value << shift
        return total, joined


def shown(bits, values, label, form, line_start):
    """Length and values as written after the keyword of a scan."""
    out = f" {bits}"
    for name, value in values.items():
        digits = format(value, f"0{(bits + 3) // 4}{form}")
        lines = (digits[i:i + 64] for i in range(0, len(digits), 64))
        out += f"\n{label}{name:>{len(line_start) - 3 - len(label)}} ({line_start.join(lines)})"
    return out


def merged(bits, values):
    return shown(bits, values, "", "x", "\n" + " " * 9)


def unmerged(bits, values):
    """The values of a statement by themselves, cut to their masks."""
    cut = {name: value for name, value in values.items() if bits and name != "SMASK"}
    for name, mask in (("TDI", "SMASK"), ("TDO", "MASK")):
        if name in cut and mask in values:
            cut[name] &= values[mask]
    return shown(bits, cut, "!", "X", "\n!" + " " * 8)


def script(path, form):
    """Mode 0 output in pieces; form is "svf", "tapbus" or "copy"."""
    chain = Chain()
    for word, rest, bits, values in statements(path):
        if rest is not None:
            if form != "tapbus":
                yield f"{word} {rest} ;\n"
            elif word == "RUNTEST":
                yield f"runtest_tapbus -tck {rest.split()[0]}\n"
            else:
                yield TAPBUS[word] % rest
        elif word[0] == "S":
            if form == "copy":
                yield word + unmerged(bits, values) + " ;\n"
            elif form == "svf":
                yield word + merged(*chain.whole(word, bits, values)) + " ;\n"
            else:
                start = f"scan_{word[1:].lower()}_tapbus "
                yield start + merged(*chain.whole(word, bits, values)) + "\n\n"
        else:
            chain.set(word, bits, values)
            name = word.lower()
            if form == "tapbus":
                yield f"set_property {name}_length {{{bits}}} $current_tapbus\n"
                if bits:
                    yield f"\nset_property {name}_TDI {{{values['TDI']:0{(bits + 3) // 4}X}}}"
                    yield " $current_tapbus"
                yield FOLDED_NOTE + "\n\n"
            else:
                yield (FOLDED_NOTE if form == "svf" else "") + name + unmerged(bits, values)
                yield " ;\n"


def operations(path):
    """What a KSVF player must do: its frame, the state moves, and each scan of
    the whole chain with the wait after it."""
    yield "KREPEAT", 32
    chain, scan = Chain(), None
    for word, rest, bits, values in statements(path):
        if scan:
            yield *scan, int(rest.split()[0]) if word == "RUNTEST" else 0
            scan = None
        if word == "STATE":
            yield "KSTATE", ("RESET", "IDLE").index(rest)
        elif word[0] == "S":
            bits, values = chain.whole(word, bits, values)
            names = ("TDI",) if word == "SIR" else ("TDI", "TDO", "MASK")
            vectors = (values.get(name, 0).to_bytes((bits + 7) // 8, "big") for name in names)
            scan = "K" + word, bits, *vectors
        elif word in SCANS:
            chain.set(word, bits, values)
    yield "KCOMPLETE", None


def commands(data):
    """The commands of a KSVF file: name, number (or None), vectors, number form."""
    at = size = 0
    while at < len(data):
        name, width, count, form = COMMANDS[data[at]]
        number = int.from_bytes(data[at + 1:at + 1 + width], "big") if width else None
        at += 1 + width
        size = number if name == "KSDRSIZE" else size
        step = ((number if name == "KSIR" else size) + 7) // 8
        yield name, number, [data[at + i * step:at + (i + 1) * step] for i in range(count)], form
        at += count * step


def replay(data):
    """What a player does with a KSVF file, to be compared with operations()."""
    force = {"KSDRSIZE": 0, "KTDOMASK": None, "KRUNTEST": None}
    for name, number, vectors, _ in commands(data):
        if name in force:
            value = vectors[0] if vectors else number
            if force[name] == value:
                yield "needless", name
            force[name] = value
        elif name == "KSIR":
            yield name, number, *vectors, force["KRUNTEST"]
        elif name == "KSDRTDO":
            yield "KSDR", force["KSDRSIZE"], *vectors, force["KTDOMASK"], force["KRUNTEST"]
        else:
            yield name, number


def listing(data):
    for name, number, vectors, form in commands(data):
        yield name + (form % number if form else "")
        yield "".join(f" 0x{vector.hex()}" for vector in vectors) + "\n"


def text_fault(path, expected):
    """The first difference between a file and the pieces of text, or None."""
    at = 0
    with open(path, "rb") as found:
        while batch := "".join(itertools.islice(expected, 4096)).encode():
            if (piece := found.read(len(batch))) != batch:
                off = next((i for i, (a, b) in enumerate(zip(piece, batch)) if a != b), len(piece))
                return (f"byte {at + off}: {batch[max(0, off - 40):off + 40]!r} expected,"
                        f" {piece[max(0, off - 40):off + 40]!r} found")
            at += len(batch)
        return f"more than {at} bytes" if found.read(1) else None


def ksvf_fault(path, source):
    """The first difference between a KSVF file and its source, or None."""
    with open(path, "rb") as file:
        data = file.read()
    try:
        pairs = itertools.zip_longest(replay(data), operations(source))
        for index, (found, expected) in enumerate(pairs):
            if found != expected:
                return f"operation {index} differs from {(expected or ['none'])[:2]}"
    except (KeyError, IndexError) as fault:
        return f"no such command: {fault}"
    return None
