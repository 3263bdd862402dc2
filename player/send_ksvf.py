#!/usr/bin/env python3
"""Plays a KSVF file on a board at a serial line (see serial_port.h for what goes over it).

    send_ksvf.py [-svf SOURCE] LINE FILE    check the file, play it, and tell the result
    send_ksvf.py -chain LINE                tell which devices are in the chain

-svf      the SVF file that FILE was made from: a mismatch is told with its statement, which
          tapforge-replay finds
-baud     speed of the line (115200)
-silence  seconds without a word from the board after which it is given up (60); the board is
          silent while it waits or clocks a long scan

Status: 0 played to its end, 1 refused or not as expected, 2 not played for another reason."""
import argparse, binascii, os, pathlib, re, select, subprocess, sys, termios, tty

CHAIN, END = 254, 255
REQUEST = re.compile(rb"(check|play) (\d+) (\d+) (\d+)")


def open_line(name, baud):
    """The line in binary mode: no echo, no flow control."""
    line = os.open(name, os.O_RDWR | os.O_NOCTTY)
    tty.setraw(line)
    settings = termios.tcgetattr(line)
    settings[2] |= termios.CLOCAL | termios.CREAD
    settings[4] = settings[5] = getattr(termios, f"B{baud}", None)
    if settings[4] is None:
        raise OSError(f"{baud} baud is no speed of this machine")
    termios.tcsetattr(line, termios.TCSAFLUSH, settings)
    return line


def lines_of(line, silence):
    """What the board says, line by line. Old parts of a line may come first."""
    text = b""
    while True:
        while b"\n" not in text:
            if not select.select([line], [], [], silence)[0]:
                raise OSError(f"the board has said nothing for {silence} seconds")
            more = os.read(line, 4096)
            if not more:
                raise OSError("the line is gone")
            text += more
        one, text = text.split(b"\n", 1)
        yield one


def answer(line, question, first, data=b""):
    """Sends the one answer that the board has asked for."""
    body = bytes([first]) + data
    crc = binascii.crc_hqx(question.to_bytes(4, "big") + body, 0xFFFF)
    body += crc.to_bytes(2, "big")
    while body:
        body = body[os.write(line, body):]


def serve(line, silence, data):
    """Answers the board until it tells a result, and returns the phase and that text. Without
    data it is asked for its chain."""
    phase, expected, times = None, [("check", 0)], 0
    for text in lines_of(line, silence):
        request = REQUEST.fullmatch(text)
        here = request and (request[1].decode(), int(request[2]))
        if phase and text.startswith(b"end "):
            return phase, text[4:].decode("ascii", "replace")
        if here in expected:
            phase, offset = here
            times = times + 1 if here == expected[0] else 1
            if times > 20:
                raise OSError(f"the block at byte {offset} does not reach the board")
            part = (data or b"")[offset:offset + int(request[3])]
            answer(line, int(request[4]), CHAIN if data is None else len(part), part)
            expected = [here, (phase, offset + len(part)), ("play", 0)]
            if data and sys.stderr.isatty():
                percent = 100 * (offset + len(part)) // len(data)
                print(f"\r{phase} {percent:3} %", end="", file=sys.stderr, flush=True)
        elif here and not phase:  # the board still is at a file that somebody gave up
            answer(line, int(request[4]), END)
        elif here == ("check", 0):
            raise OSError("the board has begun anew, and the result is lost")
        elif phase and not request:
            print(text.decode("ascii", "replace"))


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("-svf", metavar="SOURCE")
    parser.add_argument("-chain", action="store_true")
    parser.add_argument("-baud", type=int, default=115200)
    parser.add_argument("-silence", type=float, default=60, metavar="SECONDS")
    parser.add_argument("line", metavar="LINE")
    parser.add_argument("file", metavar="FILE", nargs="?")
    options = parser.parse_args()
    if (options.file is None) != options.chain:
        parser.error("either FILE or -chain")
    try:
        data = None if options.chain else pathlib.Path(options.file).read_bytes()
        phase, text = serve(open_line(options.line, options.baud), options.silence, data)
    except (OSError, termios.error) as problem:
        text = problem if isinstance(problem, OSError) else f"{options.line}: {problem.args[-1]}"
        print(f"send_ksvf.py: {text}", file=sys.stderr)
        return 2
    if sys.stderr.isatty():
        print(file=sys.stderr)
    if options.chain:
        return 0
    print(text if phase == "play" else f"refused before any pin was moved: {text}", flush=True)
    mismatch = re.match(r"mismatch in scan (\d+)", text)
    if mismatch and options.svf:
        subprocess.run(["tapforge-replay", "-scan", mismatch[1], options.svf], check=False)
    return 0 if text.startswith("done") else 1


if __name__ == "__main__":
    sys.exit(main())
