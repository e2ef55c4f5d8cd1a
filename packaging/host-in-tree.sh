# shellcheck shell=bash
# The settings host in a Debian tree, on a desktop outside it, as a library for bash: the end-to-end tests' library with
# the folders and the host of the tree.
source "$(dirname "${BASH_SOURCE[0]}")/tree.sh"
source "$(dirname "${BASH_SOURCE[0]}")/../tests/endtoend/session.sh"

# The host that desktop.sh opens.
SystemPreferences() {
    as_editor SystemPreferences
}

# The folders as desktop.sh asks for them.
gnustep_folder() { # USER, LOCAL or SYSTEM
    case $1 in
        USER) echo "$tree/home/$editor/GNUstep/Library" ;;
        LOCAL) echo "$tree/usr/local/lib/GNUstep" ;;
        SYSTEM) echo "$tree/usr/lib/GNUstep" ;;
    esac
}

# Opens the pane in the tree, for a user without settings.
open_pane_in_tree() {
    start_desktop
    open_display_to_tree
    defaults_file=$tree/home/$editor/GNUstep/Defaults/$domain.plist
    record_file=$tree/home/$editor/GNUstep/Library/ApplicationSupport/Vantrel/OverrideMetadata.plist
    [[ ! -e $defaults_file ]] || fail "the user has settings before the pane has been opened"
    open_host
    open_pane
}

# Opens the pane in the tree, clicks a check box of the settings and one of the override metadata, expects their values in
# the user's files, and keeps a picture.
click_in_tree() { # picture
    open_pane_in_tree
    expect stored FormatRGB8 true
    click_control fmtRGB8Bit
    expect stored FormatRGB8 false
    click_control filter422To444
    expect overridden CLSF 1
    settle
    keep_picture "$1"
    sed 's/^/    /' "$defaults_file"
    close_host
}
