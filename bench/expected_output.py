"""What a workload must convert to, worked out from each value as one whole number.

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
# Command: code, bytes of its number, form of its number in the listing.
KSVF = {
    "KCOMPLETE": (0, 0, ""),
    "KTDOMASK": (1, 0, ""),
    "KSIR": (2, 1, " 0x%02X"),
    "KRUNTEST": (4, 4, " 0x%08X"),
    "KREPEAT": (7, 1, " 0x%02X"),
    "KSDRSIZE": (8, 4, " 0x%08X"),
    "KSDRTDO": (9, 0, ""),
    "KSTATE": (18, 1, " 0x%02x"),
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


def scan_commands(word, bits, values, clocks, force):
    """The commands of a scan of the whole chain and the wait after it. What the
    player has in force already is not written again."""
    vectors = [values.get(name, 0).to_bytes((bits + 7) // 8, "big")
               for name in ("TDI", "TDO", "MASK")]
    wanted = [("KRUNTEST", clocks)]
    if word == "SDR":
        wanted += [("KSDRSIZE", bits), ("KTDOMASK", vectors.pop())]
    for name, value in wanted:
        if force.get(name) == value:
            continue
        force[name] = value
        yield (name, None, value) if name == "KTDOMASK" else (name, value)
    yield ("KSIR", bits, vectors[0]) if word == "SIR" else ("KSDRTDO", None, *vectors)


def commands(path):
    """The commands of a KSVF file: name, number or None, vectors."""
    yield "KREPEAT", 32
    chain, scan, force = Chain(), None, {}
    for word, rest, bits, values in statements(path):
        if scan:
            yield from scan_commands(*scan, int(rest.split()[0]) if word == "RUNTEST" else 0, force)
            scan = None
        if word == "STATE":
            yield "KSTATE", ("RESET", "IDLE").index(rest)
        elif word[0] == "S":
            scan = word, *chain.whole(word, bits, values)
        elif word in SCANS:
            chain.set(word, bits, values)
    yield "KCOMPLETE", None


def ksvf(path):
    for name, number, *vectors in commands(path):
        code, width, _ = KSVF[name]
        yield bytes((code,)) + (number.to_bytes(width, "big") if width else b"") + b"".join(vectors)


def listing(path):
    for name, number, *vectors in commands(path):
        form = KSVF[name][2]
        line = name + (form % number if form else "")
        yield line + "".join(f" 0x{vector.hex()}" for vector in vectors) + "\n"


def difference(path, expected):
    """The first difference between a file and the pieces of text or bytes that
    it must consist of, or None."""
    at = 0
    pieces = (piece if isinstance(piece, bytes) else piece.encode() for piece in expected)
    with open(path, "rb") as file:
        while batch := b"".join(itertools.islice(pieces, 4096)):
            if (found := file.read(len(batch))) != batch:
                off = next((i for i, (a, b) in enumerate(zip(found, batch)) if a != b), len(found))
                return (f"byte {at + off}: {batch[max(0, off - 40):off + 40]!r} expected,"
                        f" {found[max(0, off - 40):off + 40]!r} found")
            at += len(batch)
        return f"more than {at} bytes" if file.read(1) else None
