#!/bin/bash
# Typing enables the OK and Undo of that field alone. OK stores the text, Undo puts back what OK last stored.
source "$(dirname "$0")/session.sh"

# A pair of a field and its buttons, then the pair that must stay as it is.
edit() { # key, field, OK, Undo, the other OK, the other Undo, picture
    local key=$1 field=$2 ok=$3 undo=$4 other_ok=$5 other_undo=$6 before ok_before undo_before other_before
    before=$(stored "$key")
    ok_before=$(look_of "$ok") undo_before=$(look_of "$undo")
    other_before="$(look_of "$other_ok") $(look_of "$other_undo")"

    type_into "$field" "/srv/$key <&> 1"
    keep_picture "$7"
    [[ $(look_of "$ok") != "$ok_before" ]] || fail "typing into $field left $ok as it was"
    [[ $(look_of "$undo") != "$undo_before" ]] || fail "typing into $field left $undo as it was"
    expect_same "the other pair's buttons" "$(look_of "$other_ok") $(look_of "$other_undo")" "$other_before"
    expect_same "$key before OK" "$(stored "$key")" "$before"

    click_control "$ok"
    expect stored "$key" "\"/srv/$key <&> 1\""
    settle
    expect_same "$undo after OK" "$(look_of "$undo")" "$undo_before"

    type_into "$field" "never kept"
    click_control "$undo"
    settle
    expect_same "$undo after Undo" "$(look_of "$undo")" "$undo_before"
    expect_same "$key after Undo" "$(stored "$key")" "\"/srv/$key <&> 1\""
    # What Undo has put back is what the next OK stores.
    type_over_and_confirm "$field" "$ok"
    expect stored "$key" "\"/srv/$key <&> 12\""
    echo "$field: $key was $before, then $(stored "$key")"
}

# Appends one character to what a field shows and confirms.
type_over_and_confirm() { # field, OK
    local x y width height
    find_control "$1"
    click $((x + width / 2)) $((y + height / 2))
    xdotool key End type 2
    settle
    click_control "$2"
}

start_session_with_pane
# The defaults of both folders reach the file with the first click.
click_control fmtRGB8Bit
expect stored FormatRGB8 false
print_stores "Before any typing"
edit LUTsPath _LUTsPath _LUTsOK _LUTsUndo _overrideOK _overrideUndo pane-with-an-edited-look-up-table-folder
edit OverridePath _overridePath _overrideOK _overrideUndo _LUTsOK _LUTsUndo pane-with-an-edited-override-folder
print_stores "After both folders were edited"
