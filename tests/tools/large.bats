# Import and export of large documents and of many documents.
load helper

@test "documents up to the limit of the server are imported and exported, larger ones are rejected" {
    text() { head -c "$1" /dev/zero | tr '\0' x; }
    { for key in 1 2 3; do printf '{"_id": %d, "t": "%s"}\n' "$key" "$(text 12000000)"; done; } >"$folder/large"
    dbc --dialect relaxed import "$database.c" -f "$folder/large"
    expect_status 0
    dbc --dialect relaxed export "$database.c" -f "$folder/back"
    expect_status 0
    cmp <(tr -d ' ' <"$folder/large") <(tr -d ' ' <"$folder/back") || fail "the documents came back changed"
    printf '{"t": "%s"}' "$(text 17000000)" >"$folder/large"
    dbc import "$database.c" -f "$folder/large"
    expect_status 4
}

@test "thousands of documents are exported byte for byte as they were imported" {
    awk 'BEGIN { for (n = 0; n < 5000; ++n)
        printf "{ \"_id\" : { \"$numberInt\" : \"%d\" }, \"name\" : \"number %d\", \"half\" : { \"$numberDouble\" : \"%d.5\" }, \"tags\" : [ \"a\", \"b\" ] }\n", n, n, n / 2 }' >"$folder/first"
    dbc import "$database.c" --losses refuse <"$folder/first"
    expect_status 0
    expect_err "imported 5000"
    dbc export "$database.c" >"$folder/none"
    cmp "$folder/first" "$folder/out" || fail "lines came back changed"
    dbc export "$database.c" --array -f "$folder/array"
    dbc import "$database.d" -f "$folder/array"
    dbc export "$database.d"
    cmp "$folder/first" "$folder/out" || fail "an array came back changed"
}
