#!/usr/bin/python3
"""Soak of the whole batch: one hand-off of many drawings (the example workshop's two exported
sheets copied as MP2305-1 ... MP2305-N), run by tavrik to its end, for each N given.

For each N it checks that the batch completed (exit status 0, the merged drawing in place, the
hand-off consumed) and reports the time, the peak resident memory of the drawings' pipeline
(sampled from /proc until Cg.log says the merge begins), the peak of the whole run (the merge
holds every sheet in one drawing, so it must grow with N), the merged drawing's size and the
recycle folder's size on disk. Memory figures are also given as ratios to the smallest N.

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
MERGE_BEGINS = "准备合并".encode("gbk")


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


def run(build, prefix):
    start = time.monotonic()
    process = subprocess.Popen([str(build / "bin/tavrik"), "--prefix", str(prefix)], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    pipeline_peak = whole_peak = 0
    merging = False
    while process.poll() is None:
        rss = resident_kb(process.pid)
        if not merging:
            trace = prefix / TRACE
            merging = trace.exists() and MERGE_BEGINS in trace.read_bytes()[-4096:]
        if not merging:
            pipeline_peak = max(pipeline_peak, rss)
        whole_peak = max(whole_peak, rss)
        time.sleep(0.05)
    error = process.stderr.read().decode(errors="replace")
    return process.returncode, time.monotonic() - start, pipeline_peak, whole_peak, error


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    counts = [int(n) for n in sys.argv[2:]] or [25, 50, 100, 200]
    work = pathlib.Path(tempfile.mkdtemp(prefix="tavrik-soak-"))
    rows = []
    try:
        for count in counts:
            prefix = make_prefix(build, work, count)
            status, seconds, pipeline_peak, whole_peak, error = run(build, prefix)
            left = sorted(p.name for p in (prefix / HAND_OFF).iterdir())
            merged = prefix / MERGED
            if status != 0 or not merged.exists() or left:
                print("N=%d: the batch did not complete: status %d, merged %s, left in the hand-off %s\n%s"
                      % (count, status, merged.exists(), left, error))
                return 1
            rows.append((count, seconds, pipeline_peak, whole_peak, merged.stat().st_size // 1024,
                         disk_kb(prefix / "recycle")))
            shutil.rmtree(prefix)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    base = rows[0]
    print("%6s %9s %14s %9s %14s %9s %11s %12s" % ("N", "time s", "pipeline KB", "ratio", "whole run KB", "ratio",
                                                  "merged KB", "recycle KB"))
    for count, seconds, pipeline_peak, whole_peak, merged_kb, recycle_kb in rows:
        print("%6d %9.1f %14d %9.2f %14d %9.2f %11d %12d" % (count, seconds, pipeline_peak, pipeline_peak / base[2],
                                                             whole_peak, whole_peak / base[3], merged_kb, recycle_kb))
    if len(rows) > 1:
        last = rows[-1]
        drawings = last[0] - base[0]
        print("per added drawing: pipeline peak %+.1f KB, whole-run peak %+.1f KB, merged drawing %+.1f KB"
              % ((last[2] - base[2]) / drawings, (last[3] - base[3]) / drawings, (last[4] - base[4]) / drawings))
    return 0


if __name__ == "__main__":
    sys.exit(main())
