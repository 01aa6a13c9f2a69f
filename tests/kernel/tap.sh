# SPDX-License-Identifier: MIT
# Sourced by the shell suites: cases in the Test Anything Protocol.
#   check SENTENCE COMMAND...       passes when the command does; its output is shown when it fails
#   checkEqual SENTENCE WANTED GOT
#   skip SENTENCE REASON
#   await SECONDS COMMAND...        tries the command until it succeeds or the time is over
#   finish                          closes the suite, non-zero when a case failed
tapCount=0 tapFailed=0

tapReport() {
    tapCount=$((tapCount + 1))
    echo "$1 $tapCount - $2"
    [ "$1" = ok ] || tapFailed=$((tapFailed + 1))
}

check() {
    local sentence=$1 output
    shift
    if output=$("$@" 2>&1); then
        tapReport ok "$sentence"
    else
        tapReport 'not ok' "$sentence"
        echo "# failed: $*"
        printf '%s\n' "$output" | tail -n 40 | sed 's/^/#   /'
    fi
}

checkEqual() {
    if [ "$2" = "$3" ]; then
        tapReport ok "$1"
    else
        tapReport 'not ok' "$1"
        printf '%s\n' "wanted: $2" "got:    $3" | sed 's/^/# /'
    fi
}

skip() { tapReport ok "$1 # SKIP $2"; }

await() {
    local until=$(($(date +%s) + $1))
    shift
    until "$@"; do
        [ "$(date +%s)" -lt "$until" ] || return 1
        sleep 0.1
    done
}

finish() {
    echo "1..$tapCount"
    [ $tapFailed -eq 0 ]
    exit
}
