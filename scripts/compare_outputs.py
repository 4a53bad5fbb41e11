#!/usr/bin/env python3
"""Run two lumiran-cli builds over a grid of controls and pictures and report
every case whose outputs differ byte for byte.

A speed change must keep every picture; the golden hashes see each effect at
its defaults on one picture only, so this walks the controls the effect
table lists (sliders at min, default, max and between, every E/C/G row,
--k, --rgb), the run options (--calc, --raster, --rect) and pictures of
awkward sizes and colours, plus a few seeded random combinations.

  scripts/compare_outputs.py --old OLD/lumiran-cli --new build/lumiran-cli \
      --effects 'Color Sway|Cycle 3' [--cases 0] [--jobs 4]

Exit status: 0 when every case matched, 1 when any differed.
"""

from __future__ import annotations

import argparse
import concurrent.futures
import hashlib
import json
import os
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass, field

RUN_OPTION_MAX = 10  # --calc and --raster take 0..10
RANDOM_COMBINATIONS = 4


@dataclass(frozen=True)
class Picture:
    name: str
    path: str
    width: int
    height: int


@dataclass
class Case:
    args: list[str]
    picture: Picture
    tier: int
    label: str = ""


@dataclass
class Outcome:
    effect: str
    case: Case
    status: str  # same | differ | both-refused
    detail: str = ""


@dataclass
class EffectReport:
    caption: str
    outcomes: list[Outcome] = field(default_factory=list)


def convert(*args: str) -> None:
    subprocess.run(["convert", *args], check=True, stdout=subprocess.DEVNULL)


def make_pictures(folder: str, photo: tuple[int, int], kept: tuple[int, int]) -> tuple[list[Picture], str]:
    """Seeded pictures: plasma like a photograph, noise, pure colours with 0/255
    runs, and odd small sizes. Returns the pictures and a kept picture whose
    size differs from all of them."""
    pictures = []

    def add(name: str, w: int, h: int, *source: str) -> None:
        path = os.path.join(folder, name + ".bmp")
        convert(*source, "-type", "TrueColor", "BMP3:" + path)
        pictures.append(Picture(name, path, w, h))

    pw, ph = photo
    add("plasma%dx%d" % photo, pw, ph, "-seed", "7", "-size", "%dx%d" % photo, "plasma:fractal")
    add("noise64x48", 64, 48, "-seed", "3", "-size", "64x48", "xc:gray", "+noise", "Random")
    # Pure colours side by side over a black-to-white ramp: runs of 0 and 255.
    stripes = ["xc:%s" % c for c in ("red", "lime", "blue", "black", "white", "yellow", "cyan", "magenta")]
    add("saturated48x40", 48, 40, "-size", "6x20", *stripes, "+append",
        "(", "-size", "48x20", "gradient:black-white", "-rotate", "0", ")", "-append")
    add("plasma37x23", 37, 23, "-seed", "11", "-size", "37x23", "plasma:fractal")
    add("pixels3x2", 3, 2, "-size", "1x2", "xc:red", "xc:white", "xc:black", "+append",
        "-fill", "rgb(10,200,90)", "-draw", "point 1,1")
    add("pixel1x1", 1, 1, "-size", "1x1", "xc:rgb(200,100,30)")
    kept_path = os.path.join(folder, "kept.bmp")
    convert("-seed", "5", "-size", "%dx%d" % kept, "plasma:fractal", "-type", "TrueColor", "BMP3:" + kept_path)
    return pictures, kept_path


def slider_values(s: dict) -> list[tuple[str, int]]:
    lo, hi, default = s["min"], s["max"], s["default"]
    values = [("min", lo), ("max", hi)]
    between = (default + hi) // 2 if hi - default >= default - lo else (lo + default) // 2
    if between not in (lo, hi, default):
        values.append(("between", between))
    return [(name, v) for name, v in values if v != default]


def rects(p: Picture) -> list[tuple[str, str]]:
    w, h = p.width, p.height
    out = []
    inner = (w // 4, h // 4, (3 * w) // 4, (3 * h) // 4)
    if inner[2] > inner[0] and inner[3] > inner[1] and (inner[2] - inner[0], inner[3] - inner[1]) != (w, h):
        out.append(("inner", "%d,%d,%d,%d" % inner))
    if h >= 2:
        out.append(("edges", "0,%d,%d,%d" % (h // 3, w, h)))  # touches left, right and bottom
    if w >= 2:
        out.append(("corner", "%d,0,%d,%d" % (w // 2, w, max(1, h // 2))))  # touches top and right
    return out


def effect_seed(key: str) -> int:
    return int.from_bytes(hashlib.sha256(key.encode()).digest()[:8], "little")


def build_cases(effect: dict, pictures: list[Picture], limit: int) -> list[Case]:
    """Tier 0: defaults on every picture. Tier 1: one control or run option
    away from the defaults on the first (photo-like) picture. Tier 2: seeded
    random combinations. Tier 3: tier 1 again on the other pictures. With a
    limit, tier 0 stays and a seeded sample of the rest fills it up."""
    rng = random.Random(effect_seed(effect["key"]))
    sliders, lists = effect["sliders"], effect["lists"]
    variations: list[tuple[str, list[str]]] = []
    for s in sliders:
        for name, v in slider_values(s):
            variations.append(("s%d=%s" % (s["number"], name), ["--s%d" % s["number"], str(v)]))
    for lst in lists:
        letter = lst["letter"].lower()
        for row in range(1, len(lst["rows"])):
            variations.append(("%s=%d" % (letter, row), ["--" + letter, str(row)]))
    variations.append(("k=1", ["--k", "1"]))
    for rgb in ("0,0,0", "255,128,0"):
        variations.append(("rgb=" + rgb, ["--rgb", rgb]))
    for flag in ("calc", "raster"):
        for v in range(1, RUN_OPTION_MAX + 1):
            variations.append(("%s=%d" % (flag, v), ["--" + flag, str(v)]))

    def combination() -> list[str]:
        args = []
        for s in sliders:
            args += ["--s%d" % s["number"], str(rng.randint(s["min"], s["max"]))]
        for lst in lists:
            args += ["--" + lst["letter"].lower(), str(rng.randrange(len(lst["rows"])))]
        args += ["--k", str(rng.randint(0, 1))]
        args += ["--calc", str(rng.choice([0, 0, rng.randint(1, RUN_OPTION_MAX)]))]
        args += ["--raster", str(rng.choice([0, 0, rng.randint(1, RUN_OPTION_MAX)]))]
        return args

    cases = [Case([], p, 0, "defaults") for p in pictures]
    first, others = pictures[0], pictures[1:]
    for label, args in variations:
        cases.append(Case(args, first, 1, label))
    for label, r in rects(first):
        cases.append(Case(["--rect", r], first, 1, "rect " + label))
    for i in range(RANDOM_COMBINATIONS * len(pictures)):
        p = pictures[i % len(pictures)]
        args = combination()
        if i % 3 == 2 and rects(p):
            args += ["--rect", rng.choice(rects(p))[1]]
        cases.append(Case(args, p, 2, "random %d" % i))
    for p in others:
        for label, args in variations:
            cases.append(Case(args, p, 3, label))
        for label, r in rects(p):
            cases.append(Case(["--rect", r], p, 3, "rect " + label))
    if limit and len(cases) > limit:
        fixed = [c for c in cases if c.tier == 0]
        rest = [c for c in cases if c.tier != 0]
        # Prefer the photo-like picture's single changes, then the rest.
        weights = {1: 4.0, 2: 3.0, 3: 1.0}
        keyed = sorted(rest, key=lambda c: rng.random() ** (1.0 / weights[c.tier]), reverse=True)
        chosen = set(map(id, keyed[: max(0, limit - len(fixed))]))
        cases = fixed + [c for c in rest if id(c) in chosen]
    return cases


def read_bmp(path: str) -> tuple[int, int, list[bytes]] | None:
    """Rows top to bottom of a 24- or 32-bit BMP, each pixel as its bytes."""
    try:
        with open(path, "rb") as f:
            data = f.read()
        if data[:2] != b"BM":
            return None
        offset = struct.unpack_from("<I", data, 10)[0]
        width, height = struct.unpack_from("<ii", data, 18)
        bits = struct.unpack_from("<H", data, 28)[0]
        if bits not in (24, 32):
            return None
        step = bits // 8
        stride = (width * step + 3) & ~3
        rows = [data[offset + y * stride: offset + y * stride + width * step] for y in range(abs(height))]
        if height > 0:
            rows.reverse()
        return width, abs(height), rows
    except (OSError, struct.error):
        return None


def describe_difference(a: str, b: str) -> str:
    old, new = read_bmp(a), read_bmp(b)
    if old is None or new is None:
        return "outputs differ (not both 24/32-bit BMP)"
    if old[:2] != new[:2]:
        return "sizes differ: %dx%d vs %dx%d" % (old[0], old[1], new[0], new[1])
    width, height, step = old[0], old[1], len(old[2][0]) // max(1, old[0]) if old[2] else 3
    count, first, worst = 0, None, 0
    for y in range(height):
        ro, rn = old[2][y], new[2][y]
        if ro == rn:
            continue
        for x in range(width):
            po, pn = ro[x * step:(x + 1) * step], rn[x * step:(x + 1) * step]
            if po != pn:
                count += 1
                worst = max(worst, max(abs(i - j) for i, j in zip(po, pn)))
                if first is None:
                    first = (x, y, tuple(reversed(po[:3])), tuple(reversed(pn[:3])))
    if count == 0:
        return "pixels equal, headers or padding differ"
    x, y, po, pn = first
    return "%d of %d pixels differ (largest channel step %d); first at x=%d y=%d: old RGB%s new RGB%s" % (
        count, width * height, worst, x, y, po, pn)


def run(binary: str, key: str, case: Case, kept: str | None, out: str, timeout: float) -> tuple[int, str]:
    cmd = [binary, "apply", "--effect", key, *case.args]
    if kept:
        cmd += ["--kept", kept]
    cmd += [case.picture.path, "-o", out]
    try:
        r = subprocess.run(cmd, capture_output=True, text=True, timeout=timeout)
        return r.returncode, r.stderr.strip()
    except subprocess.TimeoutExpired:
        return -1, "timed out after %gs" % timeout


def compare_case(opts, effect: dict, case: Case, kept: str | None, scratch: str, n: int) -> Outcome:
    key = effect["key"]
    a = os.path.join(scratch, "old%d.bmp" % n)
    b = os.path.join(scratch, "new%d.bmp" % n)
    ra = run(opts.old, key, case, kept, a, opts.timeout)
    rb = run(opts.new, key, case, kept, b, opts.timeout)
    try:
        if ra[0] != 0 or rb[0] != 0:
            if ra == rb:
                return Outcome(effect["caption"], case, "both-refused", ra[1])
            return Outcome(effect["caption"], case, "differ",
                           "exit/messages differ: old %d %r, new %d %r" % (ra[0], ra[1], rb[0], rb[1]))
        if subprocess.run(["cmp", "-s", a, b]).returncode == 0:
            return Outcome(effect["caption"], case, "same")
        detail = describe_difference(a, b)
        if opts.keep_differing:
            stem = os.path.join(opts.keep_differing, "%s-%d" % (re.sub(r"\W+", "_", effect.get("name") or effect["key"]), n))
            shutil.copy(a, stem + "-old.bmp")
            shutil.copy(b, stem + "-new.bmp")
        return Outcome(effect["caption"], case, "differ", detail)
    finally:
        for f in (a, b):
            if os.path.exists(f):
                os.remove(f)


def needs_kept(binary: str, effect: dict, picture: Picture, scratch: str) -> bool:
    out = os.path.join(scratch, "probe.bmp")
    code, message = run(binary, effect["key"], Case([], picture, 0), None, out, 60)
    if os.path.exists(out):
        os.remove(out)
    return code != 0 and "--kept" in message


def main() -> int:
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--old", required=True, help="lumiran-cli before the change")
    ap.add_argument("--new", required=True, help="lumiran-cli after the change")
    ap.add_argument("--effects", default=".", help="regex over captions, keys and names (case-insensitive)")
    ap.add_argument("--family", default=".", help="regex over family names")
    ap.add_argument("--cases", type=int, default=40,
                    help="cases per effect (defaults on every picture always run; 0 = the whole grid)")
    ap.add_argument("--photo-size", default="320x240", help="size of the photo-like picture, e.g. 1920x1080")
    ap.add_argument("--jobs", type=int, default=2, help="cases run at once")
    ap.add_argument("--timeout", type=float, default=120, help="seconds one run may take")
    ap.add_argument("--keep-differing", metavar="DIR", help="copy differing outputs here")
    ap.add_argument("--list", action="store_true", help="print the cases without running them")
    opts = ap.parse_args()

    listing = subprocess.run([opts.new, "list", "--json"], capture_output=True, text=True, check=True)
    effects = [e for e in json.loads(listing.stdout)
               if re.search(opts.family, e["family"], re.I)
               and any(re.search(opts.effects, e.get(k, ""), re.I) for k in ("caption", "key", "name"))]
    if not effects:
        print("no effect matches %r" % opts.effects, file=sys.stderr)
        return 2
    if opts.keep_differing:
        os.makedirs(opts.keep_differing, exist_ok=True)
    photo = tuple(int(v) for v in opts.photo_size.lower().split("x"))

    started = time.monotonic()
    totals = {"same": 0, "differ": 0, "both-refused": 0}
    with tempfile.TemporaryDirectory(prefix="lumiran-compare-") as scratch:
        pictures, kept_picture = make_pictures(scratch, photo, (photo[0] // 2 + 13, photo[1] // 3 + 7))
        for effect in effects:
            cases = build_cases(effect, pictures, opts.cases)
            if opts.list:
                for c in cases:
                    print("%s | %s | %s | %s" % (effect["caption"] or effect.get("name", effect["key"]), c.label, c.picture.name,
                                                 " ".join(c.args)))
                continue
            kept = kept_picture if needs_kept(opts.new, effect, pictures[0], scratch) else None
            t0 = time.monotonic()
            with concurrent.futures.ThreadPoolExecutor(max_workers=opts.jobs) as pool:
                outcomes = list(pool.map(lambda nc: compare_case(opts, effect, nc[1], kept, scratch, nc[0]),
                                         enumerate(cases)))
            counts = {k: sum(1 for o in outcomes if o.status == k) for k in totals}
            for k in totals:
                totals[k] += counts[k]
            name = effect["caption"] or effect.get("name", effect["key"])
            print("%-40s %4d cases  %4d same  %3d differ  %3d refused by both  %5.1fs" % (
                name, len(cases), counts["same"], counts["differ"], counts["both-refused"],
                time.monotonic() - t0), flush=True)
            refusals: dict[str, int] = {}
            for o in outcomes:
                if o.status == "both-refused":
                    refusals[o.detail] = refusals.get(o.detail, 0) + 1
            for message, n in sorted(refusals.items()):
                print("  refused by both (%d): %s" % (n, message))
            for o in outcomes:
                if o.status == "differ":
                    print("  DIFFER %s | %s | picture %s%s | args: %s\n         %s" % (
                        name, o.case.label, o.case.picture.name, " (with kept)" if kept else "",
                        " ".join(o.case.args) or "(defaults)", o.detail), flush=True)
    print("total: %d effects, %d same, %d differ, %d refused by both, %.0fs" % (
        len(effects), totals["same"], totals["differ"], totals["both-refused"], time.monotonic() - started))
    return 1 if totals["differ"] else 0


if __name__ == "__main__":
    sys.exit(main())
