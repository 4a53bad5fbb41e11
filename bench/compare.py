#!/usr/bin/env python3
"""Whole-run comparison of lumiran-cli with ImageMagick, GraphicsMagick and
libvips, BMP in and BMP out on tmpfs, every command of a row in one hyperfine
run, in the plain page mode and with glibc's huge pages.

Rows come from bench/compare/<family>.txt, one per line:
    label | lumiran-cli arguments | ImageMagick command | GraphicsMagick command | vips command
IN and OUT stand for the input and output paths, "-" for a tool without a
nearest operation, and lines starting with # are comments.
"""

import argparse
import json
import os
import re
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
TOOLS = ("lumiran", "ImageMagick", "GraphicsMagick", "libvips")
PEERS = TOOLS[1:]
MODES = {"plain": {}, "huge pages": {"GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"}}
SIZES = {"4096x4096": 5, "1920x1080": 10, "16x16": 20}  # picture: hyperfine runs


def image_magick():
    """The real ImageMagick, not a wrapper that forwards to it."""
    for name in ("magick", "convert-im6.q16", "convert-im6", "convert"):
        path = shutil.which(name)
        if path:
            return path
    sys.exit("ImageMagick is not installed (scripts/install-deps.sh)")


def read_rows(files, pattern):
    rows = []
    for file in files:
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            if not line.strip() or line.lstrip().startswith("#"):
                continue
            fields = [f.strip() for f in line.split(" | ")]
            if len(fields) != 5:
                sys.exit(f"{file}:{number}: expected 5 fields separated by ' | '")
            if pattern and not re.search(pattern, fields[0]):
                continue
            rows.append(fields)
    return rows


def command_for(tool, field, binaries, source, output):
    """The command line of one tool for one row, or None for "-"."""
    if field == "-":
        return None
    words = shlex.split(field)
    if tool == "lumiran":
        words = [binaries["lumiran"]] + words
    elif tool == "ImageMagick" and words[0] in ("convert", "magick"):
        words[0] = binaries["ImageMagick"]
    elif tool == "GraphicsMagick" and words[0] == "gm":
        words[0] = binaries["GraphicsMagick"]
    elif tool == "libvips" and words[0] == "vips":
        words[0] = binaries["libvips"]
    words = [re.sub(r"\bOUT\b", str(output), re.sub(r"\bIN\b", str(source), w)) for w in words]
    return shlex.join(words)


def max_rss_mib(command, env):
    result = subprocess.run(["/usr/bin/time", "-f", "%M"] + shlex.split(command), env=env,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    try:
        return int(result.stderr.strip().splitlines()[-1]) / 1024
    except (ValueError, IndexError):
        return None


def measure(commands, runs, env, work):
    """Median wall time in ms of each command, all in one hyperfine run."""
    report = work / "hyperfine.json"
    arguments = ["hyperfine", "-N", "--warmup", "1", "--runs", str(runs), "--style", "none",
                 "--export-json", str(report)]
    for name, command in commands:
        arguments += ["-n", name, command]
    done = subprocess.run(arguments, env=env, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          text=True)
    if done.returncode != 0:
        # One failing tool must not cost the rest of the table.
        print(f"<!-- {done.stderr.strip()} -->", file=sys.stderr)
        return {}, {}
    results = json.loads(report.read_text())["results"]
    return ({r["command"]: statistics.median(r["times"]) * 1000 for r in results},
            {r["command"]: (r["user"] + r["system"]) * 1000 for r in results})


def make_pictures(work, sizes, im):
    pictures = {}
    for size in sizes:
        path = work / f"in-{size}.bmp"
        # A plasma: smooth runs and noise, like a photograph.
        subprocess.run([im, "-seed", "7", "-size", size, "plasma:fractal", "-type", "TrueColor",
                        f"BMP3:{path}"], check=True)
        pictures[size] = path
    return pictures


def format_ms(value):
    return "-" if value is None else f"{value:.0f}" if value >= 100 else f"{value:.1f}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cli", default=str(HERE.parent / "build" / "lumiran-cli"))
    parser.add_argument("--before", help="an earlier lumiran-cli, measured in the same runs")
    parser.add_argument("--rows", help="only rows whose label matches this regular expression")
    parser.add_argument("--sizes", default=",".join(SIZES), help="comma-separated WxH")
    parser.add_argument("--modes", default=",".join(MODES), help="plain and/or 'huge pages'")
    parser.add_argument("--runs", type=int, help="hyperfine runs per command (default by size)")
    parser.add_argument("--no-rss", action="store_true", help="skip the max RSS column")
    parser.add_argument("files", nargs="*", type=Path,
                        help="row files (default: every bench/compare/*.txt)")
    args = parser.parse_args()

    files = args.files or sorted((HERE / "compare").glob("*.txt"))
    rows = read_rows(files, args.rows)
    binaries = {"lumiran": args.cli, "ImageMagick": image_magick(),
                "GraphicsMagick": shutil.which("gm"), "libvips": shutil.which("vips")}
    for tool in ("hyperfine", "gm", "vips"):
        if not shutil.which(tool):
            sys.exit(f"{tool} is not installed (scripts/install-deps.sh)")
    if not os.access(args.cli, os.X_OK):
        sys.exit(f"{args.cli}: not built (make build)")

    shm = Path("/dev/shm")
    with tempfile.TemporaryDirectory(prefix="lumiran-compare-",
                                     dir=shm if shm.is_dir() else None) as folder:
        work = Path(folder)
        sizes = [s for s in args.sizes.split(",") if s]
        pictures = make_pictures(work, sizes, binaries["ImageMagick"])
        smallest = min(pictures.values(), key=lambda p: p.stat().st_size)
        works = {}
        print(f"# lumiran-cli whole runs against the fastest peer, median ms "
              f"({os.cpu_count()} cores)\n")
        for mode in [m for m in args.modes.split(",") if m]:
            env = dict(os.environ, **MODES[mode])
            for size in sizes:
                runs = args.runs or SIZES.get(size, 10)
                show_rss = not args.no_rss and size == "4096x4096"
                head = ["row", "lumiran"] + (["before"] if args.before else []) + list(PEERS)
                head += ["ratio"] + (["ratio before"] if args.before else [])
                head += ["CPU lumiran", "CPU fastest peer"]
                if show_rss:
                    head += [f"RSS MiB {t}" for t in ("lumiran",) + PEERS]
                print(f"## {size}, {mode}\n")
                print("| " + " | ".join(head) + " |")
                print("|" + "---|" * len(head))
                for label, *fields in rows:
                    commands = []
                    for tool, field in zip(TOOLS, fields):
                        command = command_for(tool, field, binaries, pictures[size],
                                              work / f"out-{tool}.bmp")
                        if command:
                            commands.append((tool, command))
                        if tool == "lumiran" and command and args.before:
                            commands.append(("before", command.replace(
                                shlex.quote(args.cli), shlex.quote(args.before), 1)))
                    # A command that fails is left out of the row, not timed;
                    # each is tried once, on the smallest picture.
                    for name, command in commands:
                        if (label, name) not in works:
                            trial = command.replace(str(pictures[size]), str(smallest))
                            try:
                                works[(label, name)] = subprocess.run(
                                    shlex.split(trial), env=env, stdout=subprocess.DEVNULL,
                                    stderr=subprocess.DEVNULL).returncode == 0
                            except OSError:
                                works[(label, name)] = False
                            if not works[(label, name)]:
                                print(f"<!-- {label}: {name} failed -->", file=sys.stderr)
                    commands = [(n, c) for n, c in commands if works[(label, n)]]
                    times, cpu = measure(commands, runs, env, work)
                    peers = [times[p] for p in PEERS if p in times]
                    fastest = min(peers) if peers else None
                    fastest_peer = min((p for p in PEERS if p in times), key=times.get,
                                       default=None)
                    ratio = lambda t: "-" if t is None or fastest is None else f"{t / fastest:.2f}"
                    cells = [label, format_ms(times.get("lumiran"))]
                    if args.before:
                        cells.append(format_ms(times.get("before")))
                    cells += [format_ms(times.get(p)) for p in PEERS]
                    cells.append(ratio(times.get("lumiran")))
                    if args.before:
                        cells.append(ratio(times.get("before")))
                    # Processor time (user and system, mean): what the wall
                    # times would be on an idle machine, roughly.
                    cells.append(format_ms(cpu.get("lumiran")))
                    cells.append(format_ms(cpu.get(fastest_peer)) if fastest_peer else "-")
                    if show_rss:
                        rss = dict((name, max_rss_mib(c, env)) for name, c in commands)
                        cells += [format_ms(rss.get(t)) for t in ("lumiran",) + PEERS]
                    print("| " + " | ".join(cells) + " |", flush=True)
                print()


if __name__ == "__main__":
    main()
