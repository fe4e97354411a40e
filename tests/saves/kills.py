#!/usr/bin/env python3
"""kills.py TOOL [KILLS]: kills the tool at random moments while it creates and replaces files.

Afterwards each output must be the old file, the new one or absent, and readable; a second run with the same outputs must
succeed. Counts torn files and temporary files that stay.
"""
import os
import random
import signal
import subprocess
import sys
import tempfile
import time


def picture(path, seed):
    """A bitmap of noise, so that its size in other formats is large."""
    width, height = 700, 500
    rows = random.Random(seed).randbytes(width * height * 3)
    header = b"BM" + (54 + len(rows)).to_bytes(4, "little") + bytes(4) + (54).to_bytes(4, "little")
    header += (40).to_bytes(4, "little") + width.to_bytes(4, "little") + height.to_bytes(4, "little")
    header += b"\x01\x00\x18\x00" + bytes(24)
    with open(path, "wb") as file:
        file.write(header + rows)


def main():
    tool, kills = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 450
    randomness = random.Random(1)
    torn = left = done = old_kept = replaced = 0
    with tempfile.TemporaryDirectory() as folder:
        inputs = []
        for number in range(4):
            inputs.append(os.path.join(folder, f"in{number}.bmp"))
            picture(inputs[-1], number)
        out = os.path.join(folder, "out")
        os.mkdir(out)
        command = [tool, "convert", "--overwrite", "--jobs", "2", "--format", "png", "--out-dir", out]
        start = time.time()
        subprocess.run(command + inputs, check=True, stderr=subprocess.DEVNULL)
        whole = time.time() - start
        new = {name: open(os.path.join(out, name), "rb").read() for name in os.listdir(out)}
        for kill in range(kills):
            for name in os.listdir(out):
                os.remove(os.path.join(out, name))
            old = {}
            if kill % 2 == 0:
                for name in new:
                    old[name] = f"old {kill}".encode()
                    with open(os.path.join(out, name), "wb") as file:
                        file.write(old[name])
            process = subprocess.Popen(command + inputs, stderr=subprocess.DEVNULL)
            time.sleep(randomness.random() * whole * 1.1)
            process.send_signal(signal.SIGKILL)
            done += process.wait() == 0
            for name in os.listdir(out):
                with open(os.path.join(out, name), "rb") as file:
                    content = file.read()
                if name not in new:
                    left += 1
                elif content == new[name]:
                    replaced += 1
                elif content == old.get(name):
                    old_kept += 1
                else:
                    torn += 1
            if set(old) - set(os.listdir(out)):
                torn += 1
        subprocess.run(command + inputs, check=True, stderr=subprocess.DEVNULL)
    print(f"{kills} kills ({done} came too late): {torn} torn or missing, {left} temporary files left, "
          f"{old_kept} old files, {replaced} new files")
    sys.exit(1 if torn else 0)


main()
