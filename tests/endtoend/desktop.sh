# shellcheck shell=bash disable=SC2034 # what it sets is for those who source it
# A desktop of our own, with the settings host on it, as a library for bash.
#
#   start_desktop   a virtual display with a window manager, told to all that is started afterwards
#   open_host       the settings host; its windows go to $DISPLAY
#   close_host      ends it
#   open_pane       a click on our icon in the host
#   take_picture    what the display shows, as a file
#   tell_settings   where the user's settings are and what they hold
#   end_desktop     ends every process of this desktop and removes its scratch folder; runs on every exit
#
# Whatever can be watched is waited for by watching it. A wait that takes too long ends the script with status 1 and a
# line that says what was waited for.

# The host's window, measured: its box begins below the bar with "Show All" and holds icons in rows of seven.
readonly box_left=12 box_top=46 box_bottom=12
readonly icon_width=80 icon_height=87 icons_in_a_row=7 icon_middle=32
readonly icons_height=356 host_height=414
readonly pane_label=Vantrel domain=com.vantrel.codec
# Seconds to wait for what a quiet machine does at once.
readonly patience=30

endtoend_folder=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
interface_file=$(realpath "$endtoend_folder/../../Preference/Vantrel/Resources/VantrelPref.xib")
readonly endtoend_folder interface_file

# Ends the script with status 1, a line that says why, what the desktop's programs said last and, where pictures are
# kept, a picture of that moment.
fail() {
    local script=${BASH_SOURCE[-1]##*/}
    echo "$script: $*" >&2
    [[ -z ${host_window:-} || -z ${VANTREL_PICTURES:-} ]] ||
        take_picture "$VANTREL_PICTURES/${script%.sh}-failed.png" >&2
    tail -n 5 "$scratch"/*.log >&2 || true
    exit 1
}

# Runs a command again and again until it succeeds; after `patience` `what` is told and the script ends. Once a second the
# host is stirred.
wait_until() { # what, command and its arguments
    local what=$1 end=$((SECONDS + patience)) tries=0
    shift
    until "$@"; do
        ((SECONDS < end)) || fail "waited in vain for $what"
        ((++tries % 20)) || [[ -z ${host_process:-} ]] || stir
        sleep 0.05
    done
}

# What the host is sent while it draws can lie in its queue until something else happens: the pointer moves by a point.
stir() {
    xdotool mousemove_relative -- $((direction = -direction)) 0
}
direction=-1

start_desktop() {
    scratch=$(mktemp -d "${TMPDIR:-/tmp}/vantrel.XXXXXX")
    trap end_desktop EXIT
    trap 'exit 130' INT TERM HUP

    # GNUstep keeps the sockets between its processes in this folder, so that this desktop has a notification daemon of
    # its own. The variable also marks the processes that belong to this desktop, daemons included.
    mkdir -m 700 "$scratch/sockets"
    export TEMP=$scratch/sockets XDG_CONFIG_HOME=$scratch XDG_CACHE_HOME=$scratch

    # -noreset: a display starts afresh when its last program leaves it, and loses who arrives at that moment.
    # -dumbSched: the cleverer scheduler's clock sometimes goes on ticking when all is done, and is never at rest.
    Xvfb -displayfd 3 -screen 0 1024x1000x24 -nolisten tcp -noreset -dumbSched \
        3>"$scratch/display" 2>"$scratch/Xvfb.log" &
    wait_until "a display" test -s "$scratch/display"
    DISPLAY=:$(<"$scratch/display")
    export DISPLAY
    # Without a window manager clicks don't reach the host's window.
    openbox >"$scratch/openbox.log" 2>&1 &
    wait_until "the window manager" window_manager_runs
}

window_manager_runs() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q "window id"; }

# The processes that were started on this desktop, wherever they have put themselves since.
desktop_processes() {
    # All processes are listed before grep begins: it would find itself, each time anew.
    local environments=(/proc/[0-9]*/environ) found
    found=$(grep -lzsxF "TEMP=$scratch/sockets" "${environments[@]}") || true
    found=${found//\/proc\//}
    echo "${found//\/environ/}"
}

no_desktop_processes() { [[ -z $(desktop_processes) ]]; }

process_is_gone() { ! kill -0 "$1" 2>/dev/null; }

end_desktop() {
    local status=$? pid signal tries
    trap - EXIT INT TERM HUP
    # The host goes first: it would crash, noisily, on a display that has gone.
    if [[ -n ${host_process:-} ]]; then
        kill "$host_process" 2>/dev/null || true
        for ((tries = 0; tries < 40; ++tries)); do
            process_is_gone "$host_process" && break
            sleep 0.05
        done
    fi
    for signal in TERM KILL; do
        for pid in $(desktop_processes); do kill -s "$signal" "$pid" 2>/dev/null || true; done
        for ((tries = 0; tries < 40; ++tries)); do
            no_desktop_processes && break 2
            sleep 0.05
        done
    done
    rm -rf "$scratch"
    exit "$status"
}

open_host() {
    SystemPreferences >"$scratch/host.log" 2>&1 &
    host_process=$!
    wait_until "the window of the settings host" find_host_window
    settle
}

close_host() {
    kill "$host_process"
    wait "$host_process" || true
    unset host_process
}

find_host_window() {
    host_window=$(xdotool search --onlyvisible --name '^System Preferences$' 2>/dev/null) && [[ -n $host_window ]]
}

# Sets x, y, width and height to where a window is on the display, its frame not counted.
measure() { # window
    local name value
    while IFS=: read -r name value; do
        case $name in
            *"Absolute upper-left X") x=$((value)) ;;
            *"Absolute upper-left Y") y=$((value)) ;;
            *Width) width=$((value)) ;;
            *Height) height=$((value)) ;;
        esac
    done < <(xwininfo -id "$1")
}

# Waits until everything has been done and drawn, on however busy a machine.
settle() {
    wait_until_all_sleep
    stir
    wait_until_all_sleep
}

# Waits until each of the desktop's threads has slept for a tenth of a second.
wait_until_all_sleep() {
    local last="" next end=$((SECONDS + patience))
    until
        next=$(activity)
        [[ $next == "$last" && $next != *State:?[!S]* ]]
    do
        ((SECONDS < end)) || fail "the desktop does not come to rest:" "$(diff <(echo "$last") <(echo "$next"))"
        last=$next
        sleep 0.1
    done
}

# What each of the desktop's threads does, and how often it has stopped doing something.
activity() {
    local processes
    mapfile -t processes < <(desktop_processes)
    # shellcheck disable=SC2046 # a word for each process
    grep -sE '^(State|voluntary_ctxt_switches|nonvoluntary_ctxt_switches)' \
        $(printf '/proc/%s/task/*/status ' "${processes[@]}") || true
}

# The labels of all panes that the host lists, in its order.
pane_labels() {
    local library bundle
    for library in "$(gnustep_folder USER)" "$(gnustep_folder LOCAL)" "$(gnustep_folder SYSTEM)"; do
        for bundle in "$library"/Bundles/*.prefPane; do
            [[ -d $bundle ]] || continue
            plget NSPrefPaneIconLabel <"$bundle/Resources/Info-gnustep.plist"
            echo
        done
    done | LC_ALL=C sort -u
}

# Where GNUstep looks for bundles; the host itself asks the same library.
gnustep_folder() { # USER, LOCAL or SYSTEM
    gnustep-config --variable="GNUSTEP_$1_LIBRARY"
}

# The host misses a button that is released before it has seen to the press.
click() { # x, y on the display
    xdotool mousemove "$1" "$2"
    settle
    xdotool mousedown 1
    wait_until_all_sleep
    xdotool mouseup 1
}

# Clicks our icon and waits until the host's window has grown to the pane's height.
open_pane() {
    local position row column x y width height
    read_controls
    position=$(pane_labels | { grep -nx "$pane_label" || true; } | cut -d: -f1)
    [[ -n $position ]] || fail "the settings host has no pane called $pane_label"
    row=$(((position - 1) / icons_in_a_row)) column=$(((position - 1) % icons_in_a_row))
    measure "$host_window"
    click $((x + box_left + column * icon_width + icon_width / 2)) $((y + box_top + row * icon_height + icon_middle))
    wait_until "the pane" host_is_high $((host_height - icons_height + frames_height[view]))
    settle
}

# Fills the tables of the controls' frames, counted from the top left corner of the pane's view, and of their items.
declare -A frames_x frames_y frames_width frames_height items
read_controls() {
    local name x y width height count
    while read -r name x y width height count; do
        frames_x[$name]=$x frames_y[$name]=$y frames_width[$name]=$width frames_height[$name]=$height
        items[$name]=$count
    done < <(/usr/bin/python3 "$endtoend_folder/controls.py" "$interface_file")
    [[ -n ${frames_height[view]:-} ]] || fail "the interface file can't be read"
}

host_is_high() { # height of the window
    measure "$host_window"
    ((height == $1))
}

take_picture() { # file
    mkdir -p "$(dirname "$1")"
    import -silent -window root "$1"
    echo "Picture: $1"
}

tell_settings() {
    echo "Settings: $(settings_file)"
    defaults read "$domain"
}

# Where the user's settings are. GNUstep's tools have no command that tells the folder, so it is put together as its
# library does.
settings_file() {
    local folder
    folder=$(
        # shellcheck source=/dev/null
        source "${GNUSTEP_CONFIG_FILE:-/etc/GNUstep/GNUstep.conf}"
        echo "$GNUSTEP_USER_DEFAULTS_DIR"
    )
    [[ $folder == /* ]] || folder=$(getent passwd "$EUID" | cut -d: -f6)/$folder
    echo "$folder/$domain.plist"
}
