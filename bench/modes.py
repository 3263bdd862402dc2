"""The ways to convert that the benches judge."""

import os

# Mode: options and the suffix of its output.
MODES = {
    "svf": ([], ".svf"),
    "tapbus": (["-tapbus"], ".tcl"),
    "copy": (["-c"], ".copy"),
    "ksvf": (["-ksvf"], ".ksvf"),
    "ksvf -a": (["-ksvf"], ".a.ksvf"),
}
DEFAULT_PROGRAM = "build/release/tapforge"


def conversion(program, mode, source):
    """Command line of a mode and the files that it writes, beside the input."""
    options, suffix = MODES[mode]
    outputs = [source.removesuffix(".svf") + ".out" + suffix]
    command = [program, *options, "-w", "-i", source, "-o", outputs[0]]
    if mode.endswith("-a"):
        outputs.append(source.removesuffix(".svf") + ".out.a.txt")
        command += ["-a", outputs[1]]
    return command, outputs


def add_program(parser):
    parser.add_argument("--program", default=DEFAULT_PROGRAM)


def found_program(parser, args):
    """The program's absolute path; ends the tool if there is none."""
    if not os.access(args.program, os.X_OK):
        parser.error(f"no program {args.program}; build it first or name it with --program")
    return os.path.abspath(args.program)
