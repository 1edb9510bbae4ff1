# Functions for the *.bats files. Each test has its own database and folder, and runs the program $DBC_PROGRAM.

setup() {
    export DBC_URI=${DATABASE_CLIENT_TEST_URI:?run through scripts/with-server}
    program=${DBC_PROGRAM:?the program to test}
    database="dbc_test_${RANDOM}_$$"
    folder=$BATS_TEST_TMPDIR # removed by bats
}

teardown() {
    # If a program still ran after a failed check, bats would wait for its output.
    kill $(jobs -p) 2>/dev/null || true
    "$program" --uri "$DATABASE_CLIENT_TEST_URI" drop --database --yes "$database" >/dev/null 2>&1 || true
}

fail() { # MESSAGE
    printf 'FAILED: %s\n' "$*" >&2
    return 1
}

# Runs dbc. Sets $out to its standard output, $err to its standard error, and $status to its exit status.
dbc() { # ARGUMENT...
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

# Inserts documents with n from 0 to COUNT - 1.
fill() { # COUNT
    local number
    for ((number = 0; number < $1; ++number)); do printf '{"n": %d, "even": %s}\n' "$number" "$((number % 2))"; done |
        "$program" -q import "$database.c" 2>/dev/null
}

# Runs a command on a terminal. Its output is in the file $folder/terminal.
on_terminal() { # COMMAND
    script -qec "$1" "$folder/terminal" >/dev/null
}
