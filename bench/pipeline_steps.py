#!/usr/bin/python3
"""Splits the processor time of a batch, recorded by `perf record -g --call-graph dwarf`, over the
steps of ProcessDrawing: each sample goes to the function that ProcessDrawing called (for the
clean-up runs, the sheet loop and the hole step: the function that those called), samples outside
ProcessDrawing go to "batch outside ProcessDrawing". The host's run report looks at each saved
drawing from within the save (summary, preview); that time is the host's and not the pipeline's,
so it has a row of its own and is left out of ProcessDrawing's total. With a second recording of
the codec's read and write of the same file, each step is also given as a multiple of that
reference.

usage: /usr/bin/python3 pipeline_steps.py BATCH.perf.data [CODEC.perf.data]
"""
import collections
import subprocess
import sys

# Steps that only group others: their callees are the steps.
GROUPS = ("RunFirstCleanups", "RunLastCleanups", "ProcessSheet", "SubstituteDrawingHoles")


# The host's run report, called from within a save.
OBSERVER = "OnSaved"
OBSERVED = "host run report looking at the save (not counted)"


def function_name(symbol):
    """"(anonymous namespace)::Preview (inlined)" -> "Preview"; arguments are dropped."""
    symbol = symbol.removesuffix("(inlined)").strip().replace("(anonymous namespace)::", "")
    return symbol.split("(")[0].strip()


def stacks(data):
    """The samples: their processor seconds and call stacks, leaf first, as function names."""
    text = subprocess.run(["perf", "script", "-i", data, "-F", "comm,period,ip,sym"], capture_output=True,
                          text=True, check=True).stdout
    for block in text.split("\n\n"):
        lines = block.strip("\n").split("\n")
        head = lines[0].split()
        seconds = int(head[-1]) * 1e-9 if head and head[-1].isdigit() else 0.0
        frames = []
        for line in lines[1:]:
            parts = line.strip().split(None, 1)
            if len(parts) == 2:
                frames.append(function_name(parts[1]))
        if frames:
            yield seconds, frames


def short(name):
    return name.split("::")[-1] if "::" in name and "<" not in name else name


def step_of(frames):
    for i, name in enumerate(frames):
        if name.endswith(OBSERVER):
            return OBSERVED
        if name.endswith("ProcessDrawing"):
            step = short(frames[i - 1]) if i > 0 else "ProcessDrawing itself"
            if step in GROUPS and i > 1:
                step = step + " / " + short(frames[i - 2])
            return step
    return None


def main(batch, codec=None):
    times = collections.Counter()
    for seconds, frames in stacks(batch):
        times[step_of(frames) or "batch outside ProcessDrawing"] += seconds
    total = sum(times.values())
    reference = 0.0
    if codec:
        reference = sum(seconds for seconds, frames in stacks(codec)
                        if any(f.endswith(("ReadDxfFile", "WriteDxfFile")) for f in frames))
    inside = total - times["batch outside ProcessDrawing"] - times[OBSERVED]
    print(f"{'step of ProcessDrawing':58} {'seconds':>8} {'share':>7} {'x read+write':>13}")
    for step, t in times.most_common():
        ratio = f"{t / reference:13.2f}" if reference else ""
        print(f"{step[:58]:58} {t:8.2f} {100.0 * t / total:6.1f}% {ratio}")
    ratio = f"{inside / reference:13.2f}" if reference else ""
    print(f"{'ProcessDrawing in all':58} {inside:8.2f} {100.0 * inside / total:6.1f}% {ratio}")
    print(f"processor seconds: batch {total:.2f}, ProcessDrawing {inside:.2f}, codec read+write {reference:.2f}")


if __name__ == "__main__":
    main(*sys.argv[1:3])
