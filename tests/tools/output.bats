# Output of dbc: formatted JSON, colours, progress.
load helper

@test "--pretty prints one field a line" {
    dbc insert "$database.c" '{"_id": 1, "d": {"$date": "2020-01-01T00:00:00Z"}, "o": {"x": "a, {b}: \" c", "e": {}}, "a": [1, "b"], "l": []}'
    dbc find "$database.c" --pretty
    expect_out '{
  "_id": 1,
  "d": {"$date": "2020-01-01T00:00:00Z"},
  "o": {
    "x": "a, {b}: \" c",
    "e": {}
  },
  "a": [
    1,
    "b"
  ],
  "l": []
}'
    dbc export "$database.c" --pretty --array -f "$folder/pretty"
    dbc -q import "$database.d" -f "$folder/pretty"
    expect_status 0
    [[ $("$program" -q export "$database.c") == "$("$program" -q export "$database.d")" ]] || fail "$(<"$folder/pretty")"
}

@test "only terminals get colours unless the user asks for them" {
    dbc insert "$database.c" '{"_id": 1, "t": "a", "b": true}'
    local escape=$'\x1b'
    local colored="{ ${escape}[34;1m\"_id\"${escape}[0m : ${escape}[33m1${escape}[0m, ${escape}[34;1m\"t\"${escape}[0m : ${escape}[32m\"a\"${escape}[0m, ${escape}[34;1m\"b\"${escape}[0m : ${escape}[35mtrue${escape}[0m }"
    dbc find "$database.c" --color always
    expect_out "$colored"
    dbc find "$database.c"
    [[ $out != *"$escape"* ]] || fail "colours in a file: $out"
    find_on_terminal() { # VARIABLES ARGUMENT...
        on_terminal "env -u NO_COLOR TERM=xterm $1 $program find $database.c ${*:2}" </dev/null
    }
    find_on_terminal ""
    grep -qF "$colored" "$folder/terminal" || fail "no colours on a terminal: $(<"$folder/terminal")"
    find_on_terminal NO_COLOR=1
    ! grep -q "${escape}\[" "$folder/terminal" || fail "colours against NO_COLOR: $(<"$folder/terminal")"
    find_on_terminal NO_COLOR=1 --color always
    grep -qF "$colored" "$folder/terminal" || fail "no colours though asked for: $(<"$folder/terminal")"
    find_on_terminal "" --color never
    ! grep -q "${escape}\[" "$folder/terminal" || fail "colours though refused: $(<"$folder/terminal")"
    dbc export "$database.c" -f "$folder/file" --color always
    ! grep -q "$escape" "$folder/file" || fail "colours in a file"
}

@test "only terminals get a progress bar" {
    fill 20
    dbc check "$database.c"
    expect_no_messages
    # The standard error of the program is the terminal that the program "script" creates.
    on_terminal "$program check $database.c" </dev/null
    grep -q 'checking \[' "$folder/terminal" || fail "no bar: $(<"$folder/terminal")"
    on_terminal "$program --quiet check $database.c" </dev/null
    ! grep -q 'checking' "$folder/terminal" || fail "a bar: $(<"$folder/terminal")"
}

@test "a file from a pipe is stored and its progress shown" {
    head -c 300000 /dev/urandom >"$folder/data"
    on_terminal "cat $folder/data | $program files put $database - --name piped" </dev/null
    grep -q 'piped 0\.' "$folder/terminal" || fail "no count: $(<"$folder/terminal")"
    dbc files put "$database" <(cat "$folder/data") --name named
    expect_status 0
    [[ $err == "stored named, 300000 bytes" ]] || fail "messages: $err"
    local name
    for name in piped named; do
        dbc files get "$database" "$name" "$folder/back"
        cmp "$folder/data" "$folder/back" || fail "$name came back changed"
        dbc files rm "$database" "$name"
    done
}

@test "import shows the percentage and rate of a file" {
    awk 'BEGIN { for (n = 0; n < 3000; ++n) printf "{\"n\": %d, \"t\": \"%0100d\"}\n", n, n }' >"$folder/lines"
    on_terminal "$program import $database.c -f $folder/lines --batch 500" </dev/null
    grep -qE 'importing \[#+ *\] +[0-9]+%  [0-9]+/s' "$folder/terminal" || fail "no per cent: $(cat -v "$folder/terminal")"
    on_terminal "cat $folder/lines | $program import $database.c" </dev/null
    grep -qE 'importing [0-9]+  [0-9]+/s' "$folder/terminal" || fail "no count: $(cat -v "$folder/terminal")"
    dbc import "$database.c" -f "$folder/lines"
    [[ $err == "imported 3000" ]] || fail "$err"
    dbc import "$database.c" -f "$folder/lines" --progress
    [[ $err =~ ^importing\ \[#*\ *\]\ +[0-9]+%\ \ [0-9]+/s$'\n' ]] || fail "$err"
}

@test "the summary of an import replaces the progress bar" {
    printf '{"n": 1}\n' >"$folder/lines"
    on_terminal "$program import $database.c -f $folder/lines" </dev/null
    grep -q $'importing .*\r\x1b\\[Kimported 1' "$folder/terminal" || fail "$(cat -v "$folder/terminal")"
}

@test "output that cannot be written is an error" {
    fill 1
    status=0
    "$program" count "$database.c" >/dev/full 2>"$folder/err" || status=$?
    expect_status 2
    grep -q "cannot be written" "$folder/err" || fail "$(<"$folder/err")"
}

@test "output is not sent to the server if standard output is closed" {
    fill 1
    status=0
    "$program" find "$database.c" 2>"$folder/err" >&- || status=$?
    [[ $status == 2 ]] || fail "status $status"
    grep -q "cannot be written" "$folder/err" || fail "$(<"$folder/err")"
}
