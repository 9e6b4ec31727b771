"""Runs the batch on a copy of the example workshop and checks its run report:

- report.json and report.html stand beside Cg.log; each drawing of the part is there with its
  time, previews before and after, counts before and after, sheets, frame, dimensions per view,
  holes replaced and its lines of Cg.log; the merged drawing with its path and preview;
- a second run, which has no hand-off and stops early, leaves the report as it was;
- the previews wait in a scratch folder of the run in TMPDIR until the report is written, and
  the folder is gone afterwards, as are the scratch folders of runs that were killed (their
  process has ended), while one of a running process stays;
- the report opens in headless Chromium without a message in its console, and its screenshot is
  written where SCREENSHOT says. The browser check is skipped only on a machine without chromium
  outside CI (the environment variable CI set makes a missing chromium a failure); a page that
  writes to its console is opened first, to show that a message would be seen.

Usage: check_report.py TAVRIK DWGVER WORKSHOP [SCREENSHOT]
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

LOGS = pathlib.Path("drives/d/Mytool/cad")
failures = []

CHROMIUM_FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
                  "--no-first-run", "--disable-sync", "--disable-component-update"]


def check(condition, message):
    if not condition:
        failures.append(message)


def run_batch(tavrik, prefix, stdin=subprocess.DEVNULL, tmp=None):
    env = dict(os.environ, TMPDIR=str(tmp)) if tmp else None
    return subprocess.run([tavrik, "--prefix", str(prefix)], stdin=stdin, capture_output=True, timeout=300, env=env)


def ended_process_id():
    """The id of a process that has ended: no running process has it."""
    child = subprocess.Popen(["true"])
    child.wait()
    return child.pid


def scratch_folders(tmp):
    return sorted(p.name for p in tmp.iterdir() if p.name.startswith("tavrik-report-"))


def check_json(report):
    drawings = report["drawings"]
    check([d["name"] for d in drawings] == ["MP2305-1.dxf", "MP2305-2.dxf"], "drawings: %s" % [d["name"] for d in drawings])
    for d in drawings:
        name = d["name"]
        check(d["finished"], name + " not finished")
        check(d["seconds"] > 0, name + " took no time")
        check(d["before"]["entitiesByType"].get("POINT", 0) > 0, name + ": the export's points missing before")
        check("POINT" not in d["after"]["entitiesByType"], name + ": points left after the clean-up")
        check(d["after"]["entitiesByType"].get("DIMENSION", 0) > 0, name + ": no dimensions after")
        check(d["sheets"] >= 1, name + ": no sheet found")
        check(len(d["frames"]) == d["sheets"] and all(f.upper().endswith(".DWG") for f in d["frames"]),
              name + ": frames %s" % d["frames"])
        check(sum(d["dimensionsPerView"].values()) > 0, name + ": dimensions per view %s" % d["dimensionsPerView"])
        # Hole marks where a symbol block now stands (none while the workshop's symbols are not inserted).
        check(0 <= d["holesReplaced"] <= d["before"]["entitiesByType"]["POINT"], name + ": holes %s" % d["holesReplaced"])
        check(d["log"] and "开始处理" in d["log"][0] and name in d["log"][0], name + ": log lines do not start with it")
    merged = report["merged"]
    check(merged is not None and merged["path"].endswith("MP2305.dxf"), "merged drawing: %s" % merged)


def check_html(html):
    check(html.count("data:image/png;base64,") == 5, "previews: %d" % html.count("data:image/png;base64,"))
    check("MP2305.dxf" in html and "MP2305-2.dxf" in html, "names missing in the HTML")
    # Nothing from outside: every source is inline data (Chromium does not log a missing file).
    check(html.count('src="') == html.count('src="data:image/png;base64,'), "the HTML loads outside files")


def console_of(chromium, page, screenshot=None):
    """Opens page in headless Chromium; returns the console lines of its log and whether the
    screenshot was taken (copied to screenshot when given)."""
    with tempfile.TemporaryDirectory() as profile:
        out = pathlib.Path(profile) / "shot.png"
        result = subprocess.run([chromium, *CHROMIUM_FLAGS, "--user-data-dir=" + profile, "--enable-logging=stderr",
                                 "--v=0", "--window-size=1280,2000", "--screenshot=" + str(out),
                                 page.as_uri()], capture_output=True, timeout=120)
        console = [line for line in result.stderr.decode(errors="replace").splitlines() if "CONSOLE" in line]
        shot = out.exists() and out.stat().st_size > 10000
        if screenshot and out.exists():
            shutil.copy(out, screenshot)
        return console, shot


def open_in_chromium(report, screenshot):
    chromium = shutil.which("chromium")
    if chromium is None:
        check(not os.environ.get("CI"), "chromium is not installed on the CI machine")
        print("check_report: chromium is not installed; the browser check is skipped")
        return
    with tempfile.TemporaryDirectory() as scratch:
        noisy = pathlib.Path(scratch) / "noisy.html"
        noisy.write_text('<!DOCTYPE html><title>t</title><script>console.error("seen")</script>', encoding="utf-8")
        console, _ = console_of(chromium, noisy)
        check(any('"seen"' in line for line in console), "a console message is not seen: %s" % console)
    console, shot = console_of(chromium, report, screenshot)
    check(not console, "console messages: %s" % console)
    check(shot, "no screenshot")


def main():
    tavrik, dwgver, workshop = sys.argv[1:4]
    screenshot = sys.argv[4] if len(sys.argv) > 4 else None
    with tempfile.TemporaryDirectory() as scratch:
        prefix = pathlib.Path(scratch) / "prefix"
        shutil.copytree(workshop, prefix, symlinks=True)
        shutil.copy(dwgver, prefix / "drives/d/Mytool/application/dwgver.dll")
        tmp = pathlib.Path(scratch) / "tmp"
        stale, live = "tavrik-report-%d" % ended_process_id(), "tavrik-report-%d" % os.getpid()
        for folder in (stale, live):
            (tmp / folder).mkdir(parents=True)
            (tmp / folder / "before-0.png").write_bytes(b"left by a run")
        result = run_batch(tavrik, prefix, subprocess.PIPE, tmp)
        check(scratch_folders(tmp) == [live], "scratch folders after the run: %s" % scratch_folders(tmp))
        check(result.returncode == 0, "batch status %d: %s" % (result.returncode, result.stderr.decode(errors="replace")))
        logs = prefix / LOGS
        report_json, report_html = logs / "report.json", logs / "report.html"
        check(report_json.exists() and report_html.exists(), "no report beside Cg.log")
        if not failures:
            check_json(json.loads(report_json.read_text(encoding="utf-8")))
            check_html(report_html.read_text(encoding="utf-8"))
            first = report_json.read_bytes()
            run_batch(tavrik, prefix, None)
            check(report_json.read_bytes() == first, "a run without a hand-off changed the report")
            open_in_chromium(report_html, screenshot)
    for f in failures:
        print("FAIL:", f)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
