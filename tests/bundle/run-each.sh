#!/bin/bash
# Runs a program's tests on a desktop of their own, each in a process of its own.
set -euo pipefail
source "$(dirname "$0")/../endtoend/desktop.sh"

start_desktop
GTEST_TOTAL_SHARDS=$("$1" --gtest_list_tests | grep -c '^  ')
export GTEST_TOTAL_SHARDS
failed=0
for ((GTEST_SHARD_INDEX = 0; GTEST_SHARD_INDEX < GTEST_TOTAL_SHARDS; ++GTEST_SHARD_INDEX)); do
    export GTEST_SHARD_INDEX
    "$1" || failed=1
done
exit "$failed"
