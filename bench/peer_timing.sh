# Timing helpers that the bench scripts comparing with peers share; source it.
best() { sort -n | head -1; }
wall() { # wall time of a whole command, best of 3
    for i in 1 2 3; do /usr/bin/time -f "%e" "$@" 2>&1 >/dev/null | tail -1; done | best
}
inside() { # the last line a peer prints: its own in-process time, best of 3
    for i in 1 2 3; do "$@" 2>/dev/null | tail -1; done | best
}
ratio() { echo "$1 $2" | awk '{printf "%.2f", $1 / $2}'; }
report() { # NAME ZENTABLE_SECONDS PEER_NAME PEER_SECONDS
    echo "$1: zentable $2 s, $3 $4 s, ratio $3 / zentable $(ratio "$4" "$2")"
}
install_peers() { # PACKAGE...: Debian's peers, for the comparison only; the lock keeps
    # two scripts that install at once from racing on dpkg
    local missing=() p
    for p in "$@"; do dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p"); done
    if [ ${#missing[@]} -gt 0 ]; then
        flock /tmp/apt.lock apt-get install -y --no-install-recommends "${missing[@]}" >/dev/null
    fi
}
