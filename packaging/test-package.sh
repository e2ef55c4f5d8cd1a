#!/bin/bash
# Installs the packages in a fresh Debian tree that has nothing but what they depend on, opens the pane there as an
# ordinary user, takes the packages away again, and expects nothing left but that user's settings.
#
#   test-package.sh PACKAGES PICTURES TREES
#
# PACKAGES is the folder with the packages, PICTURES that for the pictures, TREES keeps what makes the tree.
source "$(dirname "${BASH_SOURCE[0]}")/host-in-tree.sh"
packages=$1 VANTREL_PICTURES=$2 tree_cache=$3
enter_own_namespace "$@"

readonly names=(vantrel-prefpane libkvrxmetadatadictionary1)

# Every file with what an installation could change of it. Package management's own records are left out.
files_of_tree() {
    (
        cd "$tree"
        find . -xdev \( -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/log -o -path ./var/cache \
            -o -path ./etc/ld.so.cache \) -prune \
            -o -type d -printf '%p %y %m %U %G\n' -o -printf '%p %y %m %U %G %s %T@ %l\n' | LC_ALL=C sort
    )
}

installed() { in_tree dpkg-query --show --showformat "\${db:Status-Status} \${Package}\n" | grep -v '^not-installed'; }

debs=()
for name in "${names[@]}"; do debs+=("$(realpath "$packages/$name"_*.deb)"); done
make_tree "$(dpkg-deb --field "${debs[0]}" Architecture)" "$(depends_of "${debs[@]}")"
files_before=$(files_of_tree)
installed_before=$(installed)

cp "${debs[@]}" "$tree/tmp"
in_tree apt-get --quiet --yes --no-install-recommends install "${debs[@]/#*\//\/tmp\/}"
in_tree dpkg --verify "${names[@]}"
in_tree ldconfig -p | grep libKVRXMetadataDictionary.so.1
click_in_tree package-in-a-fresh-tree
settings=$(<"$defaults_file")

in_tree apt-get --quiet --yes purge "${names[@]}"
expect_same "the installed packages" "$(installed)" "$installed_before"
expect_same "the settings" "$(<"$defaults_file")" "$settings"
left=$(comm -13 <(echo "$files_before") <(files_of_tree))
echo "Left after the packages have gone:"
echo "    ${left//$'\n'/$'\n    '}"
lost=$(comm -23 <(echo "$files_before") <(files_of_tree))
expect_same "lost or changed" "$lost" ""
expect_same "left outside the user's GNUstep folder" "$(grep -v "^\./home/$editor/GNUstep[/ ]" <<<"$left" || true)" ""
