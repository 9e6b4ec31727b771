"""The run report in runs that do not go as usual, each on a fresh copy of the example workshop:

- a hand-off whose ugm.log has one line (no part named): the run ends normally, writes no report
  and leaves no scratch folder;
- the logs folder is missing (the module then writes no Cg.log): the report is written all the
  same, the folder made for it, with every drawing and no log lines;
- a run killed while it notes the drawings leaves its scratch folder in TMPDIR; the next run
  completes the batch, writes the report and removes that folder, and the report files half
  written by killed runs ("report.json.PID.part") go too, while those of a running process and
  other names stay.

Usage: check_report_runs.py TAVRIK DWGVER WORKSHOP
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from check_report import ended_process_id, scratch_folders

LOGS = pathlib.Path("drives/d/Mytool/cad")
HAND_OFF = pathlib.Path("drives/c/Users/cad/AppData/Local/Convert")
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def make_prefix(scratch, name, workshop, dwgver, copies=1):
    """A copy of the workshop; with copies > 1 its two exports are copied as MP2305-1 ... -2n."""
    prefix = scratch / name
    shutil.copytree(workshop, prefix, symlinks=True)
    shutil.copy(dwgver, prefix / "drives/d/Mytool/application/dwgver.dll")
    hand_off = prefix / HAND_OFF
    sheets = [(hand_off / ("MP2305-%d.dxf" % i)).read_bytes() for i in (1, 2)]
    for i in range(1, 2 * copies + 1):
        (hand_off / ("MP2305-%d.dxf" % i)).write_bytes(sheets[i % 2])
    return prefix


def tavrik_run(tavrik, prefix, tmp):
    return subprocess.Popen([tavrik, "--prefix", str(prefix)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, env=dict(os.environ, TMPDIR=str(tmp)))


def finished(process):
    _, error = process.communicate(timeout=300)
    return process.returncode, error.decode(errors="replace")


def one_line_hand_off(tavrik, dwgver, workshop, scratch):
    prefix = make_prefix(scratch, "one-line", workshop, dwgver)
    ugm = prefix / HAND_OFF / "ugm.log"
    ugm.write_bytes(ugm.read_bytes().split(b"\r\n")[0] + b"\r\n")
    tmp = scratch / "tmp-one-line"
    tmp.mkdir()
    status, error = finished(tavrik_run(tavrik, prefix, tmp))
    check(status == 0, "one-line ugm.log: status %d: %s" % (status, error))
    check(not (prefix / LOGS / "report.json").exists(), "one-line ugm.log: a report was written")
    check(scratch_folders(tmp) == [], "one-line ugm.log: scratch folders left: %s" % scratch_folders(tmp))


def logs_folder_missing(tavrik, dwgver, workshop, scratch):
    prefix = make_prefix(scratch, "no-logs", workshop, dwgver)
    shutil.rmtree(prefix / LOGS)
    tmp = scratch / "tmp-no-logs"
    tmp.mkdir()
    status, error = finished(tavrik_run(tavrik, prefix, tmp))
    check(status == 0, "no logs folder: status %d: %s" % (status, error))
    report = prefix / LOGS / "report.json"
    check(report.exists(), "no logs folder: no report")
    if report.exists():
        drawings = json.loads(report.read_text(encoding="utf-8"))["drawings"]
        check([d["name"] for d in drawings] == ["MP2305-1.dxf", "MP2305-2.dxf"], "no logs folder: drawings %s" % drawings)
        check(all(d["finished"] and d["log"] == [] for d in drawings), "no logs folder: drawings not finished or with log lines")


def killed_run_leftovers(tavrik, dwgver, workshop, scratch):
    prefix = make_prefix(scratch, "killed", workshop, dwgver, copies=4)
    tmp = scratch / "tmp-killed"
    tmp.mkdir()
    logs = prefix / LOGS
    ended = ended_process_id()
    stale = ["report.json.%d.part" % ended, "report.html.%d.part" % ended]
    kept = ["report.json.%d.part" % os.getpid(), "report.json.notes.part", "report.html.%d.part.old" % ended]
    for name in stale + kept:
        (logs / name).write_bytes(b"half written")
    process = tavrik_run(tavrik, prefix, tmp)
    record = tmp / ("tavrik-report-%d" % process.pid) / "drawing-1"
    deadline = time.monotonic() + 120
    while not record.exists() and process.poll() is None and time.monotonic() < deadline:
        time.sleep(0.005)
    os.kill(process.pid, signal.SIGKILL)
    process.wait()
    killed = "tavrik-report-%d" % process.pid
    check(scratch_folders(tmp) == [killed], "the killed run's scratch folder: %s" % scratch_folders(tmp))
    status, error = finished(tavrik_run(tavrik, prefix, tmp))
    check(status == 0, "the run after the kill: status %d: %s" % (status, error))
    check(scratch_folders(tmp) == [], "scratch folders after the next run: %s" % scratch_folders(tmp))
    left = sorted(p.name for p in logs.iterdir() if ".part" in p.name)
    check(left == sorted(kept), "report temporaries after the next run: %s" % left)
    report = logs / "report.json"
    check(report.exists(), "the run after the kill wrote no report")
    if report.exists():
        names = [d["name"] for d in json.loads(report.read_text(encoding="utf-8"))["drawings"]]
        check(names == ["MP2305-%d.dxf" % i for i in range(1, 9)], "drawings after the kill: %s" % names)


def main():
    tavrik, dwgver, workshop = sys.argv[1:4]
    with tempfile.TemporaryDirectory() as folder:
        scratch = pathlib.Path(folder)
        one_line_hand_off(tavrik, dwgver, workshop, scratch)
        logs_folder_missing(tavrik, dwgver, workshop, scratch)
        killed_run_leftovers(tavrik, dwgver, workshop, scratch)
    for f in failures:
        print("FAIL:", f)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
