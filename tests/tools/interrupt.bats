# How dbc reacts to Ctrl-C.
load helper

@test "an interrupt ends an import that has stored documents" {
    mkfifo "$folder/input"
    "$program" import "$database.c" --batch 1 --state "$folder/state" <"$folder/input" 2>"$folder/err" &
    local pid=$!
    exec 9>"$folder/input"
    printf '{"n": 1}\n' >&9
    until [[ -s $folder/state ]]; do kill -0 "$pid"; done
    kill -INT "$pid"
    trap '' PIPE # the program may end before the input does
    printf '{"n": 2}\n' >&9 || true
    exec 9>&-
    status=0
    wait "$pid" || status=$?
    [[ $status == 130 ]] || fail "status $status"
    grep -q interrupted "$folder/err" || fail "nothing was said"
    dbc count "$database.c" 'n=1'
    expect_out 1
}

@test "an interrupt ends a find and an export" {
    awk 'BEGIN { for (n = 0; n < 5000; ++n) printf "{\"n\": %d, \"t\": \"%0100d\"}\n", n, n }' |
        "$program" -q import "$database.c"
    local command pid line
    for command in find export; do
        mkfifo "$folder/$command"
        "$program" "$command" "$database.c" >"$folder/$command" 2>"$folder/err" &
        pid=$!
        exec 8<"$folder/$command"
        read -r line <&8 # the rest does not fit into the pipe, so the program is still writing
        kill -INT "$pid"
        cat <&8 >/dev/null
        exec 8<&-
        status=0
        wait "$pid" || status=$?
        [[ $status == 130 ]] || fail "$command: status $status"
        grep -qx 'dbc: interrupted' "$folder/err" || fail "$command: $(<"$folder/err")"
    done
}

@test "an interrupt ends an import that waits for input" {
    mkfifo "$folder/input"
    exec 9<>"$folder/input"
    "$program" import "$database.c" --batch 1 --state "$folder/state" <"$folder/input" 2>"$folder/err" &
    local pid=$!
    printf '{"n": 1}\n{"n": ' >&9
    until [[ -s $folder/state ]]; do kill -0 "$pid"; done
    kill -INT "$pid"
    status=0
    wait "$pid" || status=$?
    exec 9>&-
    [[ $status == 130 ]] || fail "status $status: $(<"$folder/err")"
    dbc count "$database.c" 'n=1'
    expect_out 1
}
