#!/bin/bash
# Each row of both gamma groups is clicked with the mouse; the key holds the row.
source "$(dirname "$0")/session.sh"

start_session_with_pane
print_stores "Before any click"
for group in QTGammaCorrection=fmtQTGamma FCPGammaCorrection=fmtFCPGamma; do
    key=${group%=*} outlet=${group#*=}
    for row in 1 0 1; do
        before=$(stored "$key")
        click_control "$outlet/$row"
        expect stored "$key" $row
        echo "$outlet, row $row: $key was $before, is $(stored "$key")"
    done
done
print_stores "After every row was clicked"
keep_picture pane-with-second-gamma-rows
