#!/usr/bin/env bash
# hardening_cost.sh PLAIN HARDENED [ROUNDS [PATTERN]]: what the flags of cmake/Hardening.cmake cost. Runs the benchmarks and the tool
# of two build folders in turns and compares the least processor times, so that a busy machine disturbs little:
#   cmake --preset bench && cmake --build --preset bench --target benchmarks rasterkit_tool
#   cmake --preset bench -B build/plain -DRASTERKIT_HARDENING=OFF && cmake --build build/plain --target benchmarks rasterkit_tool
#   bench/support/hardening_cost.sh build/plain build/bench
# PATTERN selects programs. Benchmarks of peers are not run. Prints a table in Markdown.
set -euo pipefail
exec /usr/bin/env python3 - "$(dirname "${BASH_SOURCE[0]}")/../.." "$@" <<'PYTHON'
import glob, json, math, os, re, subprocess, sys, tempfile

source, builds, rounds = sys.argv[1], sys.argv[2:4], int(sys.argv[4]) if len(sys.argv) > 4 else 15
programs_wanted = re.compile(sys.argv[5] if len(sys.argv) > 5 else '.')
peers = re.compile("qt|opencv|leptonica|libexif|gdal|libtiff|codec|memcpy|pixman|cairo", re.I)

def benchmarks(program):
    listed = subprocess.run([program, "--benchmark_list_tests"], capture_output=True, text=True).stdout
    return [name for name in listed.splitlines() if not peers.search(name)]

def bench_times(program, names):
    pattern = "^(" + "|".join(map(re.escape, names)) + ")$"
    text = subprocess.run([program, "--benchmark_filter=" + pattern, "--benchmark_format=json",
                           "--benchmark_min_time=0.02"], capture_output=True, text=True).stdout
    # The processor time of a benchmark with a clock of its own includes preparation.
    return {b["name"]: b["real_time" if b["name"].endswith("manual_time") else "cpu_time"]
            for b in json.loads(text)["benchmarks"]}

def tool_time(command):
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    if status: sys.exit("failed: " + " ".join(command))
    return usage.ru_utime + usage.ru_stime

def report(name, plain, hardened):
    print(f"| {name} | {100 * (hardened / plain - 1):+.1f} % |", flush=True)

print("| what | cost |\n|---|---|")
for program in sorted(glob.glob(builds[1] + "/benchmarks/*_bench")):
    name = os.path.basename(program)
    if not programs_wanted.search(name): continue
    programs = [build + "/benchmarks/" + name for build in builds]
    if not all(map(os.path.exists, programs)): continue
    names = benchmarks(program)
    if not names: continue
    least = [{}, {}]
    for round in range(rounds):
        for side in (0, 1) if round % 2 == 0 else (1, 0):
            for key, time in bench_times(programs[side], names).items():
                least[side][key] = min(time, least[side].get(key, math.inf))
    ratios = sorted(least[1][key] / least[0][key] for key in least[0])
    mean = math.exp(sum(map(math.log, ratios)) / len(ratios))
    report(f"{name.replace('_bench', '')}: mean of {len(ratios)}", 1, mean)
    if os.environ.get("RASTERKIT_EACH"):
        for key in least[0]: report("- " + key, least[0][key], least[1][key])

with tempfile.TemporaryDirectory() as out:
    samples, photo, plan = source + "/samples/", out + "/photo.jpg", out + "/plan.tif"
    tool = [build + "/tool/rasterkit" for build in builds]
    tool_time([tool[0], "resize", samples + "orientation-1.jpg", photo, "--size", "2400x"])
    tool_time([tool[0], "resize", samples + "plan.png", plan, "--size", "6000x"])
    for what, arguments in {
        "`info`": ["info", samples + "orientation-1.jpg"],
        "`convert` JPEG to PNG": ["convert", photo, out + "/a.png"],
        "`convert` TIFF to BMP": ["convert", plan, out + "/a.bmp"],
        "`rotate --angle 30`": ["rotate", photo, out + "/b.bmp", "--angle", "30"],
        "`convert` EMF to PNG": ["convert", source + "/fuzz/seeds/emf/text.emf", out + "/c.png"],
    }.items():
        least = [math.inf, math.inf]
        for round in range(2 * rounds):
            for side in (0, 1) if round % 2 == 0 else (1, 0):
                least[side] = min(least[side], tool_time([tool[side], *arguments] +
                                                         ([] if arguments[0] == "info" else ["--overwrite"])))
        report(f"{what}, {1000 * least[0]:.0f} ms", *least)
PYTHON
