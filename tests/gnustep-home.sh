#!/bin/bash
# Leads GNUstep away from the real home: writes a configuration file FOLDER/GNUstep.conf with which a user's Defaults and
# Library are in FOLDER. GNUstep ignores $HOME; a test names this file in GNUSTEP_CONFIG_FILE.
#
#   gnustep-home.sh FOLDER
set -euo pipefail

mkdir -p "$1"
{
    cat /etc/GNUstep/GNUstep.conf
    echo "GNUSTEP_USER_CONFIG_FILE=$1/none"
    echo "GNUSTEP_USER_DEFAULTS_DIR=$1/Defaults"
    echo "GNUSTEP_USER_DIR_LIBRARY=$1/Library"
} >"$1/GNUstep.conf"
