#!/bin/bash
# Installs the command's package in a fresh Debian tree that has nothing but what it depends on, uses it there as an
# ordinary user, and takes it away again.
#
#   test-command-package.sh PACKAGES TREES
#
# PACKAGES is the folder with the packages, TREES keeps what makes the tree.
source "$(dirname "${BASH_SOURCE[0]}")/tree.sh"
packages=$1 tree_cache=$2
enter_own_namespace "$@"

readonly names=(vantrelctl libkvrxmetadatadictionary1)

installed() { in_tree dpkg-query --show --showformat "\${db:Status-Status} \${Package}\n"; }

expect_same() { # what, what it is, what it should be
    [[ $2 == "$3" ]] && return
    printf '%s is\n%s\ninstead of\n%s\n' "$@" >&2
    exit 1
}

debs=()
for name in "${names[@]}"; do debs+=("$(realpath "$packages/$name"_*.deb)"); done
make_tree "$(dpkg-deb --field "${debs[0]}" Architecture)" "$(depends_of "${debs[@]}")"
before=$(installed)

cp "${debs[@]}" "$tree/tmp"
in_tree apt-get --quiet --yes --no-install-recommends install "${debs[@]/#*\//\/tmp\/}"
in_tree dpkg --verify "${names[@]}"
expect_same "what a window needs" "$(installed | grep -E ' (lib(gnustep-gui|x11-6|cairo2|gtk|wayland)|gnustep-back|x11-)' || true)" ""
in_tree test -s /usr/share/man/man1/vantrelctl.1.gz
in_tree bash -euc 'source /usr/share/bash-completion/completions/vantrelctl && complete -p vantrelctl'

expect_same "a setting" "$(as_editor vantrelctl set look off CLSF on ShowStereoStatusMenu off)" \
    "look: missing -> off
CLSF: missing -> on
ShowStereoStatusMenu: missing -> off"
expect_same "what is wrong" "$(as_editor vantrelctl doctor)" ""
as_editor vantrelctl export >"$tree/tmp/profile"
rm -r "$tree/home/$editor/GNUstep"
expect_same "a profile's last line" "$(as_editor vantrelctl apply /tmp/profile | tail -n 1)" "4 changed, 0 unchanged"
as_editor vantrelctl list

in_tree apt-get --quiet --yes purge "${names[@]}"
expect_same "the installed packages" "$(installed | grep -v ^not-installed)" "$before"
