#!/bin/bash
# The first control has the keyboard when the pane opens; Tab goes on from there through all others, in the order in
# which they are read; space and the arrow keys change what they reach.
source "$(dirname "$0")/pictures.sh"

press() { # keys
    local key
    for key; do
        xdotool key "$key"
        settle
    done
}

start_session_with_pane
keep_picture pane-with-keyboard-on-first-control

for key in FormatRGB8 FormatRGB16 FormatRGB32 FormatDualStream3D FormatYUV8 FormatYUV16 FormatYUV32 FormatYUV8A \
    FCPForceLetterBox; do
    before=$(stored $key)
    press space
    if [[ $before == true ]]; then expect stored $key false; else expect stored $key true; fi
    press Tab
done

# The real-time enabler would need Final Cut Pro.
press Tab space
expect stored PProCS5HasMovieSetup false
press Tab Down
expect stored QTGammaCorrection 1
press Up
expect stored QTGammaCorrection 0
press Tab Down
expect stored FCPGammaCorrection 1

for key in whiteBalance colorMatrix look gamma; do
    press Tab space
    expect stored $key false
done

press Tab space Down Down space
expect stored 8bitDebayer 2
press Tab space Down space
expect stored RenderDebayer 1

press Tab space
expect overridden CLSF 1
press Tab space Up space
expect stored MaxEncodeThreads $(($(cores) > 8 ? 6 : $(cores) > 1 ? $(cores) - 2 : 0))
press Tab space Down space
expect overridden CPUM 1

# The buttons of a field take part once there is something to confirm.
press Tab
xdotool type --delay 30 /luts
press Tab space
expect stored LUTsPath '"/luts"'
press Tab
xdotool type --delay 30 /overrides
press Tab Tab space
press Tab space
expect stored ShowStereoStatusMenu false
keep_picture pane-after-the-keyboard
press Tab space
expect stored FormatRGB8 true
