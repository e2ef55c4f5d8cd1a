# shellcheck shell=bash
# What an end-to-end test needs beyond a desktop of its own: GNUstep folders of its own, controls by their outlets'
# names, what is stored, and expectations that say what they saw.
#
# A test is a script that sources this file and runs with VANTREL_BUNDLE, the bundle to open, and VANTREL_PICTURES, the
# folder for its pictures, in the environment.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/desktop.sh"

# A desktop whose user has our pane and nothing else: no settings, no overrides.
start_session() {
    # Alerts and the host are known by their English titles, whatever the language of who runs the test.
    unset LANGUAGE LANGUAGES LC_MESSAGES
    export LC_ALL=C.UTF-8
    start_desktop
    local home=$scratch/home
    record_file=$home/Library/ApplicationSupport/Vantrel/OverrideMetadata.plist
    "$endtoend_folder/../gnustep-home.sh" "$home"
    export GNUSTEP_CONFIG_FILE=$home/GNUstep.conf
    mkdir -p "$home/Defaults" "$home/Library/Bundles"
    defaults_file=$(settings_file)
    cp -R "$VANTREL_BUNDLE" "$home/Library/Bundles/"
}

# A session with the pane open in the host.
start_session_with_pane() {
    start_session
    open_host
    open_pane
}

# A picture for people, named after what it shows.
keep_picture() { # name
    take_picture "$VANTREL_PICTURES/$1.png"
}

# Controls

# Sets x, y, width and height to a control's frame on the display.
find_control() { # outlet, or outlet/row of a radio matrix
    [[ -n ${frames_x[$1]:-} ]] || fail "the interface file has no control $1"
    measure "$host_window"
    x=$((x + box_left + frames_x[$1]))
    y=$((y + height - box_bottom - frames_height[view] + frames_y[$1]))
    width=${frames_width[$1]} height=${frames_height[$1]}
}

click_control() { # outlet, or outlet/row of a radio matrix
    local x y width height
    find_control "$1"
    click $((x + width / 2)) $((y + height / 2))
}

# Chooses an item of a pop-up as a hand does: press, move, release.
choose_item() { # outlet, index, number of items if the interface file doesn't tell it
    local x y width height count=${3:-${items[$1]}}
    find_control "$1"
    windows_before=$(visible_windows)
    pointer_x=$((x + width / 2)) pointer_y=$((y + height / 2))
    xdotool mousemove "$pointer_x" "$pointer_y"
    settle
    xdotool mousedown 1
    wait_until "the menu of $1" find_menu
    wait_until "the menu of $1 to be drawn" display_stands_still
    measure "$menu"
    xdotool mousemove $((x + width / 2)) $((y + height * (2 * $2 + 1) / (2 * count)))
    wait_until "the mark on item $2 of $1" display_stands_still
    xdotool mouseup 1
    wait_until "the end of the menu of $1" window_is_gone "$menu"
}

# Sets menu to the window that was not there when windows_before was taken and now lies under the pointer. A tool tip
# lies beside it.
find_menu() {
    local x y width height
    for menu in $(comm -13 <(echo "$windows_before") <(visible_windows)); do
        measure "$menu"
        ((x <= pointer_x && pointer_x < x + width && y <= pointer_y && pointer_y < y + height)) && return
    done
    return 1
}

# Whether two pictures taken one after the other are the same. An open menu never sleeps: it follows the pointer by the
# clock.
display_stands_still() {
    local before
    before=$(import -silent -window root rgb:- | cksum)
    sleep 0.1
    [[ $(import -silent -window root rgb:- | cksum) == "$before" ]]
}

# Replaces the text of a field, as typed on the keyboard.
type_into() { # outlet, text
    local x y width height
    find_control "$1"
    xdotool mousemove $((x + width / 2)) $((y + height / 2)) click --repeat 3 --delay 60 1
    settle
    xdotool type --delay 30 -- "$2"
    settle
}

visible_windows() { xdotool search --onlyvisible --class GNUstep 2>/dev/null | sort; }

# Sets alert to the window of the alert that is shown.
find_alert() { alert=$(xdotool search --onlyvisible --name '^Alert$' 2>/dev/null) && [[ -n $alert ]]; }

window_is_gone() { # window
    ! visible_windows | grep -qx "$1"
}

# A number that stands for what a control looks like at this moment.
look_of() { # outlet
    local x y width height
    find_control "$1"
    import -silent -window root -crop "${width}x$height+$x+$y" rgb:- | cksum
}

# What is stored

# A key's value with its type to be seen: true, 1, 1.0, "1", or absent.
stored() { # key
    /usr/bin/python3 "$endtoend_folder/stored.py" "$defaults_file" "$1"
}

# The same of the override record.
overridden() { # key
    /usr/bin/python3 "$endtoend_folder/stored.py" "$record_file" "$1"
}

stored_keys() { /usr/bin/python3 "$endtoend_folder/stored.py" "$defaults_file"; }

print_stores() { # when
    echo "$1, the domain $domain:"
    defaults read "$domain" 2>/dev/null | sed 's/^/    /' || echo "    nothing"
    echo "$1, the override record:"
    /usr/bin/python3 "$endtoend_folder/stored.py" --all "$record_file" | sed 's/^/    /'
}

# Expectations

# Waits until a key of the domain or of the override record holds a value.
expect() { # stored or overridden, key, value
    local seen end=$((SECONDS + patience))
    until
        seen=$("$1" "$2")
        [[ $seen == "$3" ]]
    do
        ((SECONDS < end)) || fail "$2 is $seen, not $3"
        sleep 0.05
    done
}

expect_same() { # what, seen, expected
    [[ $2 == "$3" ]] || fail "$1: $2, not $3"
}

# The number of physical cores as the pane's pop-ups offer them, 1 to 32.
cores() {
    local count
    count=$(lscpu --online --parse=Core,Socket | grep -v '^#' | sort -u | wc -l)
    echo $((count < 1 ? 1 : count > 32 ? 32 : count))
}
