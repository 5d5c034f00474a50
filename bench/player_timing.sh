#!/usr/bin/env bash
# How well the player keeps time: writes a dense piece (about 200 events a second) with our MIDI
# writer, plays it in real time through `tarabix-cli play --device null --timing-log`, once for
# each way of waiting, and reports how late the events reached the device and the share of one
# processor the whole run used. Then renders the same piece offline and reports its speed.
#
#   bench/player_timing.sh [BUILD_DIR] [SECONDS]      (defaults: build, 20)
set -euo pipefail

build=${1:-build}
seconds=${2:-20}
cli=$build/bin/tarabix-cli
gen=$build/bench/player_bench
source "$(dirname "$0")/common.sh"
need_built player_timing "$cli" "$gen"
"$gen" --write-dense-piece "$tmp/dense.mid" 200 "$seconds"

# Lateness = sent - due in ms; nearest-rank percentiles.
lateness() {
    awk -F, 'NR > 1 { printf "%.3f\n", $3 - $2 }' "$1" | sort -g |
        awk '{ a[NR] = $1 }
             END { p99 = int(NR * 0.99); if (p99 < NR * 0.99) p99++;
                   printf "%7d %10.3f %10.3f %10.3f", NR, a[int((NR + 1) / 2)], a[p99], a[NR] }'
}

echo "dense piece: $seconds s, $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg)"
printf '%-26s %7s %10s %10s %10s %8s\n' "wait" "events" "median ms" "p99 ms" "max ms" "CPU %"
TIMEFORMAT='%R %U %S'
for mode in timerfd precise-timer busy-wait; do
    case $mode in
        timerfd) extra=() ;;
        precise-timer) extra=(--precise-timer) ;;
        busy-wait) extra=(--busy-wait) ;;
    esac
    times=$({ time "$cli" play "$tmp/dense.mid" --device null --timing-log "$tmp/$mode.csv" "${extra[@]}" \
        >/dev/null 2>"$tmp/$mode.err"; } 2>&1)
    read -r real user sys <<<"$times"
    cpu=$(awk -v r="$real" -v u="$user" -v s="$sys" 'BEGIN { printf "%.1f", 100 * (u + s) / r }')
    printf '%-26s %s %8s\n' "$mode" "$(lateness "$tmp/$mode.csv")" "$cpu"
done
read -r floorMedian floorP99 floorMax <<<"$("$gen" --sleep-floor)"
printf '%-26s %7s %10s %10s %10s\n' "bare sleep (machine floor)" 1000 "$floorMedian" "$floorP99" "$floorMax"

"$cli" render "$tmp/dense.mid" -o "$tmp/dense.wav"
