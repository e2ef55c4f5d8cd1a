# Fresh Debian trees for tests that install packages, as a library for bash.
#
#   enter_own_namespace   runs the script again as root, in a mount and process namespace of its own
#   make_tree             a tree with what some packages need
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
    local site
    site=$(apt-get indextargets --format '$(REPO_URI)' "Codename: $suite" "Component: main" "Created-By: Packages" |
        head -n 1)
    if [[ -z $site ]]; then
        echo "This machine's package sources name no mirror of Debian $suite; is apt-get update due?" >&2
        exit 1
    fi
    echo "$site"
}

# Sets `tree` to a fresh Debian of an architecture in which a Depends field is satisfied, with an ordinary user.
make_tree() { # architecture, Depends field
    local archive
    mkdir -p "$tree_cache/packages" "$tree_cache/tree"
    tree=$(realpath "$tree_cache/tree")
    archive=$tree_cache/$suite-$1-$(sha256sum <<<"$2" | cut -c 1-12).tar
    mount -t tmpfs -o mode=755 tree "$tree"
    # Two scripts that want the same tree make it once.
    exec {lock}>"$tree_cache/lock"
    flock "$lock"
    if [[ ! -f $archive ]]; then
        bootstrap "$1" "$2"
        tar --create --one-file-system --directory "$tree" --file "$archive.new" .
        mv "$archive.new" "$archive"
    else
        tar --extract --directory "$tree" --file "$archive"
        prepare_mounts
    fi
    exec {lock}>&-
}

bootstrap() { # architecture, Depends field
    local packages
    packages=$(realpath "$tree_cache/packages")
    debootstrap --variant=minbase --arch="$1" --cache-dir="$packages" "$suite" "$tree" "$(mirror)"
    prepare_mounts
    # No service starts in a tree.
    printf '#!/bin/sh\nexit 101\n' >"$tree/usr/sbin/policy-rc.d"
    chmod 755 "$tree/usr/sbin/policy-rc.d"
    in_tree useradd --create-home --uid "$editor_id" "$editor"
    mount --bind "$packages" "$tree/var/cache/apt/archives"
    in_tree apt-get --quiet --yes --no-install-recommends -o APT::Sandbox::User=root satisfy "$2"
    umount "$tree/var/cache/apt/archives"
}

prepare_mounts() {
    mountpoint --quiet "$tree/proc" || mount -t proc proc "$tree/proc"
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
