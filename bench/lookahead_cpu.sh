#!/usr/bin/env bash
# What the look-ahead costs: the window playing the densest sample piece under a virtual display,
# without it, with "the next 3 notes" and with "the notes due within 1.5 s", as the share of one
# core the whole program takes (all its threads, from /proc/PID/stat) over a stretch of the piece.
#   bench/lookahead_cpu.sh [BUILD_DIR] [RUNS] [SECONDS]      (defaults: build 5 30)
# The densest piece is the sample with the most channel events per second (tarabix-cli dump).
# Each run starts bin/tarabix with the piece and fresh settings (only the look-ahead set), presses
# Play as a learner does (Alt+P, xdotool), lets 2 s pass, then measures SECONDS. The three settings
# take turns in every round, so a change of the machine's load hits all; the medians are printed
# with the load average before and after. Without a sound server the built-in synthesizer stays silent, so the
# figures are the window's own work: the player, the marks, the painting and the look-ahead.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
runs=${2:-5}
seconds=${3:-30}
[[ $build = /* ]] || build=$here/../$build
bin=$build/bin/tarabix
cli=$build/bin/tarabix-cli

source "$here/../scripts/virtual-display.sh"
bench_cleanup() { virtual_display_cleanup; }
source "$here/common.sh"
need_built lookahead_cpu.sh "$bin" "$cli"
command -v xdotool >/dev/null || { echo "lookahead_cpu.sh: needs xdotool (apt-get install xdotool)" >&2; exit 1; }

# Channel events per second of each sample; the densest first.
densest=$(for f in "$build"/bin/samples/*/*.mzf "$build"/bin/samples/*/*.mid; do
    "$cli" dump "$f" | awk -v f="$f" '
        / CM: / { n++ }
        { t = $2; gsub(/[()]/, "", t); if (t + 0 > last) last = t + 0 }
        END { if (last > 0) printf "%.2f %d %d %s\n", n * 1000 / last, n, last, f }'
done | sort -rn | head -1)
read -r rate events length_ms piece <<<"$densest"
echo "piece: ${piece#"$build"/bin/} ($events channel events in $((length_ms / 1000)) s, $rate a second)"
((seconds + 3 < length_ms / 1000)) || { echo "the piece is shorter than ${seconds} s + 3 s" >&2; exit 1; }

start_virtual_display
ticks=$(getconf CLK_TCK)

cpu_ticks() {  # utime + stime of the process, all threads
    awk '{ sub(/.*\) /, ""); print $12 + $13 }' "/proc/$1/stat"
}

# One run: the program's share of one core in per cent, in $share.
measure() {
    local choice=$1
    rm -rf "$XDG_CONFIG_HOME" && mkdir -p "$XDG_CONFIG_HOME/Tarabix"
    printf '[options]\nLookAhead=%s\n' "$choice" >"$XDG_CONFIG_HOME/Tarabix/Tarabix.conf"
    open_window_and_play "$bin" "$piece"
    sleep 2
    local t0 c0 t1 c1
    t0=$(date +%s.%N) c0=$(cpu_ticks "$app_pid")
    sleep "$seconds"
    t1=$(date +%s.%N) c1=$(cpu_ticks "$app_pid")
    kill "$app_pid" && wait "$app_pid" 2>/dev/null || true
    app_pid=
    share=$(awk -v c="$((c1 - c0))" -v hz="$ticks" -v t0="$t0" -v t1="$t1" 'BEGIN { printf "%.2f", 100 * c / hz / (t1 - t0) }')
}

median() { sort -n | awk '{ v[NR] = $1 } END { printf "%.2f", NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

echo "machine: $(nproc) cores; before: $(uptime)"
off=() next3=() within=()
for ((r = 1; r <= runs; r++)); do
    measure 0
    off+=("$share")
    measure 3
    next3+=("$share")
    measure 4
    within+=("$share")
    echo "round $r: off ${off[-1]} %, next 3 notes ${next3[-1]} %, within 1.5 s ${within[-1]} %"
done
echo "after: $(uptime)"
echo "medians of $runs runs of ${seconds} s, % of one core:"
echo "  look-ahead off:               $(printf '%s\n' "${off[@]}" | median)"
echo "  the next 3 notes:             $(printf '%s\n' "${next3[@]}" | median)"
echo "  the notes due within 1.5 s:   $(printf '%s\n' "${within[@]}" | median)"
