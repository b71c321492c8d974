# Sourced by the other scripts: installs what is missing, and only that.
#
# install_missing PACKAGE...   Debian packages for this machine
install_missing() {
    missing=
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing="$missing $package"
    done
    [ -z "$missing" ] && return 0
    echo "Installing$missing"
    # One index that cannot be fetched leaves the others usable.
    apt-get update -qq || echo "apt-get update reported a fault; going on with the indexes there are"
    # shellcheck disable=SC2086
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
}
