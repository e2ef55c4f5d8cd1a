#!/bin/bash
# Builds the pane in a fresh Debian tree for a 32-bit processor, runs the tests of what stands on system calls, installs
# the pane there and opens it in that tree's settings host as an ordinary user.
#
#   test-i386.sh BUILD PICTURES TREES
#
# BUILD is the build folder, kept for the next time, PICTURES the folder for the pictures, TREES keeps what makes the
# tree.
source "$(dirname "${BASH_SOURCE[0]}")/host-in-tree.sh"
source "$(dirname "${BASH_SOURCE[0]}")/packages.sh"
build=$1 VANTREL_PICTURES=$2 tree_cache=$3
enter_own_namespace "$@"

packaging=$(dirname "$(realpath "$0")")
sources=$(dirname "$packaging")

make_tree i386 "$(packages_for run test | paste -sd,)"

mkdir -p "$build" "$tree/sources" "$tree/build"
mount --bind "$sources" "$tree/sources"
mount -o remount,bind,ro "$tree/sources"
mount --bind "$build" "$tree/build"
in_tree cmake -G Ninja -S /sources -B /build -D CMAKE_CXX_COMPILER=g++ -D CMAKE_BUILD_TYPE=MinSizeRel
in_tree cmake --build /build --target pane posix_tests gnustep_tests linux_tests override_record_tests
for room in posix gnustep linux; do
    in_tree "/build/tests/platform/$room/${room}_tests" --gtest_brief=1
done
in_tree /build/tests/overrides/override_record_tests --gtest_brief=1
for component in pane library; do
    in_tree cmake --install /build --prefix /usr --component "$component"
done
file=$tree/usr/lib/GNUstep/Bundles/Vantrel.prefPane/Vantrel
expect_same "the bundle's word size" "$(head --bytes 5 "$file" | od -An -tx1)" " 7f 45 4c 46 01"
click_in_tree pane-on-a-32-bit-host
