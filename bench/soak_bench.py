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
second half of the drawings is given in KB per drawing; the run report's size per drawing is
given beside it ("report KB/dr", its previews are most of it), as the host keeps each drawing's
part of the report on disk until the end. The resident size moves in pages and
with the allocator's free lists, so the heap is also measured exactly: two batches (HEAP_COUNTS,
default 20 and 100 drawings) run under heaptrack in gdb and are ended as the merge begins (a
breakpoint on MergeDrawings); the heap still held then, by the call stack that allocated it,
gives the growth per drawing, split in what the module keeps by its own design and the rest:

- the configuration re-read for each drawing appends its rows of [SCRSET] and of
  CAD_layerug.ini to arrays that are never emptied (ReloadConfiguration);
- the clean-up object of each drawing, never freed, with the linetype name it reads
  (RunFirstCleanups);
- the list of the part's drawings that the batch holds while it runs (SelectPartFiles,
  ListFilesByExtension);
- the scratch databases kept on a failed read do not occur in this batch.
The configuration's arrays grow by doubling, so their share per drawing depends on the two N.

The ratio of the whole growth to the module's own is printed; 1.00 means that the host and the
platform keep nothing per drawing. The heap stage is left out when heaptrack or gdb is missing.

usage: /usr/bin/python3 soak_bench.py BUILD_DIR [N ...]      (default N: 25 50 100 200)
       HEAP_COUNTS="20 100" sets the two batches of the heap stage ("" leaves it out).
"""
import collections
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
    # The workshop with a DXF hand-off: the merged drawing is DXF, as the checks here read it.
    subprocess.run(["/usr/bin/python3", str(ROOT / "examples/generate_workshop.py"), "--handoff", "dxf",
                    str(prefix)], check=True, stdout=subprocess.DEVNULL)
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


# What the module keeps per drawing by its own design, by a function on the allocating stack.
MODULE_KEEPS = [("configuration rows", {"ReloadConfiguration"}),
                ("clean-up object", {"RunFirstCleanups"}),
                ("part's file list", {"SelectPartFiles", "ListFilesByExtension"})]
GDB_INIT = """set confirm off
set pagination off
set breakpoint pending on
break MergeDrawings
commands
  kill
  quit
end
"""


def heap_held(build, work, count):
    """Bytes of heap held as the merge begins, by kind: the module's own kinds and "rest"."""
    prefix = make_prefix(build, work, count)
    home = work / "gdb-home"
    home.mkdir(exist_ok=True)
    (home / ".gdbinit").write_text(GDB_INIT)
    data = work / ("heap-%d" % count)
    subprocess.run(["heaptrack", "-d", "-o", str(data), str(build / "bin/tavrik"), "--prefix", str(prefix)],
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   env=dict(os.environ, HOME=str(home)), check=False)
    closed = (prefix / TRACE).read_bytes().count(DRAWING_CLOSED)
    if closed != count or (prefix / MERGED).exists():
        raise RuntimeError("the heap stage's batch of %d drawings did not stop as the merge began: %d drawings closed, "
                           "merged drawing %s" % (count, closed, (prefix / MERGED).exists()))
    stacks = work / ("stacks-%d.txt" % count)
    subprocess.run(["heaptrack_print", "-f", str(data) + ".zst", "--flamegraph-cost-type", "leaked", "-F", str(stacks)],
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    held = collections.Counter()
    for line in stacks.read_text(errors="replace").splitlines():
        stack, _, size = line.rpartition(" ")
        # A frame reads "Name(arguments) (file.cpp)", or "Name (file.cpp)" when it was inlined.
        functions = {frame.split(" (")[0].split("(")[0] for frame in stack.split(";")}
        kind = next((name for name, marks in MODULE_KEEPS if marks & functions), "rest")
        held[kind] += int(size)
    shutil.rmtree(prefix)
    return held


def heap_stage(build, work, counts):
    if len(counts) != 2 or not shutil.which("heaptrack") or not shutil.which("gdb"):
        print("heap stage left out (needs heaptrack, gdb and two HEAP_COUNTS)")
        return
    small, large = (heap_held(build, work, n) for n in counts)
    added = counts[1] - counts[0]
    per = {kind: (large[kind] - small[kind]) / added for kind in set(small) | set(large)}
    module = sum(per.get(name, 0.0) for name, _ in MODULE_KEEPS)
    total = module + per.get("rest", 0.0)
    print("heap held as the merge begins, per added drawing (N=%d to %d): %.0f B in all; the module's own %.0f B "
          "(%s); the rest %.0f B; all / module's own = %.2f" % (
              counts[0], counts[1], total, module,
              ", ".join("%s %.0f B" % (name, per.get(name, 0.0)) for name, _ in MODULE_KEEPS),
              per.get("rest", 0.0), total / module if module else float("nan")))


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    counts = [int(n) for n in sys.argv[2:]] or [25, 50, 100, 200]
    heap_counts = [int(n) for n in os.environ.get("HEAP_COUNTS", "20 100").split()]
    work = pathlib.Path(tempfile.mkdtemp(prefix="tavrik-soak-"))
    rows = []
    try:
        if heap_counts:
            heap_stage(build, work, heap_counts)
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
