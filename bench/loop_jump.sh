#!/usr/bin/env bash
# What the jump of a practice loop from B back to A costs: plays a passage of a shipped sample N
# times in real time through `tarabix-cli play --device null --loop A:B --passes N --timing-log`,
# once on its own and once beside two busy processes, and reports from the timing log
#   - the drift of each jump: the due time of pass k+1's first event minus pass k's, minus
#     (B - A) / speed; only the rounding of a due time to whole ms should show (under 1 ms);
#   - how late the first event after each jump reached the device (sent - due) against all events.
#
#   bench/loop_jump.sh [BUILD_DIR] [PASSES] [A:B] [SPEED] [SAMPLE]
#   (defaults: build, 10, 10:16, 1, samples/rast/samai-rast.mzf of the build)
set -euo pipefail

build=${1:-build}
passes=${2:-10}
range=${3:-10:16}
speed=${4:-1}
sample=${5:-$build/bin/samples/rast/samai-rast.mzf}
cli=$build/bin/tarabix-cli
source "$(dirname "$0")/common.sh"
need_built loop_jump "$cli"
[[ -f $sample ]] || { echo "loop_jump: $sample not found" >&2; exit 1; }
passMs=$(awk -v r="$range" -v s="$speed" 'BEGIN { split(r, ab, ":"); printf "%.3f", (ab[2] - ab[1]) * 1000 / s }')

# Nearest-rank median, p99 and max of the numbers on stdin.
spread() {
    sort -g | awk '{ a[NR] = $1 }
        END { if (NR == 0) { printf "%23s", "-"; exit }
              p99 = int(NR * 0.99); if (p99 < NR * 0.99) p99++;
              printf "%7.3f %7.3f %7.3f", a[int((NR + 1) / 2)], a[p99], a[NR] }'
}

# One line of figures from a timing log: jumps, drift min/max, lateness after jumps, lateness of all.
report() {
    local log=$1
    # A pass begins where the piece time goes back; its first event's due time and lateness.
    awk -F, 'NR > 1 { if (NR == 2 || $1 < prev) print $2, $3 - $2; prev = $1 }' "$log" >"$tmp/firsts"
    local jumps drift after all
    jumps=$(($(wc -l <"$tmp/firsts") - 1))
    drift=$(awk -v p="$passMs" 'NR > 1 { d = $1 - last - p; if (NR == 2 || d < lo) lo = d; if (NR == 2 || d > hi) hi = d }
        { last = $1 } END { printf "%6.3f %6.3f", lo, hi }' "$tmp/firsts")
    after=$(awk 'NR > 1 { print $2 }' "$tmp/firsts" | spread)
    all=$(awk -F, 'NR > 1 { printf "%.3f\n", $3 - $2 }' "$log" | spread)
    printf '%5d %s   %s   %s\n' "$jumps" "$drift" "$after" "$all"
}

echo "$(basename "$sample"), loop $range s ($passMs ms a pass at speed $speed), $passes passes; $(nproc) cores"
echo "uptime before: $(uptime)"
printf '%-14s %5s %13s   %23s   %23s\n' "" "" "jump drift ms" "after a jump: lateness" "all events: lateness"
printf '%-14s %5s %6s %6s   %7s %7s %7s   %7s %7s %7s\n' run jumps min max median p99 max median p99 max
for busy in 0 2; do
    start_busy "$busy"
    "$cli" play "$sample" --device null --speed "$speed" --loop "$range" --passes "$passes" \
        --timing-log "$tmp/loop-$busy.csv" >/dev/null 2>"$tmp/loop-$busy.err"
    [[ $busy -gt 0 ]] && echo "uptime with $busy busy: $(uptime)" >"$tmp/uptime-busy"
    stop_busy
    printf '%-14s %s\n' "$busy busy" "$(report "$tmp/loop-$busy.csv")"
done
cat "$tmp/uptime-busy"
