# dbc export to JSON, and how it replaces an older file.
load helper

@test "export and import keep every type" {
    dbc insert "$database.c" '{"_id": 1, "i": 5, "l": {"$numberLong": "5"}, "d": 0.5, "w": 2.0, "t": {"$date": "2020-01-01T00:00:00Z"}}' \
        '{"_id": {"$oid": "507f1f77bcf86cd799439011"}, "b": {"$binary": {"base64": "AQI=", "subType": "00"}}, "r": {"$regex": "^a", "$options": "i"}}'
    dbc export "$database.c" -f "$folder/first"
    expect_status 0
    expect_err "exported 2"
    [[ $(<"$folder/first") == *'"l" : { "$numberLong" : "5" }, "d" : { "$numberDouble" : "0.5" }, "w" : { "$numberDouble" : "2.0" }'* ]] ||
        fail "types are lost: $(<"$folder/first")"
    dbc import "$database.d" -f "$folder/first"
    expect_status 0
    dbc export "$database.d" -f "$folder/second"
    cmp "$folder/first" "$folder/second" || fail "the two exports differ"
}

@test "an export that fails does not change the older file" {
    dbc insert "$database.c" '{"_id": 1}' '{"_id": 2, "x": null}'
    mkdir "$folder/target"
    echo older >"$folder/target/file"
    dbc export "$database.c" -f "$folder/target/file" --losses refuse
    expect_status 4
    (
        trap '' XFSZ # then a file that is too large causes an error, like a full disk
        ulimit -f 0
        # The messages go to a pipe, because the limit also applies to a file.
        { status=0 && "$program" export "$database.c" -f "$folder/target/file" 2>&1 || status=$?; [[ $status == 2 ]]; } | cat >/dev/null
    ) || fail "a file that cannot grow"
    [[ $(<"$folder/target/file") == older ]] || fail "the older file is gone"
    [[ $(ls "$folder/target") == file ]] || fail "left behind: $(ls "$folder/target")"
    dbc export "$database.c" -f "$folder/missing/file"
    expect_status 2
    [[ $err == "dbc: cannot write $folder/missing/file: No such file or directory" ]] || fail "$err"
}

@test "an export whose messages nobody reads leaves no temporary file" {
    fill 1
    mkdir "$folder/target"
    mkfifo "$folder/messages"
    exec 7<>"$folder/messages" 8>"$folder/messages" 7>&- # a pipe without a reader
    "$program" export "$database.c" -f "$folder/target/file" --progress 2>&8 || true
    exec 8>&-
    [[ -z $(ls "$folder/target") ]] || fail "left behind: $(ls "$folder/target")"
}

@test "export keeps the mode of the older file and follows links" {
    fill 1
    mkdir "$folder/target"
    echo older >"$folder/target/file"
    chmod 640 "$folder/target/file"
    ln -s target/file "$folder/link"
    dbc export "$database.c" -f "$folder/link"
    expect_status 0
    [[ -L $folder/link && $(<"$folder/target/file") == *'"n" :'* ]] || fail "the link was not followed"
    [[ $(stat -c %a "$folder/target/file") == 640 ]] || fail "mode $(stat -c %a "$folder/target/file")"
    dbc export "$database.c" -f /dev/stdout
    expect_status 0
    [[ $out == *'"n" :'* ]] || fail "not a file, not written: $out"
}
