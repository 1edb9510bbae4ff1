# dbc ls, index, indexes and drop.
load helper

@test "ls lists databases and collections" {
    fill 3
    dbc insert "$database.other" '{"_id": 1}'
    dbc ls
    expect_status 0
    [[ $'\n'$out =~ $'\n'"$database"\ +[0-9.]+\ [KM]?i?B ]] || fail "$out"
    dbc ls "$database"
    expect_status 0
    [[ $out =~ ^c\ +3\ +[0-9.]+\ [KM]?i?B$'\n'other\ +1\ +[0-9.]+\ [KM]?i?B$ ]] || fail "$out"
    dbc ls "none_$database"
    expect_status 1
    expect_out ""
}

@test "indexes are created, listed and dropped" {
    fill 3
    dbc index create "$database.c" n,-even
    expect_status 0
    expect_out n_1_even_-1
    dbc index create "$database.c" '{"n": 1}' --unique --name numbers
    expect_out numbers
    dbc insert "$database.c" '{"n": 1}'
    expect_status 4
    dbc indexes "$database.c"
    expect_status 0
    expect_out $'_id_  { "_id" : 1 }\nn_1_even_-1  { "n" : 1, "even" : -1 }\nnumbers  { "n" : 1 }  unique'
    dbc index drop "$database.c" numbers
    expect_status 0
    dbc index drop "$database.c" numbers
    expect_status 1
    dbc index create "$database.c" '{"n": 5}'
    expect_status 2
    dbc index create "$database.c" ,n
    expect_status 2
    dbc indexes "$database.none"
    expect_status 1
}

@test "drop requires the name to be typed, or --yes" {
    fill 2
    dbc drop "$database.c" </dev/null
    expect_status 2
    expect_err "--yes"
    ! on_terminal "$program drop $database.c" <<<"something else" || fail "dropped"
    dbc count "$database.c"
    expect_out 2
    on_terminal "$program drop $database.c" <<<"$database.c" || fail "$(<"$folder/terminal")"
    grep -q "Type its name: " "$folder/terminal" || fail "$(<"$folder/terminal")"
    dbc count "$database.c"
    expect_out 0
    dbc drop --yes "$database.c"
    expect_status 1
    expect_err "there is no collection $database.c"
}

@test "drop of a name without a database suggests --database" {
    expect_usage_error "no database: write DATABASE.COLLECTION, or add the database to the connection string: mongodb://HOST/DATABASE; use --database to drop the database shop" \
        drop shop
}

@test "drop removes a database with its collections" {
    fill 2
    dbc insert "$database.d" '{"n": 1}'
    dbc drop --database "$database" </dev/null
    expect_status 2
    dbc drop --database "$database" --yes
    expect_status 0
    dbc ls "$database"
    expect_status 1
    dbc drop --database "$database" --yes
    expect_status 1
    expect_err "there is no database $database"
}
