# dbc import from JSON.
load helper

@test "import takes lines or an array" {
    printf '{"n": 1}\n\n{"n": 2, "text": "a } \\" {"}\n' >"$folder/lines"
    dbc import "$database.c" -f "$folder/lines"
    expect_status 0
    expect_err "imported 2"
    printf '[ {"n": 3},\n {"n": 4} ]' >"$folder/array"
    dbc import "$database.c" -f "$folder/array"
    expect_err "imported 2"
    dbc count "$database.c"
    expect_out 4
}

@test "import says where the input is not JSON" {
    printf '{"n": 1}\n{"n": }\n' >"$folder/bad"
    dbc import "$database.c" -f "$folder/bad"
    expect_status 2
    expect_err 'bad: line 2, column 7: a value is expected, not "}"; stopped at line 2, after 1 document; continue with --resume 1'
    printf '{"n": [1, {"m": 2]}\n{"n": 3}\n' >"$folder/bad"
    dbc import "$database.c" -f "$folder/bad"
    expect_err 'bad: line 1, column 18: "," or "}" is expected, not "]"; stopped at line 1, after 0 documents'
    printf '[{"n": 1}; {"n": 2}]' >"$folder/bad"
    dbc import "$database.c" -f "$folder/bad"
    expect_err 'bad: line 1, column 10: a document begins with "{", not with ";"'
    printf '{"n": 1' >"$folder/cut"
    dbc import "$database.c" -f "$folder/cut"
    expect_status 2
    expect_err "the document that begins at line 1, column 1 does not end"
    printf '[{"n": 1},' >"$folder/cut"
    dbc import "$database.c" -f "$folder/cut"
    expect_status 2
    expect_err "ends inside an array"
    dbc import "$database.c" -f "$folder/missing"
    expect_status 2
}

@test "import takes an empty input and rejects text that is not UTF-8" {
    dbc import "$database.c" -f /dev/null
    expect_status 0
    expect_err "imported 0"
    printf '{"t": "\xc3\xa9 \xe2\x82\xac"}\n{"t": "\xff"}\n' >"$folder/lines"
    dbc import "$database.c" -f "$folder/lines" --batch 1
    expect_status 2
    dbc find "$database.c" --fields '{"_id": 0}'
    expect_out '{ "t" : "é €" }'
}

@test "import skips duplicate keys if asked to" {
    printf '{"_id": 1}\n{"_id": 2}\n' >"$folder/lines"
    dbc insert "$database.c" '{"_id": 1}'
    dbc import "$database.c" -f "$folder/lines"
    expect_status 4
    expect_err "; --skip-duplicates skips such documents"
    dbc import "$database.c" -f "$folder/lines" --skip-duplicates
    expect_status 0
    expect_err "imported 1"
    expect_err "skipped 1 with a duplicate key"
}

@test "import counts or rejects values that the document model cannot represent" {
    printf '{"_id": 1, "x": null}\n{"_id": 2, "x": {"$numberDecimal": "1.5"}}\n{"_id": 3, "x": 1}\n' >"$folder/lossy"
    dbc import "$database.c" -f "$folder/lossy" --losses refuse
    expect_status 4
    expect_err "document 1, x: null is dropped"
    dbc count "$database.c"
    expect_out 0
    printf '{"_id": 1, "x": null}\n{"_id": 3, "x": 1}\n' >"$folder/lossy"
    dbc import "$database.c" -f "$folder/lossy"
    expect_status 0
    expect_err "1  null is dropped"
    expect_err "in 1 document"
}

@test "import continues from the number that a failed import printed" {
    local number
    for ((number = 0; number < 20; ++number)); do printf '{"n": %d}\n' "$number"; done >"$folder/lines"
    { head -15 "$folder/lines" && echo '}' && tail -4 "$folder/lines"; } >"$folder/broken"
    dbc import "$database.c" -f "$folder/broken" --batch 7
    expect_status 2
    expect_err "stopped at line 16, after 15 documents; continue with --resume 15"
    dbc import "$database.c" -f "$folder/lines" --resume 15
    expect_status 0
    expect_err "imported 5"
    dbc find "$database.c" --sort n --fields '{"_id": 0}'
    expect_out "$(for ((number = 0; number < 20; ++number)); do printf '{ "n" : %d }\n' "$number"; done)"
    dbc import "$database.c" -f "$folder/lines" --resume 21
    expect_status 2
    expect_err "the input has fewer documents"
    dbc import "$database.c" -f "$folder/lines" --resume 5:x
    expect_status 2
    expect_err "--resume is not the value that an import prints"
}

@test "import says which document the server rejected" {
    printf '{"_id": 1}\n\n{"_id": 2}\n{"_id": 9}\n{"_id": 3}\n' >"$folder/lines"
    dbc insert "$database.c" '{"_id": 9}'
    dbc import "$database.c" -f "$folder/lines"
    expect_status 4
    expect_err "(code: 11000); stopped at line 4, after 2 documents; continue with --resume 2"
    dbc import "$database.c" -f "$folder/lines" --resume 3
    expect_status 0
    dbc count "$database.c"
    expect_out 4
}

@test "import continues from its state file" {
    local number
    for ((number = 0; number < 50; ++number)); do printf '{"n": %d}\n' "$number"; done >"$folder/lines"
    # The first run ends in the middle, at a line that is not JSON.
    { head -28 "$folder/lines" && echo '}'; } >"$folder/broken"
    dbc import "$database.c" -f "$folder/broken" --batch 7 --state "$folder/state"
    expect_status 2
    expect_err "28 documents; continue with the same command"
    # As after kill -9: the last batch was stored, but not recorded. It is read again and skipped.
    local run
    run=$(dbc find "$database.c" --limit 1 --fields '{"_id": 1}' && grep -o '[0-9a-f]\{24\}' <<<"$out")
    echo "21:$run" >"$folder/state"
    dbc import "$database.c" -f "$folder/lines" --batch 7 --state "$folder/state"
    expect_status 0
    expect_err "skipped 7 with a duplicate key"
    dbc find "$database.c" --sort '{"n": 1}' --fields '{"_id": 0}'
    expect_out "$(for ((number = 0; number < 50; ++number)); do printf '{ "n" : %d }\n' "$number"; done)"
    [[ ! -e $folder/state ]] || fail "the state stays behind"
}

@test "import with --upsert replaces or inserts by the values of fields" {
    dbc insert "$database.c" '{"_id": 1, "sku": "a", "shop": {"city": "x"}, "old": true}' '{"_id": 2, "sku": "a", "shop": {"city": "y"}}'
    printf '{"sku": "a", "shop": {"city": "x"}, "n": 1}\n{"sku": "b", "shop": {"city": "x"}, "n": 2}\n' >"$folder/lines"
    dbc import "$database.c" -f "$folder/lines" --upsert sku,shop.city
    expect_status 0
    expect_err "replaced 1, inserted 1"
    dbc find "$database.c" --sort n,_id --fields '{"sku": 1, "n": 1, "old": 1}'
    [[ $out == '{ "_id" : 2, "sku" : "a" }'$'\n''{ "_id" : 1, "sku" : "a", "n" : 1 }'$'\n''{ "_id" : { "$oid" : '*'"sku" : "b", "n" : 2 }' ]] ||
        fail "$out"
    dbc import "$database.c" -f "$folder/lines" --upsert sku,shop.city
    expect_err "replaced 2, inserted 0"
    printf '{"sku": "a", "shop": {"city": "x"}}\n{"sku": "b"}\n' >"$folder/lines"
    dbc import "$database.c" -f "$folder/lines" --upsert sku,shop.city
    expect_status 2
    expect_err "line 2: the document has no field shop.city; stopped at line 2, after 1 document; continue with --resume 1"
    dbc import "$database.c" -f "$folder/lines" --upsert sku --skip-duplicates
    expect_status 2
}
