#!/usr/bin/env python3
"""Whole-run comparison of lumiran-cli with ImageMagick, GraphicsMagick and
libvips, BMP in and BMP out on tmpfs, every command of a row timed in the same
hyperfine runs, taking turns, in the plain page mode and with glibc's huge
pages.

Rows come from bench/compare/<family>.txt, one per line:
    label | lumiran-cli arguments | ImageMagick command | GraphicsMagick command | vips command
IN and OUT stand for the input and output paths, "-" for a tool without a
nearest operation, and lines starting with # are comments.

Every command runs once first, under /usr/bin/time, for its maximum RSS; a
peer whose run took more than --slow-peers times the quickest peer's is not
timed further (it cannot be the fastest) and shows as ~ms of that one run.
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
import time
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


def trial_run(command, env):
    """(wall ms, max RSS MiB) of one run, either None when unknown."""
    start = time.perf_counter()
    result = subprocess.run(["/usr/bin/time", "-f", "%M"] + shlex.split(command), env=env,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    wall = (time.perf_counter() - start) * 1000
    try:
        return wall, int(result.stderr.strip().splitlines()[-1]) / 1024
    except (ValueError, IndexError):
        return wall, None


def measure(commands, runs, env, work):
    """Median wall time and mean CPU time in ms of each command. Each of the
    runs is a hyperfine run of every command once, in turn: a burst of load
    from elsewhere on the machine, seconds long, then falls on all the tools
    of a row alike instead of on whichever one was being timed."""
    report = work / "hyperfine.json"
    walls = {name: [] for name, _ in commands}
    cpu = {name: [] for name, _ in commands}
    for turn in range(runs):
        arguments = ["hyperfine", "-N", "--warmup", "1" if turn == 0 else "0", "--runs", "1",
                     "--style", "none", "--export-json", str(report)]
        for name, command in commands:
            arguments += ["-n", name, command]
        done = subprocess.run(arguments, env=env, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            # One failing tool must not cost the rest of the table.
            print(f"<!-- {done.stderr.strip()} -->", file=sys.stderr)
            return {}, {}
        for r in json.loads(report.read_text())["results"]:
            walls[r["command"]] += r["times"]
            cpu[r["command"]].append((r["user"] + r["system"]) * 1000)
    return ({name: statistics.median(t) * 1000 for name, t in walls.items()},
            {name: statistics.fmean(c) for name, c in cpu.items()})


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


def measure_group(group, binaries, args, env, work, source, smallest, runs, works, show_rss):
    """Times every row of the group and the peers they share in one hyperfine
    run; results are keyed by (label, tool), the peers' by (None, tool)."""
    commands = []
    for label, *fields in group:
        for tool, field in zip(TOOLS, fields):
            if tool != "lumiran" and label != group[0][0]:
                continue
            key = (label if tool == "lumiran" else None, tool)
            command = command_for(tool, field, binaries, source, work / f"out-{tool}.bmp")
            if not command:
                continue
            commands.append((key, command))
            if tool == "lumiran" and args.before:
                commands.append(((label, "before"), command.replace(
                    shlex.quote(args.cli), shlex.quote(args.before), 1)))
    # A command that fails is left out of the row, not timed; each is tried
    # once, on the smallest picture.
    for key, command in commands:
        trial = command.replace(str(source), str(smallest))
        if trial not in works:
            try:
                works[trial] = subprocess.run(shlex.split(trial), env=env,
                                              stdout=subprocess.DEVNULL,
                                              stderr=subprocess.DEVNULL).returncode == 0
            except OSError:
                works[trial] = False
            if not works[trial]:
                print(f"<!-- {key[0] or group[0][0]}: {key[1]} failed -->", file=sys.stderr)
    commands = [(k, c) for k, c in commands if works[c.replace(str(source), str(smallest))]]
    trials = {key: trial_run(c, env) for key, c in commands if show_rss or key[0] is None}
    slow = {}
    peer_walls = [trials[key][0] for key, _ in commands if key[0] is None]
    if args.slow_peers and peer_walls:
        limit = args.slow_peers * min(peer_walls)
        slow = {key: trials[key][0] for key, _ in commands
                if key[0] is None and trials[key][0] > limit}
    commands = [(k, c) for k, c in commands if k not in slow]
    # hyperfine needs a distinct name for each command.
    names = {f"{key[1]}#{n}": key for n, (key, _) in enumerate(commands)}
    times, cpu = measure(list(zip(names, (c for _, c in commands))), runs, env, work)
    rss = {key: trial[1] for key, trial in trials.items()} if show_rss else {}
    return ({names[n]: t for n, t in times.items()}, {names[n]: t for n, t in cpu.items()}, rss,
            slow)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--cli", default=str(HERE.parent / "build" / "lumiran-cli"))
    parser.add_argument("--before", help="an earlier lumiran-cli, measured in the same runs")
    parser.add_argument("--rows", help="only rows whose label matches this regular expression")
    parser.add_argument("--sizes", default=",".join(SIZES), help="comma-separated WxH")
    parser.add_argument("--modes", default=",".join(MODES), help="plain and/or 'huge pages'")
    parser.add_argument("--runs", type=int, help="hyperfine runs per command (default by size)")
    parser.add_argument("--no-rss", action="store_true", help="skip the max RSS column")
    parser.add_argument("--slow-peers", type=float, default=3.0,
                        help="time no peer whose trial run takes more than this many times the "
                             "quickest peer's (0 times them all)")
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
                measured = {}
                for label, *fields in rows:
                    peer_fields = tuple(fields[1:])
                    if peer_fields not in measured:
                        # Rows that share the peers' commands are timed in one
                        # hyperfine run: the peers once, each row's lumiran
                        # beside them.
                        group = [r for r in rows if tuple(r[2:]) == peer_fields]
                        measured[peer_fields] = measure_group(group, binaries, args, env, work,
                                                              pictures[size], smallest, runs,
                                                              works, show_rss)
                    times, cpu, rss, slow = measured[peer_fields]
                    mine = lambda tool: times.get((label, tool))
                    peers = {p: times[(None, p)] for p in PEERS if (None, p) in times}
                    fastest_peer = min(peers, key=peers.get, default=None)
                    fastest = peers.get(fastest_peer)
                    ratio = lambda t: "-" if t is None or fastest is None else f"{t / fastest:.2f}"
                    cells = [label, format_ms(mine("lumiran"))]
                    if args.before:
                        cells.append(format_ms(mine("before")))
                    cells += ["~" + format_ms(slow[(None, p)]) if (None, p) in slow
                              else format_ms(peers.get(p)) for p in PEERS]
                    cells.append(ratio(mine("lumiran")))
                    if args.before:
                        cells.append(ratio(mine("before")))
                    # Processor time (user and system, mean): what the wall
                    # times would be on an idle machine, roughly.
                    cells.append(format_ms(cpu.get((label, "lumiran"))))
                    cells.append(format_ms(cpu.get((None, fastest_peer))) if fastest_peer else "-")
                    if show_rss:
                        cells += [format_ms(rss.get((label, "lumiran")))]
                        cells += [format_ms(rss.get((None, p))) for p in PEERS]
                    print("| " + " | ".join(cells) + " |", flush=True)
                print()


if __name__ == "__main__":
    main()
