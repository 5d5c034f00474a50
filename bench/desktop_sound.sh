#!/usr/bin/env bash
# The built-in synthesizer on the desktop sound servers learners have: starts a user-level
# PulseAudio and then a PipeWire (with pipewire-pulse and WirePlumber), each with a null sink,
# plays the probe (C4 + 50 cents, E4 - 50 cents, G4 on a clarinet) through `tarabix-cli play`,
# records the sink's monitor with parec and reports dropouts inside the notes, the pitches, the
# stream's latency as the server reports it, the CPU of a silent program plus its server over
# 10 s (from /proc/PID/stat), and how long the first note after a silence waits for the audio. Each server plays the probe alone and beside one busy process,
# and once more while the server is killed under it (the program must play on silently).
#
#   bench/desktop_sound.sh [BUILD_DIR] [SECONDS] [LATENCY_MS] [SERVERS]
#       defaults: build, 60, the setting's default, "pulseaudio pipewire"
#
# Installs pulseaudio, pulseaudio-utils, pipewire, pipewire-pulse and wireplumber when missing.
# Runs the servers as the current user, root included, in a scratch runtime folder: nothing of
# the machine's own sound set-up is touched.
set -euo pipefail

build=${1:-build}
seconds=${2:-60}
latency=${3:-}
read -r -a serverList <<<"${4:-pulseaudio pipewire}"
cli=$(realpath "$build/bin/tarabix-cli")
check=$(realpath "$build/bench/sound_check")
wake=$(realpath "$build/bench/synth_wake_bench")
source "$(dirname "$0")/common.sh"
need_built desktop_sound "$cli" "$check" "$wake"

packages=(pulseaudio pulseaudio-utils pipewire pipewire-pulse wireplumber dbus)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
    sudo=""
    [[ $(id -u) -ne 0 ]] && sudo=sudo
    echo "desktop_sound: installing ${missing[*]}"
    $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

export HOME=$tmp/home XDG_RUNTIME_DIR=$tmp/run XDG_CONFIG_HOME=$tmp/config
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" "$XDG_CONFIG_HOME"
chmod 700 "$XDG_RUNTIME_DIR"
servers=()
stop_pids() { for p in "$@"; do kill "$p" 2>/dev/null || true; done; for p in "$@"; do wait "$p" 2>/dev/null || true; done; }
bench_cleanup() { stop_pids "${servers[@]}"; }
latencyArgs=()
[[ -n $latency ]] && latencyArgs=(--latency "$latency")

wait_for_server() {
    for _ in $(seq 100); do
        pactl info >/dev/null 2>&1 && return 0
        sleep 0.1
    done
    echo "desktop_sound: the $1 server did not start" >&2
    return 1
}

start_pulseaudio() {
    cat >"$tmp/default.pa" <<PA
load-module module-null-sink sink_name=probe rate=44100
load-module module-native-protocol-unix
load-module module-suspend-on-idle timeout=1
set-default-sink probe
PA
    # As root PulseAudio warns and runs on; -n: none of the system's own start-up script.
    pulseaudio -n -F "$tmp/default.pa" --daemonize=no --exit-idle-time=-1 --log-target=stderr \
        2>"$tmp/pulseaudio.log" &
    servers=($!)
    wait_for_server PulseAudio
    serverPids=${servers[*]}
}

start_pipewire() {
    dbus-daemon --session --address="unix:path=$XDG_RUNTIME_DIR/bus" --nofork --nopidfile 2>"$tmp/dbus.log" &
    servers=($!)
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    sleep 0.3
    pipewire 2>"$tmp/pipewire.log" &
    servers+=($!)
    sleep 0.3
    wireplumber 2>"$tmp/wireplumber.log" &
    servers+=($!)
    pipewire-pulse 2>"$tmp/pipewire-pulse.log" &
    servers+=($!)
    wait_for_server PipeWire
    pactl load-module module-null-sink sink_name=probe sink_properties=device.description=probe >/dev/null
    sleep 0.5
    pactl set-default-sink probe
    serverPids="${servers[*]:1}"
}

stop_servers() {
    stop_pids "${servers[@]}"
    servers=()
    unset DBUS_SESSION_BUS_ADDRESS
    rm -rf "${XDG_RUNTIME_DIR:?}"/* "$XDG_CONFIG_HOME"/* "$HOME"/.config 2>/dev/null || true
}

# CPU seconds (user + system) of the given processes, from /proc/PID/stat.
cpu_seconds() {
    local hz total=0
    hz=$(getconf CLK_TCK)
    for p in "$@"; do
        [[ -r /proc/$p/stat ]] || continue
        total=$((total + $(awk '{ print $14 + $15 }' "/proc/$p/stat")))
    done
    awk -v t="$total" -v hz="$hz" 'BEGIN { printf "%.2f", t / hz }'
}

# Plays the probe while recording the monitor; prints dropouts, pitches, peak and latency.
play_probe() {
    local name=$1 rec=$tmp/$1.wav
    parec -d probe.monitor --file-format=wav --format=s16le --rate=44100 --channels=2 "$rec" &
    local parec=$!
    sleep 0.5
    "$cli" play "$tmp/probe.mid" "${latencyArgs[@]}" 2>"$tmp/$name.err" &
    local play=$!
    sleep 3
    local lat
    # PulseAudio reports the stream's buffer and sink latency; PipeWire's service reports zeros
    # there and the node latency (quantum/rate) it granted among the properties.
    lat=$(pactl list sink-inputs 2>/dev/null | awk -F': ' '
        /Buffer Latency/ { b = $2 + 0 } /Sink Latency/ { s = $2 + 0 }
        /node.latency = / { split($0, q, "\""); split(q[2], f, "/"); if (f[2] > 0) n = 1000 * f[1] / f[2] }
        END { if (b + s > 0) printf "%.1f", (b + s) / 1000; else if (n > 0) printf "%.1f(node)", n; else printf "?" }')
    wait "$play" || echo "  $name: tarabix-cli play ended with an error" >&2
    sleep 0.5
    kill -INT "$parec" 2>/dev/null || true
    wait "$parec" 2>/dev/null || true
    printf '  %-34s %s latency_ms %s\n' "$name" "$("$check" probe "$rec")" "$lat"
    [[ -s $tmp/$name.err ]] && sed 's/^/    stderr: /' "$tmp/$name.err"
    return 0
}

# A piece silent for most of its length: the program's and the server's CPU over 10 s of it,
# from 5 s after the first note (the audio is let go 3 s after it).
idle_cpu() {
    "$cli" play "$tmp/quiet.mid" "${latencyArgs[@]}" 2>/dev/null &
    local play=$!
    sleep 5.5
    # shellcheck disable=SC2086
    local a0 s0 a1 s1
    a0=$(cpu_seconds "$play")
    s0=$(cpu_seconds $serverPids)
    sleep 10
    a1=$(cpu_seconds "$play")
    s1=$(cpu_seconds $serverPids)
    wait "$play" || true
    awk -v a="$a1" -v b="$a0" -v s="$s1" -v t="$s0" \
        'BEGIN { printf "  %-34s program %.2f s + server %.2f s = %.2f s CPU in 10 s\n", "silent", a - b, s - t, a - b + s - t }'
}

# The first note after the audio was let go: how long its send waits for the driver (mean of 20).
wake_time() {
    local ms
    ms=$(TARABIX_WAKE_DRIVER=pulseaudio "$wake" 2>/dev/null | awk '/^WakeForANote/ { print $2 }')
    printf '  %-34s %s ms\n' "note after the audio was let go" "${ms:-?}"
}

# The server is killed 3 s into the piece: the program must end normally and say so.
server_dies() {
    "$cli" play "$tmp/probe10.mid" "${latencyArgs[@]}" 2>"$tmp/dies.err" &
    local play=$!
    sleep 3
    stop_pids "${servers[@]}"
    local rc=0
    wait "$play" || rc=$?
    printf '  %-34s exit code %d; %s\n' "server killed while playing" "$rc" "$(tr '\n' ' ' <"$tmp/dies.err")"
}

"$check" write-probe "$tmp/probe.mid" "$seconds"
"$check" write-probe "$tmp/probe10.mid" 10
"$check" write-quiet "$tmp/quiet.mid" 20
echo "probe: $seconds s, $(nproc) cores, load average $(cut -d' ' -f1-3 /proc/loadavg), latency setting ${latency:-default}"
for server in "${serverList[@]}"; do
    echo "$server ($( [[ $server == pulseaudio ]] && pulseaudio --version || pipewire --version | tail -1 ))"
    "start_$server"
    play_probe "$server"
    start_busy 1
    play_probe "$server-one-busy"
    stop_busy
    idle_cpu
    wake_time
    server_dies
    stop_servers
done
