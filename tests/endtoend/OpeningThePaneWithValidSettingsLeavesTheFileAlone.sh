#!/bin/bash
# A domain in which every key is valid is neither written nor replaced, while the pane opens or when the host is
# closed, which ends as it should.
source "$(dirname "$0")/session.sh"

start_session
{
    echo '<?xml version="1.0" encoding="UTF-8"?>'
    echo '<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">'
    echo '<plist version="1.0"><dict>'
    for key in FormatRGB8 FormatRGB16 FormatRGB32 FormatYUV8 FormatYUV8A FormatYUV16 FormatYUV32 FormatDualStream3D \
        FCPForceLetterBox PProCS5HasMovieSetup ShowStereoStatusMenu colorMatrix whiteBalance; do
        echo "<key>$key</key><true/>"
    done
    for key in look gamma fcpRTEnableSwap; do echo "<key>$key</key><false/>"; done
    echo "<key>ColorProcessingPath</key><integer>$((0x210007))</integer>"
    for key in QTGammaCorrection 8bitDebayer; do echo "<key>$key</key><integer>1</integer>"; done
    echo "<key>RenderDebayer</key><integer>2</integer>"
    for key in FCPGammaCorrection MaxEncodeThreads; do echo "<key>$key</key><integer>0</integer>"; done
    for key in LUTsPath OverridePath; do echo "<key>$key</key><string>/srv/$key</string>"; done
    echo '</dict></plist>'
} >"$defaults_file"

state_of_file() { stat -c 'inode %i, changed %z, %s bytes' "$defaults_file"; }

before=$(state_of_file)
open_host
open_pane
keep_picture pane-with-stored-settings
echo "Before: $before"
echo "After:  $(state_of_file)"
expect_same "the file's state with the pane open" "$(state_of_file)" "$before"

# A busy window manager may miss the key: every few seconds it is pressed again.
presses=0
key_has_closed_host() {
    process_is_gone "$host_process" && return
    ((presses++ % 100)) || xdotool key alt+F4
    return 1
}
wait_until "the end of the host" key_has_closed_host
wait "$host_process" || fail "the host ended with status $?"
expect_same "the file's state after the host has ended" "$(state_of_file)" "$before"
