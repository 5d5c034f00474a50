#!/usr/bin/env bash
# What the jump of a practice loop from B back to A costs: plays a passage of a shipped sample N
# times in real time through `tarabix-cli play --device null --loop A:B --passes N --timing-log`,
# once on its own and once beside two busy processes, and reports from the timing log
#   - the drift from pass to pass: the due time of pass k+1's first event minus pass k's, minus
#     (B - A) / speed; only the rounding of a due time to whole ms should show (under 1 ms), unless
#     the player caught up with an event handed over more than 20 ms late somewhere in the pass
#     (counted: "late > 20");
#   - the drift of the jump alone: from pass k's last event to pass k+1's first, against the piece
#     time between them (to B, then from A) at the speed;
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
read -r aMs bMs passMs < <(awk -v r="$range" -v s="$speed" \
    'BEGIN { split(r, ab, ":"); printf "%.0f %.0f %.3f\n", ab[1] * 1000, ab[2] * 1000, (ab[2] - ab[1]) * 1000 / s }')

# Nearest-rank median, p99 and max of the numbers on stdin.
spread() {
    sort -g | awk '{ a[NR] = $1 }
        END { if (NR == 0) { printf "%23s", "-"; exit }
              p99 = int(NR * 0.99); if (p99 < NR * 0.99) p99++;
              printf "%7.3f %7.3f %7.3f", a[int((NR + 1) / 2)], a[p99], a[NR] }'
}

# One line of figures from a timing log: jumps, the two drifts, lateness after jumps and of all.
report() {
    local log=$1
    # A pass begins where the piece time goes back: its first event (absMS, due, lateness) and the
    # last event of the pass before it.
    awk -F, 'NR > 1 { if (NR > 2 && $1 < prev) print $1, $2, $3 - $2, prevAbs, prevDue;
                      else if (NR == 2) print $1, $2, $3 - $2, "-", "-";
                      prev = $1; prevAbs = $1; prevDue = $2 }' "$log" >"$tmp/firsts"
    local jumps drifts after all caught
    jumps=$(($(wc -l <"$tmp/firsts") - 1))
    drifts=$(awk -v p="$passMs" -v a="$aMs" -v b="$bMs" -v s="$speed" '
        NR > 1 { d = $2 - last - p; j = $2 - $5 - ((b - $4) + ($1 - a)) / s;
                 if (NR == 2 || d < dlo) dlo = d; if (NR == 2 || d > dhi) dhi = d;
                 if (NR == 2 || j < jlo) jlo = j; if (NR == 2 || j > jhi) jhi = j }
        { last = $2 } END { printf "%7.3f %7.3f %7.3f %7.3f", dlo, dhi, jlo, jhi }' "$tmp/firsts")
    after=$(awk 'NR > 1 { print $3 }' "$tmp/firsts" | spread)
    all=$(awk -F, 'NR > 1 { printf "%.3f\n", $3 - $2 }' "$log" | spread)
    caught=$(awk -F, 'NR > 1 && $3 - $2 > 20 { n++ } END { print n + 0 }' "$log")
    printf '%5d %s   %s   %s %6d\n' "$jumps" "$drifts" "$after" "$all" "$caught"
}

echo "$(basename "$sample"), loop $range s ($passMs ms a pass at speed $speed), $passes passes; $(nproc) cores"
echo "uptime before: $(uptime)"
printf '%-8s %5s %15s %15s   %23s   %23s\n' "" "" "pass drift ms" "jump drift ms" "after a jump: lateness" \
    "all events: lateness"
printf '%-8s %5s %7s %7s %7s %7s   %7s %7s %7s   %7s %7s %7s %6s\n' run jumps min max min max median p99 max \
    median p99 max "late > 20"
for busy in 0 2; do
    start_busy "$busy"
    "$cli" play "$sample" --device null --speed "$speed" --loop "$range" --passes "$passes" \
        --timing-log "$tmp/loop-$busy.csv" >/dev/null 2>"$tmp/loop-$busy.err"
    [[ $busy -gt 0 ]] && echo "uptime with $busy busy: $(uptime)" >"$tmp/uptime-busy"
    stop_busy
    printf '%-8s %s\n' "$busy busy" "$(report "$tmp/loop-$busy.csv")"
done
cat "$tmp/uptime-busy"
