"""Reads llvm-cov's summary from standard input; says how many lines of each folder were reached."""
import json
import os
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FOLDERS = ("common", "kernels", "image", "enhance", "printer", "filter", "tools/tspl")

files = json.load(sys.stdin)["data"][0]["files"]
print(f"{'folder':12} {'lines':>6} {'reached':>8} {'':>6}")
for folder in FOLDERS:
    count = covered = 0
    for file in files:
        # Headers are named by the links that they are included through.
        name = os.path.relpath(os.path.realpath(file["filename"]), ROOT)
        if name.startswith(folder + "/"):
            count += file["summary"]["lines"]["count"]
            covered += file["summary"]["lines"]["covered"]
    print(f"{folder:12} {count:6} {covered:8} {100 * covered / max(count, 1):5.1f}%")
