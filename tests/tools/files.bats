# dbc files.
load helper

@test "files ls -l prints length, time and id" {
    printf 'hello' >"$folder/data"
    dbc files put "$database" "$folder/data" --name words
    dbc files ls "$database" -l
    expect_status 0
    [[ $out =~ ^\ +5\ \ [0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}Z\ \ [0-9a-f]{24}\ \ words$ ]] || fail "$out"
}

@test "files are stored, listed, fetched and removed" {
    head -c 300000 /dev/urandom >"$folder/data"
    dbc files put "$database" "$folder/data" --name photo
    expect_status 0
    expect_out ""
    [[ $err == "stored photo, 300000 bytes" ]] || fail "messages: $err"
    dbc files put "$database" - --name words <<<"from standard input"
    dbc files ls "$database"
    expect_out $'photo\nwords'
    dbc files get "$database" photo "$folder/back"
    expect_out ""
    [[ $err == "fetched photo, 300000 bytes" ]] || fail "messages: $err"
    cmp "$folder/data" "$folder/back" || fail "the file came back changed"
    dbc files get "$database" words -
    expect_out "from standard input"
    [[ $err == "fetched words, 20 bytes" ]] || fail "messages: $err"
    dbc --quiet files get "$database" words -
    expect_no_messages
    dbc files rm "$database" PHOTO
    expect_out "removed 1"
    dbc files rm "$database" photo
    expect_status 1
    dbc files get "$database" photo "$folder/none"
    expect_status 1
    expect_err "there is no file photo"
    expect_usage_error "cannot read $folder/missing: No such file or directory" files put "$database" "$folder/missing"
    dbc files put "$database" - </dev/null
    expect_status 2
    expect_err "--name"
    dbc files put "$database" - --name unreadable <"$folder"
    expect_status 2
    expect_err "standard input cannot be read"
    [[ -z $(compgen -G "$folder/none*") ]] || fail "a fetch that failed left a file"
    dbc files rm "$database"
    expect_status 2
    expect_err "--partial"
    dbc files rm "$database" words
    dbc files ls "$database"
    expect_status 1
    dbc files put "$database" "$folder"
    expect_status 2
    expect_err "cannot read"
    dbc files put "a.b" "$folder/data"
    expect_status 2
    expect_err "the name of a database"
}

@test "files rm --partial ignores chunks without an id" {
    "$program" -q insert "$database.fs.chunks" '{"n": 0}'
    "$program" -q insert "$database.fs.chunks" '{"n": 0, "files_id": 7}'
    dbc files rm "$database" --partial
    expect_status 0
    expect_out "removed 1"
    dbc count "$database.fs.chunks"
    expect_out 1
}
