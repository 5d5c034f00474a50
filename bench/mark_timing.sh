#!/usr/bin/env bash
# The marks keep to the sound: plays clicks through the built-in synthesizer in real time into a
# WAV file (FluidSynth's file driver in place of the sound card) along the window's own path, notes
# when each click's mark is shown (bench/mark_probe.cpp), finds the clicks in the file and prints
# how far each mark was from its click being heard, for two write patterns: 64 frames at a time
# (a sound card) and 882 frames (20 ms, as PulseAudio's driver writes at the default latency).
# BUSY processes keep the cores busy meanwhile.
#
#   bench/mark_timing.sh [BUILD_DIR] [BUSY]      (defaults: build, 0)
set -euo pipefail

build=${1:-build}
busy=${2:-0}
probe=$build/bench/mark_probe
check=$build/bench/sound_check
source "$(dirname "$0")/common.sh"
need_built mark_timing "$probe" "$check"

start_busy "$busy"
sleep 1
echo "$busy busy processes, $(nproc) cores, load average at the start $(cut -d' ' -f1-3 /proc/loadavg)"
for frames in 64 882; do
    echo "--- the audio written $frames frames at a time"
    "$probe" play "$tmp/heard.wav" "$tmp/marks.csv" "$frames"
    "$check" onset-times "$tmp/heard.wav" 100 >"$tmp/onsets.txt"
    "$probe" compare "$tmp/marks.csv" "$tmp/onsets.txt"
done
