#!/usr/bin/env python3
"""Whole processes on large pictures: the tool beside its peers.

    bench/processes/large_pictures.py [--build build/bench] [--folder DIR] [--photo FILE] [--rounds 7]
        [--threads N] [--only TEXT]

Makes its files in DIR once (about 6 GB), then runs each work with each program in turn, round after
round. Prints for each: processor time (least and median, and how much of it is the kernel's), wall
time, and the largest resident set. Programs that are not installed are skipped. Nothing waits for
the disk.
"""

import argparse
import math
import os
import random
import shutil
import statistics
import struct
import subprocess
import sys
import time

SIDES = (18724, 13243)
TARGETS = ("out.tif", "out2.tif", "out.png")


def run(command):
    """Runs a program; returns (user, kernel, wall, MiB, exit code)."""
    start = time.monotonic()
    with open(os.devnull, "w") as nothing:
        child = subprocess.Popen(command, stdout=nothing, stderr=nothing)
        _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
    wall = time.monotonic() - start
    return usage.ru_utime, usage.ru_stime, wall, usage.ru_maxrss / 1024, child.returncode


def must(command):
    result = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}: {result.stderr.decode()}")


def write_plan(name):
    """A plan of lines, hatches and small marks as a 1-bit BMP file; the same in every run."""
    width, height = SIDES
    stride = (width + 31) // 32 * 4
    rng = random.Random(7)
    marks = [(rng.randrange(stride - 8), rng.randrange(height - 40), rng.randrange(1, 256))
             for _ in range(20000)]
    by_row = {}
    for x, y, pattern in marks:
        for step in range(0, 24):
            by_row.setdefault(y + step, []).append((x, (pattern << (step % 5)) & 0xFF))
    with open(name, "wb") as out:
        size = 62 + stride * height
        out.write(struct.pack("<2sIHHI", b"BM", size, 0, 0, 62))
        out.write(struct.pack("<IiiHHIIiiII", 40, width, height, 1, 1, 0, stride * height, 15748, 15748,
                              2, 2))
        out.write(struct.pack("<II", 0, 0xFFFFFF))
        for y in range(height):
            row = bytearray(b"\xff" * stride)
            if y % 400 < 3:
                row = bytearray(stride)
            for x in range(0, stride, 50):
                row[x] &= 0xE3
            if y % 4000 < 600:
                shift = y % 16
                hatch = 0xFFFF ^ (0x8000 >> shift)
                row[200:700] = struct.pack(">H", hatch) * 250
            for x, pattern in by_row.get(y, ()):
                row[x] &= 0xFF ^ pattern
            out.write(row)


def write_photo(name, sides):
    """Slow changes of color with fine noise as a 24-bit BMP file, without a resolution."""
    width, height = sides
    stride = (3 * width + 3) // 4 * 4
    rng = random.Random(11)
    wave = [int(88 + 80 * math.sin(i * 6.3 / 4096)) for i in range(4096)]
    mask = int.from_bytes(b"\x0f" * stride, "little")
    base = None
    with open(name, "wb") as out:
        out.write(struct.pack("<2sIHHI", b"BM", 54 + stride * height, 0, 0, 54))
        out.write(struct.pack("<IiiHHIIiiII", 40, width, height, 1, 24, 0, stride * height, 0, 0, 0, 0))
        for y in range(height):
            if y % 16 == 0:
                row = bytearray(stride)
                for channel in range(3):
                    start = (y * (channel + 1) // 2) % 4096
                    values = [wave[(start + x // 4) % 4096] for x in range(0, width, 16)]
                    row[channel:3 * width:3] = bytes(v for v in values for _ in range(16))[:width]
                base = int.from_bytes(row, "little")
            noise = int.from_bytes(rng.randbytes(stride), "little") & mask
            out.write((base + noise).to_bytes(stride, "little"))


class Files:
    def __init__(self, tool, folder, photo):
        os.makedirs(folder, exist_ok=True)
        self.folder, self.tool = folder, tool
        self.plain = self.make("plain.tif", self.make_plain)
        self.lzw = self.make("lzw.tif", lambda name: must(
            [tool, "convert", self.plain, name, "--compression", "lzw"]))
        self.tiles = self.make("tiles.tif", lambda name: must(
            ["gdal_translate", "-q", "-co", "TILED=YES", "-co", "COMPRESS=DEFLATE", self.plain, name]))
        self.plan = self.make("plan.tif", self.make_plan)
        self.photo = self.make("photo.jpg", lambda name: self.make_photo(name, photo))
        self.png = self.make("photo.png", lambda name: must([tool, "convert", self.photo, name]))
        self.photos = [self.make(f"photos/{i:03}.jpg", lambda name: shutil.copy(self.photo, name))
                       for i in range(200)]

    def make(self, name, write):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if not os.path.exists(path):
            write(path)
        return path

    def make_plain(self, name):
        bitmap = os.path.join(self.folder, "scratch.bmp")
        write_photo(bitmap, SIDES)
        must([self.tool, "convert", bitmap, name, "--compression", "none"])
        os.remove(bitmap)

    def make_photo(self, name, photo):
        if photo:
            return must([self.tool, "resize", photo, name, "--size", "4000x3000"])
        bitmap = os.path.join(self.folder, "photo.bmp")
        write_photo(bitmap, (4000, 3000))
        must([self.tool, "convert", bitmap, name, "--quality", "90"])
        return None

    def make_plan(self, name):
        bitmap = os.path.join(self.folder, "plan.bmp")
        write_plan(bitmap)
        must([self.tool, "convert", bitmap, name, "--compression", "g4"])


def works(tool, files, threads):
    """Pairs of a name and the commands of programs; `OUT` is the target."""
    out = os.path.join(files.folder, "out")
    own = ["--threads", str(threads), "--no-sync", "--overwrite"]

    def rasterkit(verb, source, target, *options):
        return [tool, verb, source, target, *options, *own]

    def list_for(name, source):
        tif, big = out + ".tif", out + "2.tif"
        return [
            (f"{name}: crop 4000 x 3000", {
                "rasterkit": rasterkit("crop", source, tif, "--rect", "7000,5000,4000,3000"),
                "gdal": ["gdal_translate", "-q", "-srcwin", "7000", "5000", "4000", "3000", source, tif],
                "vips": ["vips", "crop", source, tif, "7000", "5000", "4000", "3000"]}),
            (f"{name}: convert", {
                "rasterkit": rasterkit("convert", source, tif, "--compression", "none", "--bits", "24"),
                "gdal": ["gdal_translate", "-q", source, tif],
                "vips": ["vips", "copy", source, tif], "cp": ["cp", source, tif]}),
            (f"{name}: gray", {
                "rasterkit": rasterkit("gray", source, tif),
                "vips": ["vips", "bandmean", source, tif]}),
            (f"{name}: quarter turn", {
                "rasterkit": rasterkit("rotate", source, big, "--angle", "90"),
                "vips": ["vips", "rot", source, big, "d270"]}),
            (f"{name}: 2 degrees", {
                "rasterkit": rasterkit("rotate", source, big, "--angle", "2"),
                "vips": ["vips", "similarity", source, big, "--angle", "-2", "--interpolate", "nearest"]}),
            (f"{name}: 30 degrees", {
                "rasterkit": rasterkit("rotate", source, big, "--angle", "30")}),
            (f"{name}: resize to 4000 wide", {
                "rasterkit": rasterkit("resize", source, tif, "--size", "4000x"),
                "gdal": ["gdal_translate", "-q", "-r", "average", "-outsize", "4000", "0", source, tif],
                "vips": ["vips", "thumbnail", source, tif, "4000"]}),
        ]

    result = []
    for name, source in (("plain", files.plain), ("LZW strips", files.lzw),
                         ("Deflate tiles", files.tiles)):
        result += list_for(name, source)
    result += [
        ("A0 plan: 2 degrees, G4 to G4", {
            "rasterkit": rasterkit("rotate", files.plan, out + ".tif", "--angle", "2"),
            "vips": ["vips", "similarity", files.plan, out + ".tif[compression=ccittfax4]", "--angle", "-2"]}),
        ("A0 plan: 30 degrees, G4 to G4", {
            "rasterkit": rasterkit("rotate", files.plan, out + ".tif", "--angle", "30")}),
        ("A0 plan: gray preview 4681 wide", {
            "rasterkit": rasterkit("resize", files.plan, out + ".png", "--size", "4681x"),
            "vips": ["vips", "thumbnail", files.plan, out + ".png", "4681"]}),
        ("200 thumbnails of 12 megapixels", {
            "rasterkit": [tool, "thumbnail", *files.photos, "--size", "256", "--out-dir", out + "-thumbnails",
                          "--threads", "1", "--jobs", "1", "--overwrite", "--no-sync"],
            "vips": ["vipsthumbnail", *files.photos, "-s", "256", "-o", out + "-thumbnails/%s.jpg"]}),
        ("photograph to PNG", {
            "rasterkit": rasterkit("convert", files.photo, out + ".png"),
            "gdal": ["gdal_translate", "-q", "-of", "PNG", files.photo, out + ".png"],
            "vips": ["vips", "copy", files.photo, out + ".png"]}),
        ("PNG to plain TIFF", {
            "rasterkit": rasterkit("convert", files.png, out + ".tif", "--compression", "none"),
            "vips": ["vips", "copy", files.png, out + ".tif"]}),
    ]
    return result


def measure(commands, rounds, targets):
    """`targets` are removed first: the time to free an old file belongs to no program."""
    taken = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            for old in targets:
                if os.path.isfile(old):
                    os.remove(old)
            taken[name].append(run(command))
    return taken


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build/bench")
    parser.add_argument("--folder", default=os.path.join(os.environ.get("TMPDIR", "/tmp"), "rasterkit-large"))
    parser.add_argument("--photo", default="")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--threads", type=int, default=1)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    tool = os.path.join(options.build, "tool", "rasterkit")
    os.environ["VIPS_CONCURRENCY"] = str(options.threads)
    os.environ["GDAL_NUM_THREADS"] = str(options.threads)
    files = Files(tool, options.folder, options.photo)
    os.makedirs(os.path.join(options.folder, "out-thumbnails"), exist_ok=True)
    print("| work | program | processor time, least | median | of it kernel | wall | MiB |")
    print("|---|---|---|---|---|---|---|")
    for work, commands in works(tool, files, options.threads):
        if options.only not in work:
            continue
        present = {name: command for name, command in commands.items() if shutil.which(command[0])}
        for name, runs in measure(present, options.rounds, [os.path.join(options.folder, name) for name in TARGETS]).items():
            codes = {one[4] for one in runs} - {0}
            cpu = [user + kernel for user, kernel, *_ in runs]
            print(f"| {work} | {name} | {min(cpu):.2f} s | {statistics.median(cpu):.2f} s "
                  f"| {statistics.median(one[1] for one in runs):.2f} s "
                  f"| {statistics.median(one[2] for one in runs):.2f} s "
                  f"| {max(one[3] for one in runs):.0f} |" + (f" exit {codes}" if codes else ""), flush=True)


if __name__ == "__main__":
    main()
