# Shared by ./run and ./check: one line per step, the noise in a log, its end on failure. Sourced by bash.
# The sourcing script sets LOG.

say() { printf '%s\n' "$*"; }

# step "what" command...   runs the command into the log; on failure shows the end of the log and ends the script
step() {
    local what=$1 start=$SECONDS
    shift
    printf '%-46s' "$what"
    printf '\n== %s\n' "$what" >>"$LOG"
    if "$@" >>"$LOG" 2>&1 </dev/null; then
        printf 'ok  %3ds\n' $((SECONDS - start))
    else
        printf 'FAILED\n\n'
        tail -n 40 "$LOG"
        say "" "The whole log: $LOG"
        exit 1
    fi
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        say "This needs root, and there is no sudo: $*" >&2
        return 1
    fi
}

missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || echo "$package"
    done
}

# install_packages NAME...   installs those that are missing; nothing is asked of a machine that has them all
install_packages() {
    local missing
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    if ! command -v apt-get >/dev/null; then
        say "Missing packages, and no apt-get to install them:" $missing >&2
        return 1
    fi
    as_root apt-get update || return 1
    # shellcheck disable=SC2086
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing
}
