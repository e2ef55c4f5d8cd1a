#!/bin/bash
# The pane of a new user, compared with the reference picture. To make a new reference, look at the picture that this
# test keeps, and copy it.
source "$(dirname "$0")/pictures.sh"

start_session_with_pane
take_picture_of_pane "$VANTREL_PICTURES/pane-at-rest.png"
looks_like "$VANTREL_PICTURES/pane-at-rest.png" "$pictures_folder/pane-at-rest.png" ||
    fail "the pane doesn't look like its reference picture"
