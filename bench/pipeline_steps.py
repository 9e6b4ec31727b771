#!/usr/bin/python3
"""Splits the processor time of a batch, recorded by `perf record -g --call-graph dwarf`, over the
steps of ProcessDrawing: each sample goes to the function that ProcessDrawing called (for the
clean-up runs, the sheet loop and the hole step: the function that those called), samples outside
ProcessDrawing go to "batch outside ProcessDrawing". With a second recording of the codec's read
and write of the same file, each step is also given as a multiple of that reference.

usage: /usr/bin/python3 pipeline_steps.py BATCH.perf.data [CODEC.perf.data]
"""
import collections
import subprocess
import sys

# Steps that only group others: their callees are the steps.
GROUPS = ("RunFirstCleanups", "RunLastCleanups", "ProcessSheet", "SubstituteDrawingHoles")


def stacks(data):
    """The call stacks of the samples, leaf first, as function names."""
    text = subprocess.run(["perf", "script", "-i", data, "-F", "comm,ip,sym"], capture_output=True,
                          text=True, check=True).stdout
    for block in text.split("\n\n"):
        frames = []
        for line in block.strip("\n").split("\n")[1:]:
            parts = line.strip().split(None, 1)
            if len(parts) == 2:
                frames.append(parts[1].split("(")[0].strip())
        if frames:
            yield frames


def short(name):
    return name.split("::")[-1] if "::" in name and "<" not in name else name


def step_of(frames):
    for i, name in enumerate(frames):
        if name.endswith("ProcessDrawing"):
            step = short(frames[i - 1]) if i > 0 else "ProcessDrawing itself"
            if step in GROUPS and i > 1:
                step = step + " / " + short(frames[i - 2])
            return step
    return None


def main(batch, codec=None):
    counts = collections.Counter()
    total = 0
    for frames in stacks(batch):
        total += 1
        counts[step_of(frames) or "batch outside ProcessDrawing"] += 1
    reference = 0
    if codec:
        reference = sum(1 for frames in stacks(codec)
                        if any(f.endswith(("ReadDxfFile", "WriteDxfFile")) for f in frames))
    inside = total - counts["batch outside ProcessDrawing"]
    print(f"{'step of ProcessDrawing':58} {'share':>7} {'x read+write':>13}")
    for step, n in counts.most_common():
        ratio = f"{n / reference:13.2f}" if reference else ""
        print(f"{step[:58]:58} {100.0 * n / total:6.1f}% {ratio}")
    if reference:
        print(f"{'ProcessDrawing in all':58} {100.0 * inside / total:6.1f}% {inside / reference:13.2f}")
    print(f"samples: batch {total}, ProcessDrawing {inside}, codec read+write {reference}")


if __name__ == "__main__":
    main(*sys.argv[1:3])
