#!/usr/bin/env bash
# Shows a DWG in LibreCAD on a virtual X display and saves a screenshot of its window:
# docs/librecad_screenshot.sh DRAWING.dwg OUT.png
# (docs/workshop_merged_librecad.png: the workshop's merged drawing MP2305.dwg after
# scripts/run-workshop.)
set -euo pipefail
drawing=$(realpath "${1:?drawing}")
out=$(realpath -m "${2:?png}")
work=$(mktemp -d)
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1400x900x24 >/dev/null 2>&1 &
xvfb=$!
cleanup() { kill "${librecad:-}" "$xvfb" 2>/dev/null || true; rm -rf "$work"; }
trap cleanup EXIT
sleep 2
# A fresh home: LibreCAD's first start asks for units and language, then says that its DWG
# support is not complete; both are answered by Return.
HOME="$work" XDG_RUNTIME_DIR="$work" DISPLAY="$display" librecad "$drawing" >/dev/null 2>&1 &
librecad=$!
for _ in 1 2; do
  sleep 15
  DISPLAY="$display" xdotool key Return
done
sleep 15
window=$(DISPLAY="$display" xdotool search --onlyvisible --name "LibreCAD" | tail -n 1)
DISPLAY="$display" xdotool windowsize "$window" 1400 900 windowmove "$window" 0 0
sleep 3
# The whole drawing in view: "za" (zoom auto) on LibreCAD's command line.
DISPLAY="$display" xdotool mousemove 1240 782 click 1 type za
DISPLAY="$display" xdotool key Return
sleep 5
DISPLAY="$display" import -window root "$out"
echo "$out"
