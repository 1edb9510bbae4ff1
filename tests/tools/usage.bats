# Usage errors, help and versions.
load helper

@test "a collection without a database is a usage error" {
    dbc find alone
    expect_status 2
    expect_err "DATABASE.COLLECTION"
}

@test "a mistyped command or option is a usage error that names the closest one" {
    expect_usage_error "unknown command 'fnd'; did you mean 'find'?" fnd "$database.c"
    expect_usage_error "unknown command 'files gte'; did you mean 'files get'?" files gte "$database"
    expect_usage_error "unknown option '--limt'; did you mean '--limit'?" find "$database.c" --limt 5
    expect_usage_error "unknown option '--quite'; did you mean '--quiet'?" find "$database.c" --quite
    expect_usage_error "unknown option '--frobnicate'" find "$database.c" --frobnicate
    expect_usage_error "unknown command 'users frobnicate'; there are: add passwd update rm ls" users frobnicate
    expect_usage_error "unexpected argument 'more'" ls "$database" more
}

@test "an unexpected argument of a command that reads or writes a file suggests -f" {
    expect_usage_error "unexpected argument 'data.json'; use -f for a file" import "$database.c" data.json
    expect_usage_error "not a condition: data.json; write conditions as field=value, field>value, field?; use -f for a file" \
        export "$database.c" data.json
}

@test "files without a database asks for a database, not for a collection" {
    expect_usage_error "no database: write DATABASE after the command, or add the database to the connection string: mongodb://HOST/DATABASE" \
        files ls
}

@test "a negative number is a usage error" {
    expect_usage_error "--limit: '-1' is not a whole number of 0 or more" find "$database.c" --limit -1
    expect_usage_error "--skip: 'x' is not a whole number of 0 or more" find "$database.c" --skip x
    expect_usage_error "--sample: '1.5' is not a whole number of 0 or more" schema "$database.c" --sample 1.5
}

@test "help describes the program and each command" {
    dbc help
    expect_status 0
    [[ $out == *find*files*doctor* ]] || fail "$out"
    dbc help find
    expect_status 0
    [[ $out == *"dbc find"*--limit* ]] || fail "$out"
    dbc help files put
    expect_status 0
    [[ $out == *"dbc files put"*--name* ]] || fail "$out"
    expect_usage_error "unknown command 'files pt'; did you mean 'files put'?" help files pt
}

@test "--help and --version exit with status 0" {
    dbc --help
    expect_status 0
    dbc find --help
    expect_status 0
    local version='[0-9]+\.[0-9]+\.[0-9]+' option
    for option in --version -V; do
        dbc "$option"
        expect_status 0
        [[ $out =~ ^dbc\ $version$'\n'libdatabase_client\ $version$'\n'libmongoc\ $version$ ]] || fail "$out"
    done
    dbc
    expect_status 2
    expect_err "a command is missing; there are: find count"
}
