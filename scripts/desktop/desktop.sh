# shellcheck shell=bash source-path=SCRIPTDIR/../..
# Private desktops for programs under Wine: a virtual display with a compositor and no window manager, a sound sink
# that is recorded instead of heard, a Wine prefix. Source this file, then
#
#   with_desktop NAME -- COMMAND [ARGUMENT…]
#
# runs COMMAND with DISPLAY, PULSE_SERVER, WINEPREFIX and their like set, wine64 in PATH, and ends the script with its
# exit code. NAME tells prefixes apart (build/wine/NAME); two desktops of one name wait for each other;
# with desktop_fresh_prefix=yes the prefix is made anew. Works as root and
# as an ordinary user, with neither systemd nor dbus. Nothing is left running, however it ends.
#
# Within it, or after sourcing this file: desktop_screenshot FILE.png, desktop_record_start FILE.raw,
# desktop_record_stop.

brindlecast_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
. "$brindlecast_root/scripts/desktop/prefix.sh"
. "$brindlecast_root/scripts/desktop/tools.sh"

desktop_last_signal=TERM

desktop_say() { echo "desktop: $*" >&2; }

# poll SECONDS COMMAND…: until the command succeeds; 1 when it never does.
poll() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -ge "$end" ] && return 1
        sleep 0.05
    done
}

# Starts a helper program of the desktop in a session of its own, so that an interrupt typed at the terminal reaches
# it only through our clean-up; should this shell be killed outright, the kernel ends it. Its id goes into
# desktop_pids, what it prints into the named log.
desktop_daemon() {
    local log=$desktop_folder/$1.log
    shift
    setsid setpriv --pdeathsig "$desktop_last_signal" "$@" </dev/null >"$log" 2>&1 {desktop_lock}>&- &
    desktop_last_pid=$!
    desktop_pids="$desktop_last_pid $desktop_pids"
}

desktop_failed() {
    desktop_say "$1"
    tail -n 20 "$desktop_folder"/*.log >&2
    return 1
}

start_display() {
    local screen=${BRINDLECAST_SCREEN:-1920x1080x24}
    # Xvfb itself takes the first free number and tells it.
    desktop_daemon display sh -c 'exec Xvfb -displayfd 3 -screen 0 "$1" +extension Composite +extension RENDER \
        -noreset -nolisten tcp 3>"$2/number"' sh "$screen" "$desktop_folder"
    poll 15 test -s "$desktop_folder/number" || { desktop_failed "the display did not start"; return 1; }
    DISPLAY=:$(cat "$desktop_folder/number")
    export DISPLAY
    unset WAYLAND_DISPLAY XAUTHORITY
    poll 15 xdpyinfo >/dev/null 2>&1 || { desktop_failed "the display does not answer"; return 1; }
    # Without a compositor layered windows are opaque.
    desktop_daemon compositor xcompmgr
}

start_sound() {
    local socket=$desktop_folder/pulse.sock
    mkdir -m 700 "$desktop_folder/pulse_home" "$desktop_folder/pulse_run"
    desktop_daemon sound env -u PULSE_SERVER HOME="$desktop_folder/pulse_home" XDG_RUNTIME_DIR="$desktop_folder" \
        PULSE_RUNTIME_PATH="$desktop_folder/pulse_run" \
        pulseaudio -n --daemonize=no --exit-idle-time=-1 --use-pid-file=no \
        -L "module-native-protocol-unix auth-anonymous=1 socket=$socket" \
        -L "module-null-sink sink_name=null0 format=s16le rate=48000 channels=2" -L module-always-sink
    export PULSE_SERVER=unix:$socket PULSE_RUNTIME_PATH=$desktop_folder/pulse_run
    poll 15 pactl info >/dev/null 2>&1 || { desktop_failed "the sound server did not start"; return 1; }
}

# A server that stays saves a second at each start of a program.
start_wine() {
    wine_environment "$1"
    export PATH=${wine_program%/*}:$PATH
    make_prefix "$1" || return
    # This signal makes it end the programs first.
    desktop_last_signal=INT desktop_daemon wineserver "$wine_server" -f -p
    desktop_wine_started=yes
}

# desktop_kill PID…: asks, waits up to five seconds, then insists.
desktop_kill() {
    local pid
    for pid in "$@"; do
        kill "$pid" 2>/dev/null
    done
    for pid in "$@"; do
        poll 5 desktop_gone "$pid" || kill -KILL "$pid" 2>/dev/null
        wait "$pid" 2>/dev/null
    done
}

desktop_gone() {
    ! kill -0 "$1" 2>/dev/null || [ "$(cut -d')' -f2 "/proc/$1/stat" 2>/dev/null | cut -c2)" = Z ]
}

desktop_stop() {
    trap '' INT TERM HUP
    [ -n "${desktop_command_pid:-}" ] && desktop_kill "$desktop_command_pid"
    [ -n "${desktop_record_pids:-}" ] && desktop_record_stop
    if [ -n "${desktop_wine_started:-}" ]; then
        # Ends every program of the prefix, and then itself.
        timeout 10 "$wine_server" -k || timeout 5 "$wine_server" -k9
    fi
    # shellcheck disable=SC2086
    desktop_kill $desktop_pids
    desktop_pids=
    rm -rf "$desktop_folder"
}

# run_on_desktop COMMAND…: in the background, so that a signal to us is acted on at once.
run_on_desktop() {
    local result guard=()
    # A program ends with us even when we are killed outright; a function of the script can't be told so.
    [ "$(type -t "$1")" = file ] && guard=(setpriv --pdeathsig TERM)
    "${guard[@]}" "$@" <&0 {desktop_lock}>&- &
    desktop_command_pid=$!
    wait "$desktop_command_pid"
    result=$?
    desktop_command_pid=
    return "$result"
}

with_desktop() {
    local name=$1 prefix
    shift
    [ "${1:-}" = -- ] && shift
    [ $# -gt 0 ] || { desktop_say "usage: with_desktop NAME -- COMMAND…"; exit 2; }
    find_wine || exit
    prefix=$brindlecast_root/build/wine/$name
    mkdir -p "$brindlecast_root/build/wine"
    exec {desktop_lock}>"$prefix.lock"
    flock -n "$desktop_lock" || { desktop_say "waiting for another desktop named $name"; flock "$desktop_lock"; }
    [ "${desktop_fresh_prefix:-no}" = no ] || rm -rf "$prefix"
    desktop_pids='' desktop_wine_started='' desktop_command_pid='' desktop_record_pids=''
    desktop_folder=$(mktemp -d "${TMPDIR:-/tmp}/brindlecast.XXXXXX") || exit
    export desktop_folder
    trap desktop_stop EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
    start_display && start_sound && start_wine "$prefix" || exit
    run_on_desktop "$@"
    exit
}

# desktop_screenshot FILE.png
desktop_screenshot() {
    import -silent -window root "$1"
}

# desktop_record_start FILE.raw: s16le, 48000 Hz, stereo, of everything the programs play, from now on. FILE.raw.start
# gets the time of the first sample in seconds since 1970. Returns once sound (or silence) flows.
desktop_record_start() {
    local file=$1
    rm -f "$file" "$file.start"
    parec -d null0.monitor --format=s16le --rate=48000 --channels=2 --latency-msec=20 --raw \
        > >(exec "$(native_tool stamp_sound)" "$file") &
    desktop_record_pids=$!
    desktop_record_file=$file
    poll 10 test -s "$file.start" || { desktop_say "nothing arrives from the sound server"; return 1; }
}

# Ends the recording and returns when its file is complete.
desktop_record_stop() {
    # shellcheck disable=SC2086
    desktop_kill $desktop_record_pids
    desktop_record_pids=
    poll 5 test -e "$desktop_record_file.end" || { desktop_say "the recording was not completed"; return 1; }
}
