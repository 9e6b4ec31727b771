"""FFG at a real terminal: the batch makes the workshop's merged drawing, a revision mark "REV-A"
is written twice into its first title block and once into its second, then tavrik runs in a
tmux window on that drawing while this script types as a draftsman would: FFG, a pick on a
text of a sheet, G, the new text, SAVEAS, QUIT. Checks the prompts on the screen (capture-pane)
and reads the saved drawing with ezdxf: every text of that sheet that was the picked text now
holds the new one, texts of other sheets are as they were.

Usage: ffg_terminal_session.py TAVRIK DWGVER WORKSHOP
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import ezdxf
from ezdxf import bbox

MERGED = pathlib.Path("drives/d/成品图/MP2305.dxf")
NEW_TEXT = "REV-B"
MARK = "REV-A"
failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def make_merged_drawing(tavrik, dwgver, workshop, prefix):
    shutil.copytree(workshop, prefix)
    application = prefix / "drives/d/Mytool/application"
    application.mkdir(parents=True, exist_ok=True)
    shutil.copy(dwgver, application / "dwgver.dll")
    subprocess.run([tavrik, "--prefix", str(prefix)], stdin=subprocess.DEVNULL, capture_output=True, timeout=400)
    return prefix / MERGED


def sheet_boxes(msp):
    """The boxes of block references with attributes (the title blocks), as FFG finds its sheet."""
    boxes = []
    for insert in msp.query("INSERT"):
        if insert.attribs:
            extents = bbox.extents([insert], fontless=True)
            boxes.append((extents.extmin.x, extents.extmin.y, extents.extmax.x, extents.extmax.y))
    return boxes


def add_revision_marks(merged, plate):
    """The draftsman's revision mark, twice in the first title block and once in the second:
    FFG picked on one finds the other of its sheet only. Returns the pick point and the box."""
    doc = ezdxf.readfile(merged)
    msp = doc.modelspace()
    boxes = sorted(sheet_boxes(msp))
    first, second = boxes[0], boxes[1]
    for box, dx in ((first, 10), (first, 200), (second, 10)):
        msp.add_text(MARK, dxfattribs={"height": 3.5, "insert": (box[0] + dx, box[1] + 5)})
    doc.saveas(plate)
    return (first[0] + 10 + 1.0, first[1] + 5 + 1.0), first


class Tmux:
    def __init__(self, socket):
        self.socket = socket

    def run(self, *args):
        return subprocess.run(["tmux", "-S", self.socket, *args], capture_output=True, text=True)

    def send(self, text):
        self.run("send-keys", "-t", "ffg", "-l", text)
        self.run("send-keys", "-t", "ffg", "Enter")

    def screen(self):
        return self.run("capture-pane", "-p", "-t", "ffg", "-S", "-200").stdout

    def key(self, name):
        self.run("send-keys", "-t", "ffg", name)

    def wait_for(self, needle, seconds=60, count=1):
        deadline = time.time() + seconds
        while time.time() < deadline:
            if self.screen().count(needle) >= count:
                return True
            time.sleep(0.2)
        return False


def main():
    tavrik, dwgver, workshop = sys.argv[1:4]
    work = pathlib.Path(tempfile.mkdtemp(prefix="tavrik-ffg-tmux-", dir=os.environ.get("TMPDIR")))
    try:
        prefix = work / "prefix"
        merged = make_merged_drawing(tavrik, dwgver, workshop, prefix)
        if not merged.exists():
            print("FAIL: the batch made no merged drawing at", merged)
            return 1
        plate = work / "plate.dxf"
        pick, sheet = add_revision_marks(merged, plate)
        value = MARK
        before = ezdxf.readfile(plate)
        saved = work / "after.dxf"

        tmux = Tmux(str(work / "tmux.sock"))
        command = "%s --prefix %s %s" % (tavrik, prefix, plate)
        tmux.run("new-session", "-d", "-s", "ffg", "-x", "160", "-y", "50",
                 "env LANG=C.UTF-8 TERM=xterm " + command + "; echo EXIT-$?; sleep 30")
        check(tmux.wait_for("Command:"), "no command prompt: " + tmux.screen())
        tmux.send("HELP")
        check(tmux.wait_for("FFG"), "HELP does not list FFG")
        # Esc at the pick prompt cancels FFG: the command line comes back.
        prompts = tmux.screen().count("Command:")
        tmux.send("FFG")
        check(tmux.wait_for("选择文字 或 [颜色(C)]:"), "no pick prompt: " + tmux.screen())
        tmux.key("Escape")
        check(tmux.wait_for("Command:", count=prompts + 1), "Esc did not cancel: " + tmux.screen())
        tmux.send("FFG")
        check(tmux.wait_for("选择文字 或 [颜色(C)]:", count=2), "no pick prompt: " + tmux.screen())
        tmux.send("nonsense")
        check(tmux.wait_for("Point or option keyword required."), "a bad point got no answer")
        tmux.send("%.6f,%.6f" % pick)
        check(tmux.wait_for("输入选项 [修改(G)/移动(M)/复制(C)/删除(E)] :"), "no choice prompt: " + tmux.screen())
        tmux.send("G")
        check(tmux.wait_for("输入新字符:"), "no prompt for the new text")
        tmux.send(NEW_TEXT)
        tmux.send("SAVEAS")
        check(tmux.wait_for("Enter file name"), "no file name prompt")
        tmux.send(str(saved))
        check(tmux.wait_for("Saved "), "no save: " + tmux.screen())
        tmux.send("QUIT")
        check(tmux.wait_for("EXIT-0"), "tavrik did not end with status 0: " + tmux.screen())
        tmux.run("kill-server")

        after = ezdxf.readfile(saved)
        auditor = after.audit()
        check(not auditor.has_errors, "ezdxf audit errors in the saved drawing")

        def inside(entity):
            p = entity.dxf.insert
            return sheet[0] <= p.x <= sheet[2] and sheet[1] <= p.y <= sheet[3]

        old_on_sheet = [t for t in before.modelspace().query("TEXT") if t.dxf.text == value and inside(t)]
        new_on_sheet = [t for t in after.modelspace().query("TEXT") if t.dxf.text == NEW_TEXT and inside(t)]
        check(len(new_on_sheet) == len(old_on_sheet) == 2,
              "%d texts '%s' on the sheet, %d now read '%s'" % (len(old_on_sheet), value, len(new_on_sheet), NEW_TEXT))
        check(all(t.dxf.color == 6 for t in new_on_sheet), "the changed texts are not highlighted in colour 6")
        check(not any(t.dxf.text.startswith("共 ") for t in after.modelspace().query("TEXT")),
              "the count text stayed with useri1 0")
        others_before = sorted(t.dxf.text for t in before.modelspace().query("TEXT") if not inside(t))
        others_after = sorted(t.dxf.text for t in after.modelspace().query("TEXT") if not inside(t))
        check(others_before == others_after, "texts off the sheet changed")
    finally:
        subprocess.run(["tmux", "-S", str(work / "tmux.sock"), "kill-server"], capture_output=True)
        shutil.rmtree(work, ignore_errors=True)
    for failure in failures:
        print("FAIL:", failure)
    print("picked %r at %s; %s" % (value, pick, "ok" if not failures else "%d failures" % len(failures)))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
