#!/usr/bin/python3
"""Splits the processor time of a batch, recorded by `perf record -g --call-graph dwarf`, over the
steps of ProcessDrawing: each sample goes to the function that ProcessDrawing called (for the
clean-up runs, the sheet loop and the hole step: the function that those called), samples outside
ProcessDrawing go to "batch outside ProcessDrawing". The host program's run report looks at each
saved drawing (it summarises and renders it) from inside the save: those samples are its own
line, "host run report", and are not counted as ProcessDrawing's. Seconds are the sampled
processor time (the sum of the samples' periods); the wall span of ProcessDrawing runs from its
first sample to its last. With a second recording of the codec's read and write of the same
file, each step is also given as a multiple of that reference.

usage: /usr/bin/python3 pipeline_steps.py BATCH.perf.data [CODEC.perf.data]
"""
import collections
import subprocess
import sys

# Steps that only group others: their callees are the steps.
GROUPS = ("RunFirstCleanups", "RunLastCleanups", "ProcessSheet", "SubstituteDrawingHoles")
# Functions of the host program's run report, called from the save's observer (some stacks lose
# the observer's own frame, so its callees are named too).
REPORT = ("OnSaved", "NoteDrawingBefore", "Preview", "SummarizeDrawing", "CompareFacts", "RenderDrawing")
OUTSIDE = "batch outside ProcessDrawing"
HOST_REPORT = "host run report (inside the save)"


def samples(data):
    """(time in seconds, period in seconds, call stack leaf first as function names) per sample."""
    text = subprocess.run(["perf", "script", "-i", data, "-F", "comm,time,period,ip,sym"],
                          capture_output=True, text=True, check=True).stdout
    for block in text.split("\n\n"):
        lines = block.strip("\n").split("\n")
        head = lines[0].split()
        if len(head) < 3 or not head[-2].endswith(":"):
            continue
        frames = []
        for line in lines[1:]:
            parts = line.strip().split(None, 1)
            if len(parts) == 2:
                frames.append(parts[1].split("(")[0].strip())
        if frames:
            yield float(head[-2].rstrip(":")), int(head[-1]) * 1e-9, frames


def short(name):
    return name.split("::")[-1] if "::" in name and "<" not in name else name


def step_of(frames):
    if any(short(f) in REPORT for f in frames):
        return HOST_REPORT
    for i, name in enumerate(frames):
        if name.endswith("ProcessDrawing"):
            step = short(frames[i - 1]) if i > 0 else "ProcessDrawing itself"
            if step in GROUPS and i > 1:
                step = step + " / " + short(frames[i - 2])
            return step
    return OUTSIDE


def main(batch, codec=None):
    seconds = collections.Counter()
    first, last = None, None
    for time, period, frames in samples(batch):
        step = step_of(frames)
        seconds[step] += period
        if any(f.endswith("ProcessDrawing") for f in frames):
            first = time if first is None else first
            last = time
    reference = 0.0
    if codec:
        reference = sum(period for _, period, frames in samples(codec)
                        if any(f.endswith(("ReadDxfFile", "WriteDxfFile")) for f in frames))
    total = sum(seconds.values())
    inside = total - seconds[OUTSIDE] - seconds[HOST_REPORT]
    print(f"{'step of ProcessDrawing':52} {'seconds':>8} {'share':>7} {'x read+write':>13}")

    def row(name, value, share_of):
        ratio = f"{value / reference:13.2f}" if reference else ""
        print(f"{name[:52]:52} {value:8.3f} {100.0 * value / share_of:6.1f}% {ratio}")

    for step, value in seconds.most_common():
        if step not in (OUTSIDE, HOST_REPORT):
            row(step, value, inside)
    row("ProcessDrawing in all (processor time)", inside, inside)
    print(f"{'':52} {'seconds':>8} {'of batch':>7}")
    for name in (HOST_REPORT, OUTSIDE):
        row(name, seconds[name], total)
    row("batch in all (processor time)", total, total)
    if first is not None:
        print(f"ProcessDrawing wall span {last - first:.2f} s (first to last sample, run report included)")
    if reference:
        print(f"codec read + write of the same file: {reference:.3f} s processor time")


if __name__ == "__main__":
    main(*sys.argv[1:3])
