# What the files *.bats share. Each test has a database and a folder of its own, and runs the program $DBC_PROGRAM as a
# person types it.

setup() {
    export DBC_URI=${DATABASE_CLIENT_TEST_URI:?run through scripts/with-server}
    program=${DBC_PROGRAM:?the program to test}
    database="dbc_test_${RANDOM}_$$"
    folder=$BATS_TEST_TMPDIR # removed by bats
}

teardown() {
    # A program that runs on after a failed check would keep bats waiting for its output.
    kill $(jobs -p) 2>/dev/null || true
    "$program" --uri "$DATABASE_CLIENT_TEST_URI" drop --database --yes "$database" >/dev/null 2>&1 || true
}

fail() { # MESSAGE
    printf 'FAILED: %s\n' "$*" >&2
    return 1
}

# dbc ARGUMENT... ; its output is in $out, its messages in $err, its status in $status.
dbc() {
    status=0
    "$program" "$@" >"$folder/out" 2>"$folder/err" || status=$?
    out=$(<"$folder/out")
    err=$(<"$folder/err")
}

expect_status() { [[ $status == "$1" ]] || fail "status $status instead of $1; output: $out; messages: $err"; }
expect_out() { [[ $out == "$1" ]] || fail "printed: $out; expected: $1"; }
expect_no_messages() { [[ -z $err ]] || fail "messages: $err"; }
expect_err() { [[ $err == *"$1"* ]] || fail "messages: $err; expected in them: $1"; }
expect_usage_error() { # MESSAGE ARGUMENT...
    dbc "${@:2}"
    expect_status 2
    [[ $err == "dbc: $1" ]] || fail "messages: $err; expected: dbc: $1"
}

fill() { # documents with n from 0 to $1 - 1
    local number
    for ((number = 0; number < $1; ++number)); do printf '{"n": %d, "even": %s}\n' "$number" "$((number % 2))"; done |
        "$program" -q import "$database.c" 2>/dev/null
}

# Runs a command on a terminal. What it prints there is in the file $folder/terminal.
on_terminal() { # COMMAND
    script -qec "$1" "$folder/terminal" >/dev/null
}
