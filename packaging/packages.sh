# shellcheck shell=bash
# What building, running and testing needs of Debian, as a library for bash.

packages_file=$(dirname "$(realpath "${BASH_SOURCE[0]}")")/debian-packages.txt
readonly packages_file

# Installs the packages of the list that are not installed yet. Where none is missing, nothing is asked of the network
# and no rights are needed; otherwise it takes root or sudo, and a failure ends the script.
install_missing_packages() {
    local package missing=()
    while read -r package; do
        [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            missing+=("$package")
    done <"$packages_file"
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
