#!/usr/bin/env bash
# What is heard keeps the piece's time: writes 200 clicks 100 ms apart with our MIDI writer, plays
# them in real time through the built-in synthesizer with `tarabix-cli play --audio-out` (the same
# driver path and timing as a sound card, its audio going to a WAV file) while BUSY processes keep
# the cores busy, and measures the clicks' onsets in the file against their best-fitting grid.
# The timing log of the same run gives how late the player handed the events over.
#
#   bench/heard_timing.sh [BUILD_DIR] [BUSY]      (defaults: build, 2)
set -euo pipefail

build=${1:-build}
busy=${2:-2}
cli=$build/bin/tarabix-cli
check=$build/bench/sound_check
source "$(dirname "$0")/common.sh"
need_built heard_timing "$cli" "$check"

"$check" write-clicks "$tmp/clicks.mid" 200 100
start_busy "$busy"
sleep 1
load=$(cut -d' ' -f1-3 /proc/loadavg)
"$cli" play "$tmp/clicks.mid" --audio-out "$tmp/heard.wav" --timing-log "$tmp/timing.csv" 2>"$tmp/play.err" ||
    { cat "$tmp/play.err" >&2; exit 1; }
stop_busy

echo "200 clicks 100 ms apart, $busy busy processes, $(nproc) cores, load average at the start $load"
handoff=$(awk -F, 'NR > 1 { printf "%.3f\n", $3 - $2 }' "$tmp/timing.csv" | sort -g |
    awk '{ a[NR] = $1 } END { p99 = int(NR * 0.99); if (p99 < NR * 0.99) p99++;
         printf "median %.3f p99 %.3f max %.3f", a[int((NR + 1) / 2)], a[p99], a[NR] }')
echo "hand-off lateness ms (player to output layer): $handoff"
echo "heard onsets vs grid: $("$check" onsets "$tmp/heard.wav" 100)"
