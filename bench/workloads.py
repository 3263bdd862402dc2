#!/usr/bin/env python3
"""Makes the SVF files that the benches convert, always the same ones.

    workloads.py [--scale F] [FOLDER]      (default build/bench)

Scale 1 gives files of about 68, 33 and 43 MB; the scale is in the file name.
"""

import argparse
import os
import random

BULK_DIGITS = 64 << 20
ROWS = 40_000
ROW_BITS = 1024
STATEMENTS = 500_000
LINE_DIGITS = 80

SETUP = "TRST OFF;\nENDIR IDLE;\nENDDR IDLE;\nSTATE RESET;\nSTATE IDLE;\n"
BARE_CHAIN = "HIR 0;\nHDR 0;\nTIR 0;\nTDR 0;\n"
# Lengths that are no multiples of 4, so that every digit of a scan is shifted.
CHAIN = "HIR 3 TDI (5);\nHDR 1 TDI (0);\nTIR 6 TDI (2a) SMASK (3f);\nTDR 2 TDI (2);\n"


def folded(digits):
    """The digits in lines as other tools write them."""
    lines = (digits[i:i + LINE_DIGITS] for i in range(0, len(digits), LINE_DIGITS))
    return "\n".join(lines)


def bulk(out, scale):
    """Device configuration: one SDR that is nearly the whole file."""
    digits = round(BULK_DIGITS * scale) // 2 * 2
    text = random.Random("bulk").randbytes(digits // 2).hex().upper()
    out.write(SETUP + BARE_CHAIN + "SIR 8 TDI (05);\nRUNTEST 100 TCK;\n")
    out.write(f"SDR {digits * 4} TDI (\n{folded(text)}\n);\nRUNTEST 1000 TCK;\n")
    out.write("SIR 8 TDI (0C);\nRUNTEST 100 TCK;\nSTATE RESET;\n")


def rows(out, scale):
    """Row by row programming with read-back: SDRs of a few lines each."""
    rng = random.Random("rows")
    size = ROW_BITS // 8
    out.write(SETUP + BARE_CHAIN + "SIR 8 TDI (05);\nRUNTEST 100 TCK;\n")
    for _ in range(round(ROWS * scale)):
        tdi, tdo, mask = (folded(rng.randbytes(size).hex()) for _ in range(3))
        out.write(f"SDR {ROW_BITS} TDI (\n{tdi})\nTDO (\n{tdo})\nMASK (\n{mask});\n"
                  "RUNTEST 1000 TCK;\n")
    out.write("STATE RESET;\n")


def statements(out, scale):
    """Register by register test of one device in a chain: short statements."""
    rng = random.Random("statements")
    count = round(STATEMENTS * scale)
    text = rng.randbytes(13 * count).hex()
    out.write(SETUP + CHAIN)
    for i in range(0, 26 * count, 26):
        out.write(f"SIR 8 TDI ({text[i:i + 2]});\n"
                  f"SDR 32 TDI ({text[i + 2:i + 10]}) TDO ({text[i + 10:i + 18]})"
                  f" MASK ({text[i + 18:i + 26]});\nRUNTEST 100 TCK;\n")
    out.write("STATE RESET;\n")


# Name: writer, and the digits of the largest statement's values at scale 1 that
# have to be held (0: too few to count).
WORKLOADS = {"bulk": (bulk, BULK_DIGITS), "rows": (rows, 0), "statements": (statements, 0)}


def make(name, folder, scale=1.0):
    """Path of a workload, which is written if it is not there yet."""
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, f"{name}-{scale:g}.svf")
    if not os.path.exists(path):
        with open(path + ".part", "w", encoding="ascii", newline="\n") as out:
            WORKLOADS[name][0](out, scale)
        os.rename(path + ".part", path)  # a file cut short is never taken for a workload
    return path


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", nargs="?", default="build/bench")
    parser.add_argument("--scale", type=float, default=1.0)
    args = parser.parse_args()
    for workload in WORKLOADS:
        file = make(workload, args.folder, args.scale)
        print(f"{os.path.getsize(file) / 1e6:8.1f} MB  {file}")
