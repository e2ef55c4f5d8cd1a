#!/bin/bash
# Another process observes the notification of the stereo status menu. It hears nothing while the pane opens and then
# once for each click, when the domain already holds the new value.
source "$(dirname "$0")/session.sh"

start_session
stereo_observer=$VANTREL_STEREO_OBSERVER
heard=$scratch/heard
"$stereo_observer" >"$heard" &
wait_until "the observer" grep -qs "Observing" "$heard"
open_host
open_pane

heard_lines() { (($(wc -l <"$heard") >= $1)); }

line=1
for value in false true false; do
    click_control _showStereoStatus
    expect stored ShowStereoStatusMenu $value
    line=$((line + 1))
    wait_until "notification $((line - 1))" heard_lines $line
done
# A notification too many, or one sent while the pane opened, would stand between these lines.
cat "$heard"
expect_same "what the observer heard" "$(tail -n +2 "$heard")" "\
StereoStatusMenuViewChanged from com.vantrel.PreferencePane: ShowStereoStatusMenu is 0
StereoStatusMenuViewChanged from com.vantrel.PreferencePane: ShowStereoStatusMenu is 1
StereoStatusMenuViewChanged from com.vantrel.PreferencePane: ShowStereoStatusMenu is 0"
expect_same "log lines of the clicks" "$(grep -c 'post notification$' "$scratch/host.log")" 3
