#!/usr/bin/python3
"""Soak of the whole batch: one hand-off of many drawings (the example workshop's two exported
sheets copied as MP2305-1 ... MP2305-N), run by tavrik to its end, for each N given.

For each N it checks that the batch completed (exit status 0, the merged drawing in place, the
hand-off consumed) and reports the time, the peak resident memory of the drawings' pipeline
(sampled from /proc until Cg.log says the merge begins), the peak of the whole run (the merge
holds every sheet in one drawing, so it must grow with N), the merged drawing's size and the
recycle folder's size on disk. Memory figures are also given as ratios to the smallest N.

Whether the pipeline keeps memory per drawing: the resident size is also sampled each time a
drawing's database is closed (the line "关闭" of Cg.log), and the slope of those samples over the
second half of the drawings is given in KB per drawing. Two things stay by design. The module's
own deliberate leak is one clean-up object per drawing that the pipeline never frees (a database
pointer and two linetype names: about 150 bytes); the scratch databases it keeps on a failed
read do not occur in this batch. The host's run report keeps each drawing's summary (counts
and texts) until it writes its files at the end; its PNG previews wait on disk. The report's
size per drawing is given beside the slope ("report KB/dr"); the previews are most of it.

usage: /usr/bin/python3 soak_bench.py BUILD_DIR [N ...]      (default N: 25 50 100 200)
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
HAND_OFF = pathlib.Path("drives/c/Users/cad/AppData/Local/Convert")
MERGED = pathlib.Path("drives/d/成品图/MP2305.dxf")
TRACE = pathlib.Path("drives/d/Mytool/cad/Cg.log")
REPORT = pathlib.Path("drives/d/Mytool/cad/report.html")
MERGE_BEGINS = "准备合并".encode("gbk")
DRAWING_CLOSED = "\r\n关闭\r\n".encode("gbk")  # Cg.log is a text file of CR LF lines


def make_prefix(build, work, count):
    prefix = work / ("n%d" % count)
    shutil.copytree(ROOT / "examples/workshop", prefix)
    shutil.copy(build / "bin/dwgver.so", prefix / "drives/d/Mytool/application/dwgver.dll")
    hand_off = prefix / HAND_OFF
    sheets = [hand_off / "MP2305-1.dxf", hand_off / "MP2305-2.dxf"]
    templates = [sheet.read_bytes() for sheet in sheets]
    for sheet in sheets:
        sheet.unlink()
    for i in range(1, count + 1):
        (hand_off / ("MP2305-%d.dxf" % i)).write_bytes(templates[i % 2])
    return prefix


def resident_kb(pid):
    try:
        with open("/proc/%d/status" % pid) as status:
            for line in status:
                if line.startswith("VmRSS:"):
                    return int(line.split()[1])
    except OSError:
        pass
    return 0


def disk_kb(folder):
    """Space on disk of the files below the folder, each file (inode) counted once."""
    seen, total = set(), 0
    for path in folder.rglob("*"):
        info = path.lstat()
        if path.is_file() and (info.st_dev, info.st_ino) not in seen:
            seen.add((info.st_dev, info.st_ino))
            total += info.st_blocks * 512
    return total // 1024


class TraceWatch:
    """Cg.log as it grows during the batch, read a piece at a time."""

    def __init__(self, path):
        self.path, self.text = path, b""

    def grow(self):
        try:
            with open(self.path, "rb") as trace:
                trace.seek(len(self.text))
                self.text += trace.read()
        except OSError:
            pass
        return self.text


def slope_per_drawing(samples):
    """Least-squares slope of the resident size over the second half of the closed drawings."""
    half = samples[len(samples) // 2:]
    if len(half) < 2:
        return 0.0
    n = len(half)
    mean_x, mean_y = (n - 1) / 2, sum(half) / n
    num = sum((x - mean_x) * (y - mean_y) for x, y in enumerate(half))
    den = sum((x - mean_x) ** 2 for x in range(n))
    return num / den


def run(build, prefix):
    start = time.monotonic()
    process = subprocess.Popen([str(build / "bin/tavrik"), "--prefix", str(prefix)], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    pipeline_peak = whole_peak = 0
    merging = False
    closed = []  # the resident size each time a drawing's database was closed
    watch = TraceWatch(prefix / TRACE)
    while process.poll() is None:
        rss = resident_kb(process.pid)
        if not merging:
            text = watch.grow()
            closed.extend([rss] * (text.count(DRAWING_CLOSED) - len(closed)))
            merging = MERGE_BEGINS in text[-65536:]
        if not merging:
            pipeline_peak = max(pipeline_peak, rss)
        whole_peak = max(whole_peak, rss)
        time.sleep(0.05)
    error = process.stderr.read().decode(errors="replace")
    return process.returncode, time.monotonic() - start, pipeline_peak, whole_peak, closed, error


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    counts = [int(n) for n in sys.argv[2:]] or [25, 50, 100, 200]
    work = pathlib.Path(tempfile.mkdtemp(prefix="tavrik-soak-"))
    rows = []
    try:
        for count in counts:
            prefix = make_prefix(build, work, count)
            status, seconds, pipeline_peak, whole_peak, closed, error = run(build, prefix)
            left = sorted(p.name for p in (prefix / HAND_OFF).iterdir())
            merged = prefix / MERGED
            if status != 0 or not merged.exists() or left or len(closed) != count:
                print("N=%d: the batch did not complete: status %d, merged %s, left in the hand-off %s, "
                      "drawings closed %d\n%s" % (count, status, merged.exists(), left, len(closed), error))
                return 1
            report = prefix / REPORT
            report_kb = report.stat().st_size / 1024 if report.exists() else 0.0
            rows.append((count, seconds, pipeline_peak, whole_peak, merged.stat().st_size // 1024,
                         disk_kb(prefix / "recycle"), slope_per_drawing(closed), report_kb / count))
            shutil.rmtree(prefix)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    base = rows[0]
    print("%6s %9s %9s %14s %9s %14s %9s %11s %12s %14s %13s" % (
        "N", "time s", "s/drawing", "pipeline KB", "ratio", "whole run KB", "ratio", "merged KB", "recycle KB",
        "KB/drawing", "report KB/dr"))
    for count, seconds, pipeline_peak, whole_peak, merged_kb, recycle_kb, slope, report_kb in rows:
        print("%6d %9.1f %9.2f %14d %9.2f %14d %9.2f %11d %12d %14.1f %13.1f" % (
            count, seconds, seconds / count, pipeline_peak, pipeline_peak / base[2], whole_peak, whole_peak / base[3],
            merged_kb, recycle_kb, slope, report_kb))
    if len(rows) > 1:
        last = rows[-1]
        drawings = last[0] - base[0]
        print("per added drawing: pipeline peak %+.1f KB, whole-run peak %+.1f KB, merged drawing %+.1f KB"
              % ((last[2] - base[2]) / drawings, (last[3] - base[3]) / drawings, (last[4] - base[4]) / drawings))
    return 0


if __name__ == "__main__":
    sys.exit(main())
