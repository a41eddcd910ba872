# shellcheck shell=bash
# For the scripts of this folder: Maven on the SDK, and leaving with exit 77 and the reason where it,
# a compiler or what they need to download is missing. They set `build`, the folder for all output.

skip() {
    echo "skipped: $*"
    exit 77
}

require_maven() {
    command -v mvn >/dev/null || skip "no Maven (mvn) on this machine"
    command -v javac >/dev/null || skip "no Java compiler (javac) on this machine"
}

# What was downloaded once is not asked for again, so this needs no network then.
run_maven() {
    local log=${build:?}/maven.log
    timeout 540 mvn -B "-Dgxtext.build.dir=$build" "$@" >"$log" 2>&1
}

# For everything short of running tests: a failure to download is no failure of the SDK.
run_maven_or_skip() {
    local status=0 log=$build/maven.log
    run_maven "$@" || status=$?
    [[ $status -ne 0 ]] || return 0
    [[ $status -ne 124 ]] || skip "Maven's repository does not answer in time"
    if grep -qE 'Could not (resolve|transfer|find)|could not be resolved|Unknown host' "$log"; then
        grep -m 1 -E '^\[ERROR\]' "$log" || true
        skip "Maven's repository does not answer"
    fi
    cat "$log"
    exit 1
}
