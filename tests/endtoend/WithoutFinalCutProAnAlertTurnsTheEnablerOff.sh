#!/bin/bash
# Where no Final Cut Pro is installed, a click on the enabler shows an alert, whichever way it goes. When the alert is
# dismissed, the check box is off and the key is as it was.
source "$(dirname "$0")/session.sh"

[[ ! -e "/Applications/Final Cut Pro.app" ]] || fail "this machine has a Final Cut Pro, so there is no alert to see"

# Clicks the enabler, looks at the alert and dismisses it with its only button, in the bottom right corner.
click_and_dismiss() { # picture
    local x y width height
    click_control fcpRTEnable
    wait_until "the alert" find_alert
    settle
    keep_picture "$1"
    measure "$alert"
    click $((x + width - 45)) $((y + height - 22))
    wait_until "the end of the alert" window_is_gone "$alert"
    settle
}

start_session
defaults write "$domain" fcpRTEnableSwap '<*BY>'
expect stored fcpRTEnableSwap true
open_host
open_pane
on=$(look_of fcpRTEnable)

click_and_dismiss alert-without-Final-Cut-Pro
off=$(look_of fcpRTEnable)
[[ $off != "$on" ]] || fail "the check box is still on after its switch-off was refused"
expect_same "fcpRTEnableSwap after a refused switch-off" "$(stored fcpRTEnableSwap)" true
echo "Switching off: alert shown and dismissed, check box off, fcpRTEnableSwap is $(stored fcpRTEnableSwap)"

click_and_dismiss alert-without-Final-Cut-Pro-again
expect_same "the check box after a refused switch-on" "$(look_of fcpRTEnable)" "$off"
expect_same "fcpRTEnableSwap after a refused switch-on" "$(stored fcpRTEnableSwap)" true
echo "Switching on: alert shown and dismissed, check box off, fcpRTEnableSwap is $(stored fcpRTEnableSwap)"
keep_picture pane-after-the-alert
