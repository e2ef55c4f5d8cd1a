#!/bin/bash
# Runs the bundle's tests on a desktop of their own, which ends every process that they leave behind: the daemon that
# carries notifications, for one.
set -euo pipefail
source "$(dirname "$0")/../endtoend/desktop.sh"

start_desktop
"$@"
