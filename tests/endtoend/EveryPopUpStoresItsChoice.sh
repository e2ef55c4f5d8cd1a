#!/bin/bash
# An item of each pop-up is chosen with the mouse; the domain, or for the decoder's threads the override record, follows.
# Another process's entry in the record stays.
source "$(dirname "$0")/session.sh"

start_session_with_pane
print_stores "Before any choice"

choose_item presentationDemosaic 3
expect stored 8bitDebayer 3
expect stored ColorProcessingPath $((0x3002E))
echo "presentationDemosaic, item 3: 8bitDebayer is 3, ColorProcessingPath $(stored ColorProcessingPath)"

choose_item renderDemosaic 2
expect stored RenderDebayer 2
expect stored ColorProcessingPath $((0x23002E))
echo "renderDemosaic, item 2: RenderDebayer is 2, ColorProcessingPath $(stored ColorProcessingPath)"

print_stores "After the choice of demosaic methods"

before=$(stored MaxEncodeThreads)
choose_item encodeThreads 0 "$(cores)"
expect stored MaxEncodeThreads 0
echo "encodeThreads, item 1: MaxEncodeThreads was $before, is 0"

expect overridden CPUM absent
choose_item decodeThreads 1 $(($(cores) + 1))
expect overridden CPUM 1
keep_picture pane-with-chosen-items

# The codec, in another process, adds to the record meanwhile.
sed -i 's|</dict>|<key>GAIN</key><integer>-3</integer></dict>|' "$record_file"
expect overridden GAIN -3
choose_item decodeThreads 0 $(($(cores) + 1))
expect overridden CPUM 0
expect overridden GAIN -3
click_control filter422To444
expect overridden CLSF 1
expect overridden GAIN -3
echo "decodeThreads, items 1 and All: CPUM was absent, then 1, then 0"

print_stores "After a choice in every pop-up"
