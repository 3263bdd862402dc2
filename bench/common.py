"""The ways to convert, and what the tools of this folder have in common."""

import os

# Mode: options and the suffix of its output.
MODES = {
    "svf": ([], ".svf"),
    "tapbus": (["-tapbus"], ".tcl"),
    "copy": (["-c"], ".copy"),
    "ksvf": (["-ksvf"], ".ksvf"),
    "ksvf -a": (["-ksvf"], ".a.ksvf"),
}


def conversion(program, mode, source):
    """Command line of a mode and the files that it writes, beside the input."""
    options, suffix = MODES[mode]
    outputs = [source.removesuffix(".svf") + ".out" + suffix]
    command = [program, *options, "-w", "-i", source, "-o", outputs[0]]
    if mode.endswith("-a"):
        outputs.append(source.removesuffix(".svf") + ".out.a.txt")
        command += ["-a", outputs[1]]
    return command, outputs


def remove(files):
    for file in files:
        if os.path.exists(file):
            os.remove(file)


def verdict(value, goal):
    return "PASS" if value <= goal else f"+{100 * (value / goal - 1):.0f}%"


def processor_name():
    with open("/proc/cpuinfo", encoding="ascii", errors="replace") as file:
        names = (line.partition(":")[2].strip() for line in file if line.startswith("model name"))
        return next(names, "unknown")


def add_program(parser):
    parser.add_argument("--program", default="build/release/tapforge")


def found_program(parser, args):
    """The program's absolute path; ends the tool if there is none."""
    if not os.access(args.program, os.X_OK):
        parser.error(f"no program {args.program}; build it first or name it with --program")
    return os.path.abspath(args.program)
