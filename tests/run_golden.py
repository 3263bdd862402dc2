#!/usr/bin/env python3
"""Runs one golden case: run_golden.py PROGRAM CASE_FOLDER

cmd              one run a line, split like a shell command; an empty line is a run without arguments
stdin            given to every run (none: empty)
stdout, stderr   what all runs together print; status: one exit status a line
out.*            the files the runs leave behind; out.X.hex holds the binary file out.X as hex text
existing.X       put into the folder of the runs as X; every other file is put there by its own name
listing-differs  says why a KSVF listing does not tell every byte of its file
UPDATE_GOLDEN=1 rewrites the expectations."""
import difflib, os, pathlib, re, shlex, shutil, subprocess, sys, tempfile

# Bytes of each operand, 0 for a vector.
WIDTHS = {"KCOMPLETE": [], "KTDOMASK": [0], "KSIR": [1, 0], "KSDR": [0], "KRUNTEST": [4],
          "KREPEAT": [1], "KSDRSIZE": [4], "KSDRTDO": [0, 0], "KSDRB": [0], "KSDRC": [0],
          "KSDRE": [0], "KSDRTDOB": [0, 0], "KSDRTDOC": [0, 0], "KSDRTDOE": [0, 0], "KSTATE": [1],
          "KENDIR": [1], "KENDDR": [1], "KSIR2": [2, 0], "KWAIT": [1, 1, 4]}
CODES = dict(zip(WIDTHS, [0, 1, 2, 3, 4, 7, 8, 9, *range(12, 22), 23]))
MASKS = [(rb"(?m)^(  \*\*\*\* Build date : )\w{3} [ \d]\d \d{4}-\d\d:\d\d:\d\d$", rb"\1<build date>"),
         (rb"(?m)^((?:Start|Finish) {0,2}: )\w{3} \w{3} [ \d]\d \d\d:\d\d:\d\d \d{4}$", rb"\1<time>"),
         (rb"(?m)^( +Elapsed [Tt]ime \()\d\d:\d\d:\d\d(?=\))", rb"\1<elapsed>"),
         (rb"(?m)^(- Date is                : \[)[^]\n]+(?=\]$)", rb"\1<time>")]
STREAMS, PLAN = ("stdout", "stderr", "status"), ("cmd", "stdin", "listing-differs")


def assemble(listing):
    """The bytes of the commands that a listing shows."""
    data = b""
    for line in re.split(rb"\n(?=K[A-Z0-9]+(?:[ \n]|\Z))", listing.removesuffix(b"\n")):
        name, _, operands = line.partition(b" ")
        if name == b"KCOMMENT":
            data += b"\x16" + operands + b"\0"
            continue
        data += bytes([CODES[name.decode()]])
        for width, operand in zip(WIDTHS[name.decode()], operands.decode().split(), strict=name != b"KSDR"):
            data += int(operand, 16).to_bytes(width, "big") if width else bytes.fromhex(operand[2:])
    return data


def agree(listing, binary):
    try:
        return assemble(listing.read_bytes()) == binary.read_bytes()
    except (KeyError, ValueError, OverflowError):
        return False


def show(name, data):
    """An output as the case keeps it."""
    if name.endswith(".ksvf"):
        rows = (data[i:i + 32].hex(" ") + "\n" for i in range(0, len(data), 32))
        return name + ".hex", "".join(rows).encode()
    for pattern, text in MASKS if name in STREAMS or name.endswith(".log") else ():
        data = re.sub(pattern, text, data)
    return name, data


def run_case(program, case, folder):
    """What the runs printed and left behind, by name, and every listing that disagrees."""
    seen, faults = dict.fromkeys(STREAMS, b""), []
    given = (case / "stdin").read_bytes() if (case / "stdin").exists() else b""
    env = {**os.environ, "LC_ALL": "C", "LOCPATH": str(folder)}  # no locale but C
    for line in (case / "cmd").read_text().splitlines():
        args = shlex.split(line)
        run = subprocess.run([program, *args], cwd=folder, input=given, env=env, timeout=60,
                             capture_output=True)
        for stream, text in zip(STREAMS, (run.stdout, run.stderr, b"%d\n" % run.returncode)):
            seen[stream] += text
        files = [folder / args[args.index(option) + 1] for option in ("-a", "-o") if option in args[:-1]]
        if len(files) == 2 and all(file.is_file() for file in files):
            if agree(*files) == (case / "listing-differs").exists():
                faults.append(f"{line}: does the listing tell every byte? See listing-differs.\n")
    seen.update((str(file.relative_to(folder)), file.read_bytes())
                for file in folder.rglob("*") if file.is_file())
    return dict(show(*item) for item in seen.items()), faults


def difference(name, want, got):
    texts = [(data or b"").decode("latin-1").splitlines(keepends=True) for data in (want, got)]
    lines = difflib.unified_diff(*texts, f"expected {name}", f"seen {name}")
    marked = (line if line.endswith("\n") else line + "\n\\ no line end\n" for line in lines)
    return "".join(marked) or f"{name}: empty, but {'missing' if got is None else 'not expected'}\n"


def main():
    program, case = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    files = [file for file in case.iterdir() if file.name not in PLAN]
    outputs = [file for file in files if file.name in STREAMS or file.name.startswith("out.")]
    inputs = {file.name.removeprefix("existing."): file for file in files if file not in outputs}
    with tempfile.TemporaryDirectory() as folder:
        for name, file in inputs.items():
            shutil.copy(file, pathlib.Path(folder, name), follow_symlinks=False)
        seen, faults = run_case(program, case, pathlib.Path(folder))
    kept = dict(show(name, file.read_bytes()) for name, file in inputs.items())
    if os.environ.get("UPDATE_GOLDEN") == "1":
        for file in outputs:
            file.unlink()
        kept_or_empty = kept | dict.fromkeys(STREAMS, b"")
        outputs = [case / name for name, data in seen.items() if data != kept_or_empty.get(name)
                   and (name in STREAMS or name.startswith("out."))]
        for file in outputs:
            file.write_bytes(seen[file.name])
    expected = kept | dict.fromkeys(STREAMS, b"") | {file.name: file.read_bytes() for file in outputs}
    for name in sorted(seen.keys() | expected.keys()):
        if expected.get(name) != seen.get(name):
            faults.append(difference(name, expected.get(name), seen.get(name)))
    print("".join(faults), end="")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
