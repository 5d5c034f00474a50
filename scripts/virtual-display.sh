# Sourced by the scripts that start the window without a screen (start-up timing, screenshot,
# install check, the look-ahead's CPU share). Sourcing it makes $scratch, a fresh folder removed on exit together with the
# Xvfb and any process whose id the script puts in $app_pid.
# start_virtual_display starts an Xvfb of its own on a free display and gives the program a
# fresh per-user environment inside $scratch.
scratch=$(mktemp -d)
xvfb_pid= app_pid=
virtual_display_cleanup() {
    [[ -n $app_pid ]] && kill "$app_pid" 2>/dev/null
    [[ -n $xvfb_pid ]] && kill "$xvfb_pid" 2>/dev/null
    rm -rf "$scratch"
}
trap virtual_display_cleanup EXIT

start_virtual_display() {
    local display=:$((90 + RANDOM % 400))
    while [[ -e /tmp/.X11-unix/X${display#:} ]]; do display=:$((90 + RANDOM % 400)); done
    Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
    xvfb_pid=$!
    for _ in $(seq 50); do [[ -e /tmp/.X11-unix/X${display#:} ]] && break; sleep 0.1; done
    export DISPLAY=$display QT_QPA_PLATFORM=xcb
    export XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/run
    mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
}

# open_window_and_play BIN PIECE starts the program on the piece, sets app_pid and window (its X id) once the
# window shows, and presses Play in it; it ends the script with the program's log if no window comes.
open_window_and_play() {
    "$1" "$2" >"$scratch/tarabix.log" 2>&1 &
    app_pid=$!
    window=
    for _ in $(seq 100); do
        window=$(xdotool search --onlyvisible --name '^Tarabix' 2>/dev/null | head -1) && [[ -n $window ]] && break
        sleep 0.1
    done
    [[ -n $window ]] || { echo "the window did not appear" >&2; cat "$scratch/tarabix.log" >&2; exit 1; }
    sleep 1
    xdotool windowfocus --sync "$window"
    xdotool key --clearmodifiers alt+p
}
