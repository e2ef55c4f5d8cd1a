#!/bin/bash
# Each check box but the enabler's is clicked twice with the mouse; its key follows each click.
source "$(dirname "$0")/session.sh"

# Clicks a check box and expects its new value, then the same back.
click_twice() { # stored or overridden, key, outlet, value after the first click, value after the second
    local before
    before=$("$1" "$2")
    click_control "$3"
    expect "$1" "$2" "$4"
    [[ -z ${6:-} ]] || keep_picture "$6"
    click_control "$3"
    expect "$1" "$2" "$5"
    echo "$3: $2 was $before, then $4, then $5"
}

start_session_with_pane
print_stores "Before any click"

click_twice stored FormatRGB8 fmtRGB8Bit false true pane-with-8-bit-RGB-off
click_twice stored FormatRGB16 fmtRGB16Bit false true
click_twice stored FormatRGB32 fmtRGB32Bit false true
click_twice stored FormatYUV8 fmtYUV8Bit false true
click_twice stored FormatYUV16 fmtYUV16Bit false true
click_twice stored FormatYUV32 fmtYUV32Bit false true
click_twice stored FormatYUV8A fmtYUV8BitA false true
click_twice stored FCPForceLetterBox fmtFCPLetterbox false true
click_twice stored PProCS5HasMovieSetup cs5SourceSettings false true
expect stored FormatDualStream3D absent
click_twice stored FormatDualStream3D fmtDualStream3D true false
click_twice stored ShowStereoStatusMenu _showStereoStatus false true

# Each stage has a bit beside its flag. Switching one on sets bit 0 as well, which then stays.
path=$((0x2E))
for stage in colorMatrix=0x2 whiteBalance=0x4 look=0x8 gamma=0x20; do
    outlet=${stage%=*} bit=${stage#*=}
    expect stored ColorProcessingPath $path
    click_control "$outlet"
    expect stored "$outlet" false
    expect stored ColorProcessingPath $((path & ~bit))
    click_control "$outlet"
    expect stored "$outlet" true
    expect stored ColorProcessingPath $((path | bit | 1))
    echo "$outlet: ColorProcessingPath was $path, then $((path & ~bit)), then $((path | bit | 1))"
    path=$((path | bit | 1))
done

expect overridden CLSF absent
click_twice overridden CLSF filter422To444 1 0

print_stores "After every check box was clicked twice"
keep_picture pane-after-the-check-boxes
