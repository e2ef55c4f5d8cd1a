#!/bin/bash
# Makes a profile true with ansible-playbook on eight fresh Debian trees at once, and on one that isn't there: what is
# checked is what then changes, a second time nothing changes, and what can't be done on one host is told and holds up no
# other.
#
#   test-ansible.sh PACKAGES PICTURES TREES
#
# PACKAGES is the folder with the packages, PICTURES that for the pictures, TREES keeps what makes the trees.
source "$(dirname "${BASH_SOURCE[0]}")/host-in-tree.sh"
packages=$1 VANTREL_PICTURES=$2 tree_cache=$3
enter_own_namespace "$@"

packaging=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
readonly packaging
readonly hosts="damaged desk gone misspelt node1 node2 node3 node4 record"

# What all hosts have before Ansible comes: the pane, and a source of packages that has the command.
prepare_tree() {
    local architecture debs=("$packages"/{vantrel-prefpane,vantrelctl,libkvrxmetadatadictionary1}_*.deb)
    architecture=$(dpkg-deb --field "${debs[0]}" Architecture)
    make_tree "$architecture" "$(depends_of "$packages"/{vantrel-prefpane,libkvrxmetadatadictionary1}_*.deb)" \
        "$(depends_of "$packages"/vantrelctl_*.deb), python3, python3-apt"
    in_tree useradd --create-home --uid 1001 ada
    mkdir "$tree/packages"
    cp "${debs[@]}" "$tree/packages"
    (cd "$tree/packages" && dpkg-scanpackages . 2>/dev/null >Packages)
    echo "deb [trusted=yes] file:/packages ./" >"$tree/etc/apt/sources.list"
    in_tree apt-get --quiet --quiet update
    in_tree apt-get --quiet --yes --no-install-recommends install vantrel-prefpane
}

# Copies of the tree that share what they don't change, in memory and outside the scratch folder: what is mounted in them
# isn't for removal.
make_hosts() {
    local host folder shared=$tree
    trees=$(realpath "$tree_cache")/hosts
    mkdir -p "$trees"
    mount -t tmpfs -o mode=755 hosts "$trees"
    for host in $hosts; do
        [[ $host == gone ]] && continue
        folder=$trees/of-$host
        mkdir -p "$folder"/{changes,work} "$trees/$host"
        mount -t overlay -o "lowerdir=$shared,upperdir=$folder/changes,workdir=$folder/work" "$host" "$trees/$host"
        tree=$trees/$host
        mount_inside
    done
    tree=$trees/desk
}

# The playbooks, the variables and the script are those that the documents show.
documented() { # language, which
    awk -v language="$1" -v which="$2" '/^```$/ { inside = 0 } inside && block == which
        $0 == "```" language { inside = 1; ++block }' "$packaging/../docs/fleet.md" | grep .
}

make_inventory() {
    mkdir -p "$scratch/ansible/group_vars"
    cp "$packaging/ansible/test/hosts.yml" "$scratch/ansible"
    documented yaml 1 >"$scratch/ansible/playbook.yml"
    documented yaml 2 >"$scratch/ansible/group_vars/render_nodes.yml"
    documented yaml 3 >"$scratch/ansible/module-alone.yml"
}

play() { # title, more words for ansible-playbook
    local begin=$SECONDS
    ANSIBLE_HOME=$scratch/ansible-home ANSIBLE_NOCOLOR=yes ANSIBLE_ROLES_PATH=$packaging/ansible/roles \
        ANSIBLE_CONNECTION_PLUGINS=$packaging/ansible/test/connection_plugins \
        /usr/bin/ansible-playbook --inventory "$scratch/ansible/hosts.yml" --extra-vars "trees=$trees" "${@:2}" \
        "$scratch/ansible/${playbook:-playbook}.yml" >"$scratch/played" 2>&1 || true
    printf '\n--- %s, %s s\n' "$1" $((SECONDS - begin))
    sed -n '/^PLAY RECAP/,$p' "$scratch/played"
}

# Of each host that the last play saw: the tasks that changed something, that it couldn't be reached for, that failed.
expect_recap() { # lines
    expect_same "the recap" "$(sed -nE 's/^(\S+) +: .* changed=(\S+) +unreachable=(\S+) +failed=(\S+) .*/\1 \2 \3 \4/p' \
        "$scratch/played")" "$1"
}

# Ansible breaks its warnings into lines.
expect_told() { # text
    tr '\n' ' ' <"$scratch/played" | grep -qF -- "$1" || {
        cat "$scratch/played" >&2
        fail "the play doesn't say: $1"
    }
}

vantrelctl_on() { # host, user, words
    chroot --userspec="$2:$2" "$trees/$1" env --ignore-environment PATH=/usr/bin:/bin LC_ALL=C.UTF-8 vantrelctl "${@:3}"
}

# Every user's settings on every host, as they are on the disk.
all_settings() { find "$trees"/*/home -name '*.plist*' -printf '%p %i %T@ %s\n' | sort; }

give() { # host, user, file below the user's GNUstep folder, its content
    local folder=$trees/$1/home/$2/GNUstep
    mkdir -p "$(dirname "$folder/$3")"
    echo "$4" >"$folder/$3"
    chmod 600 "$folder/$3"
    chroot "$trees/$1" chown --recursive "$2:$2" "/home/$2/GNUstep"
}

# What the profile wants, as vantrelctl shows it.
expect_profile_made() { # host, user
    local name shown=""
    for name in FormatRGB8 look MaxEncodeThreads CLSF; do shown+=" $(vantrelctl_on "$1" "$2" get "$name")"; done
    expect_same "what $2 has on $1" "$shown" " off off 1 on"
}

prepare_tree
make_hosts
give damaged ada "Defaults/$domain.plist" "<plist><dict><key>look"
give record ada Library/ApplicationSupport/Vantrel/OverrideMetadata.plist "no property list"
open_pane_in_tree
make_inventory
before=$(all_settings)

play "A check, before the first run" --check --diff
expect_recap "damaged 2 0 0
desk 2 0 0
gone 0 1 0
misspelt 2 0 0
node1 2 0 0
node2 2 0 0
node3 2 0 0
node4 2 0 0
record 2 0 0"
expect_told "vantrelctl isn't installed yet, so what it would change isn't known"
expect_same "the settings after the check" "$(all_settings)" "$before"
[[ ! -e $trees/node1/usr/bin/vantrelctl ]] || fail "the check has installed the package"

play "The first run" --diff
expect_recap "damaged 2 0 0
desk 2 0 0
gone 0 1 0
misspelt 1 0 1
node1 2 0 0
node2 2 0 0
node3 2 0 0
node4 2 0 0
record 1 0 1"
expect_told "+++ after: ada"
expect_told "+MaxEncodeThreads: 0"
expect_told "ada: /home/ada/GNUstep/Defaults/$domain.plist is not a property list, it is kept as"
expect_told "ada: CLSF: the override metadata can't be opened"
expect_told "editor: no setting FormatRGB9; did you mean FormatRGB8?"
for host in damaged desk node1 node2 node3 node4; do
    expect_profile_made "$host" editor
    expect_profile_made "$host" ada
done
expect_profile_made record editor
[[ ! -e $trees/record/home/ada/GNUstep/Defaults ]] || fail "half of a profile was made for ada on record"
[[ ! -e $trees/misspelt/home/editor/GNUstep ]] || fail "half of a misspelt profile was made"

# What the profile changed under the open pane stays, and so does what is clicked there.
click_control fmtYUV8Bit
expect stored FormatYUV8 false
keep_picture pane-while-ansible-runs
expect_profile_made desk editor

before=$(all_settings)
play "The second run" --diff
expect_recap "damaged 0 0 0
desk 0 0 0
gone 0 1 0
misspelt 0 0 1
node1 0 0 0
node2 0 0 0
node3 0 0 0
node4 0 0 0
record 0 0 1"
expect_same "the settings after the second run" "$(all_settings)" "$before"

# One setting of one user has been changed since, and what was wrong has been mended.
vantrelctl_on node2 ada set FormatRGB8 on
rm "$trees/record/home/ada/GNUstep/Library/ApplicationSupport/Vantrel/OverrideMetadata.plist"
play "A check of node2 and record" --check --diff --limit node2,record
expect_recap "node2 1 0 0
record 1 0 0"
expect_told "-FormatRGB8: true"
expect_told "+FormatRGB8: false"
expect_same "what the check left" "$(vantrelctl_on node2 ada get FormatRGB8)" "on"
play "The third run" --diff
expect_recap "damaged 0 0 0
desk 0 0 0
gone 0 1 0
misspelt 0 0 1
node1 0 0 0
node2 1 0 0
node3 0 0 0
node4 0 0 0
record 1 0 0"
expect_profile_made node2 ada
expect_profile_made record ada

# For the user who connects, and without Ansible.
vantrelctl_on node3 ada export --format json >"$scratch/ansible/profile.json"
playbook=module-alone ANSIBLE_LIBRARY=$packaging/ansible/roles/vantrel/library play "The module alone"
expect_recap "node1 1 0 0"
expect_profile_made node1 root
mkdir "$trees/node4/etc/vantrel"
echo '{"FormatRGB8": true}' >"$trees/node4/etc/vantrel/profile.json"
chroot "$trees/node4" groupadd --users editor,ada render
documented sh 1 >"$trees/node4/tmp/script"
expect_same "what the script did" "$(tree=$trees/node4 in_tree bash -eu /tmp/script)" "FormatRGB8: off -> on
1 changed, 0 unchanged
FormatRGB8: off -> on
1 changed, 0 unchanged"
