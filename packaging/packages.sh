# shellcheck shell=bash
# What is needed of Debian, as a library for bash.

packages_file=$(dirname "$(realpath "${BASH_SOURCE[0]}")")/debian-packages.txt
readonly packages_file

# The packages of the list for some purposes, a line each.
packages_for() { # purposes
    local purpose
    for purpose; do
        sed -n "s/^$purpose //p" "$packages_file" | grep . || {
            echo "$packages_file knows no purpose $purpose." >&2
            return 1
        }
    done
}

# Installs the packages for some purposes that are not installed yet. Where none is missing, nothing is asked of the
# network and no rights are needed; otherwise it takes root or sudo, and a failure ends the script.
install_packages_for() { # purposes
    local packages package missing=()
    packages=$(packages_for "$@")
    for package in $packages; do
        [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            missing+=("$package")
    done
    ((${#missing[@]} == 0)) && return
    echo "Installing ${missing[*]}"
    as_root apt-get update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends "${missing[@]}"
}

as_root() {
    if ((EUID == 0)); then
        "$@"
    else
        sudo "$@"
    fi
}
