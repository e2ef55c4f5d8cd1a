#!/bin/bash
# The pane of users of each language, kept as pictures: no two show the same. A language that the pane doesn't speak
# gets English.
source "$(dirname "$0")/pictures.sh"

start_session
declare -A picture_in
for language in English German French Spanish Japanese Italian; do
    defaults write NSGlobalDomain NSLanguages "($language)"
    open_host
    open_pane
    take_picture_of_pane "$VANTREL_PICTURES/pane-in-$language.png"
    picture_in[$language]=$(convert "$VANTREL_PICTURES/pane-in-$language.png" rgb:- | cksum)
    close_host
done
expect_same "the pane in Italian" "${picture_in[Italian]}" "${picture_in[English]}"
unset 'picture_in[Italian]'
expect_same "different pictures" "$(printf '%s\n' "${picture_in[@]}" | sort -u | wc -l)" 5
