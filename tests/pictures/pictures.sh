# shellcheck shell=bash
# What the tests of how the pane looks need beyond an end-to-end session.
source "$(dirname "${BASH_SOURCE[0]}")/../endtoend/session.sh"
pictures_folder=$(dirname "$(realpath "${BASH_SOURCE[0]}")")

# A picture of the pane alone, without the host around it and without a tool tip over it.
take_picture_of_pane() { # file
    local x y width height pane_height=${frames_height[view]}
    xdotool mousemove 0 0
    settle
    measure "$host_window"
    mkdir -p "$(dirname "$1")"
    import -silent -window root -crop "570x$pane_height+$((x + box_left))+$((y + height - box_bottom - pane_height))" \
        +repage "$1"
    echo "Picture: $1"
}

looks_like() { # picture, reference
    /usr/bin/python3 -B "$pictures_folder/compare.py" "$1" "$2"
}
