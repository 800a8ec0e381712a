# Shared by ./run and ./check: one line per step, the noise in a log, its end on failure. Sourced by bash.
# The sourcing script sets LOG.

say() { printf '%s\n' "$*"; }

# show_progress WHAT   tells, over and over, how far the build came that writes behind the log's present end, and where the log is
show_progress() {
    local start count
    start=$(stat -c %s "$LOG")
    while sleep 0.5 && kill -0 $$ 2>/dev/null; do
        count=$(tail -c +$((start + 1)) "$LOG" | tail -c 4000 | grep -aoE '^\[[0-9]+/[0-9]+\]' | tail -n 1) || count=
        printf '\r%-46s%-12s log: %s' "$1" "$count" "$LOG"
    done
}

# in_sight WHAT COMMAND...   runs the command into the log, with its progress if there is a terminal
in_sight() {
    local what=$1 watch='' status=0
    shift
    if [ -t 1 ]; then
        show_progress "$what" &
        watch=$!
    fi
    "$@" >>"$LOG" 2>&1 </dev/null || status=1
    if [ -n "$watch" ]; then
        kill "$watch" 2>/dev/null || true
        wait "$watch" 2>/dev/null || true
        printf '\r\033[K%-46s' "$what"
    fi
    return "$status"
}

# step "what" command...   runs the command into the log; on failure shows the end of the log and ends the script
step() {
    local what=$1 start=$SECONDS
    shift
    printf '%-46s' "$what"
    printf '\n== %s\n' "$what" >>"$LOG"
    if in_sight "$what" "$@"; then
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
