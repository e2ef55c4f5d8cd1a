# shellcheck shell=bash
# Fresh Debian trees for tests that install packages, as a library for bash.
#
#   enter_own_namespace   runs the script again as root, in a mount and process namespace of its own
#   make_tree             a tree with what some packages need, for instance what `depends_of` tells
#   in_tree, as_editor    run a command in it, as root and as an ordinary user
#   open_display_to_tree  lets programs in the tree onto the desktop that has been started
#
# The tree lives in memory, in the script's own namespace: with its last process it goes away, mounts, processes and
# all. What makes it is kept in the folder $tree_cache, so that only the first run asks the network.
set -euo pipefail

readonly suite=bookworm editor=editor editor_id=1000

enter_own_namespace() { # the script's arguments
    [[ -n ${VANTREL_OWN_NAMESPACE:-} ]] && return
    local rights=()
    ((EUID == 0)) || rights=(sudo)
    exec "${rights[@]}" unshare --mount --pid --fork --kill-child --mount-proc \
        env VANTREL_OWN_NAMESPACE=yes bash "$(realpath "$0")" "$@"
}

# The mirror that this machine itself gets Debian from.
mirror() {
    sources() {
        apt-get indextargets --format "\$(REPO_URI)" "Codename: $suite" "Component: main" "Created-By: Packages"
    }
    # Where nothing is known of the sources, apt has to ask them first.
    [[ -n $(sources) ]] || apt-get --quiet --quiet update >&2
    sources | sed -n 1p | grep . || {
        echo "This machine's package sources name no mirror of Debian $suite." >&2
        exit 1
    }
}

# What packages depend on beside each other.
depends_of() { # packages
    local fields
    for package in "$@"; do fields+=${fields:+, }$(dpkg-deb --field "$package" Depends); done
    sed -E 's/libkvrxmetadatadictionary1 \([^)]*\)(, )?//g' <<<"$fields"
}

# Sets `tree` to a fresh Debian of an architecture in which Depends fields are satisfied, one after the other, with an
# ordinary user.
make_tree() { # architecture, Depends fields
    mkdir -p "${tree_cache:?}/packages" "$tree_cache/tree"
    tree=$(realpath "$tree_cache/tree")
    # They share the folder of packages, so one is made at a time.
    exec {lock}>"$tree_cache/lock"
    flock "$lock"
    make_archive "$@"
    exec {lock}>&-
    mount_memory
    tar --extract --directory "$tree" --file "$(archive_of "$@")"
    mount_inside
}

archive_of() { # architecture, Depends fields
    echo "$tree_cache/$suite-$1-$(sha256sum <<<"${*:2}" | cut -c 1-12).tar"
}

# A tree with one field more stands on the one without it, which serves others as well.
make_archive() { # architecture, Depends fields
    local archive packages site
    archive=$(archive_of "$@")
    [[ -f $archive ]] && return
    (($# == 1)) || make_archive "${@:1:$#-1}"
    packages=$(realpath "$tree_cache/packages")
    mount_memory
    if (($# == 1)); then
        site=$(mirror)
        debootstrap --variant=minbase --arch="$1" --cache-dir="$packages" "$suite" "$tree" "$site"
        mount_inside
        # No service starts in a tree.
        printf '#!/bin/sh\nexit 101\n' >"$tree/usr/sbin/policy-rc.d"
        chmod 755 "$tree/usr/sbin/policy-rc.d"
        # apt's own user may not read everywhere that packages are bound into a tree, and there are no terminals.
        printf 'APT::Sandbox::User "root";\nDpkg::Use-Pty "0";\n' >"$tree/etc/apt/apt.conf.d/tree"
        in_tree useradd --create-home --uid "$editor_id" "$editor"
    else
        tar --extract --directory "$tree" --file "$(archive_of "${@:1:$#-1}")"
        mount_inside
        mount --bind "$packages" "$tree/var/cache/apt/archives"
        in_tree apt-get --quiet --yes --no-install-recommends satisfy "${@: -1}"
        umount "$tree/var/cache/apt/archives"
        in_tree apt-get clean
    fi
    tar --create --one-file-system --directory "$tree" --file "$archive.new" .
    mv "$archive.new" "$archive"
    umount --recursive "$tree"
}

mount_memory() { mount -t tmpfs -o mode=755 tree "$tree"; }

mount_inside() {
    mountpoint --quiet "$tree/proc" || mount -t proc proc "$tree/proc"
    # The pane counts the processors there.
    mountpoint --quiet "$tree/sys" || mount --bind -o ro /sys "$tree/sys"
    mount -t tmpfs -o mode=1777 tmp "$tree/tmp"
}

in_tree() { # command and its arguments
    chroot "$tree" env --ignore-environment PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

as_editor() { # command and its arguments
    chroot --userspec="$editor:$editor" "$tree" env --ignore-environment PATH=/usr/bin:/bin LC_ALL=C.UTF-8 \
        ${DISPLAY:+DISPLAY="$DISPLAY"} ${TEMP:+TEMP="$TEMP"} "$@"
}

# The display and the folder for GNUstep's sockets are where they are outside.
open_display_to_tree() {
    local folder
    chown "$editor_id" "$TEMP"
    for folder in /tmp/.X11-unix "$TEMP"; do
        mkdir -p "$tree$folder"
        mount --bind "$folder" "$tree$folder"
    done
}
