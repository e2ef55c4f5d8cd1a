#!/bin/bash
# A user without settings opens the pane: what is synchronised while it opens is in the file, and nothing else. The rest
# follows with the first click.
source "$(dirname "$0")/session.sh"

synchronised="FCPForceLetterBox FCPGammaCorrection FormatRGB16 FormatRGB32 FormatRGB8 FormatYUV16 FormatYUV32 FormatYUV8
FormatYUV8A QTGammaCorrection ShowStereoStatusMenu colorMatrix gamma look whiteBalance ColorProcessingPath"
with_the_next_click="LUTsPath OverridePath PProCS5HasMovieSetup fcpRTEnableSwap"
# The default of eight encoder threads is stored only where the machine lowers it.
(($(cores) < 8)) && synchronised+=" MaxEncodeThreads"

sorted() { tr -s ' \n' '\n' <<<"$*" | LC_ALL=C sort; }

start_session_with_pane
keep_picture pane-at-rest
expect_same "the keys after the pane has opened" "$(stored_keys | LC_ALL=C sort)" "$(sorted "$synchronised")"
for key in FormatRGB8 FormatRGB16 FormatRGB32 FormatYUV8 FormatYUV8A FormatYUV16 FormatYUV32 FCPForceLetterBox \
    ShowStereoStatusMenu colorMatrix whiteBalance look gamma; do
    expect stored $key true
done
expect stored QTGammaCorrection 0
expect stored FCPGammaCorrection 0
expect stored ColorProcessingPath $((0x2E))
(($(cores) < 8)) && expect stored MaxEncodeThreads $(($(cores) - 1))
expect_same "the file's mode" "$(stat -c %a "$defaults_file")" 600
[[ ! -e $record_file ]] || fail "opening the pane wrote the override record"
print_stores "After the pane has opened"

click_control fmtRGB8Bit
expect stored FormatRGB8 false
expect_same "the keys after the first click" "$(stored_keys | LC_ALL=C sort)" \
    "$(sorted "$synchronised $with_the_next_click")"
expect stored fcpRTEnableSwap false
expect stored PProCS5HasMovieSetup true
print_stores "After the first click"
