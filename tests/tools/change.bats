# dbc insert, update and remove.
load helper

@test "insert prints the ids of the documents" {
    dbc insert "$database.c" '{"_id": 1}' '{"_id": {"$oid": "507f1f77bcf86cd799439011"}}' '{"_id": {"a": "b"}}'
    expect_status 0
    expect_out $'1\n507f1f77bcf86cd799439011\n{ "a" : "b" }'
    [[ $err == "inserted 3" ]] || fail "messages: $err"
    dbc insert "$database.c" '{"n": 1}'
    dbc count "$database.c" "_id=$out" 'n=1'
    expect_out 1
    dbc --quiet insert "$database.c" '{"n": 2}'
    expect_out ""
    expect_no_messages
}

@test "insert reads standard input if no document is given" {
    printf '{"_id": 1}\n{"_id": 2}\n' >"$folder/lines"
    dbc insert "$database.c" <"$folder/lines"
    expect_status 0
    expect_out $'1\n2'
    printf '[{"_id": 3},\n {"_id": 4}]' >"$folder/array"
    dbc insert "$database.c" <"$folder/array"
    expect_out $'3\n4'
    printf '{"_id": 5}\n{"_id": 1}\n{"_id": 6}\n' >"$folder/lines"
    dbc insert "$database.c" <"$folder/lines"
    expect_status 4
    expect_out 5 # the documents before the error
    printf '{"_id": 7}\n{"_id": \n' >"$folder/lines"
    dbc insert "$database.c" <"$folder/lines"
    expect_status 2
    dbc count "$database.c"
    expect_out 5
}

@test "insert reports the error of the server for a duplicate key" {
    dbc insert "$database.c" '{"_id": 1}'
    dbc insert "$database.c" '{"_id": 1}'
    expect_status 4
    expect_err "(code: 11000)" # the text depends on the server
}

@test "update changes the first match or all matches" {
    fill 4
    dbc update "$database.c" 'even=0' -d '{"state": "x"}'
    expect_status 0
    expect_out "matched 1, changed 1"
    dbc count "$database.c" 'state=x'
    expect_out 1
    dbc update "$database.c" 'even=0' -d '{"state": "y"}' --multi
    expect_out "matched 2, changed 2"
    dbc count "$database.c" 'state=y'
    expect_out 2
    dbc update "$database.c" 'n=100' -d '{"state": "z"}'
    expect_status 1
    expect_out "matched 0, changed 0"
    dbc update "$database.c" 'n=100' -d '{"state": "z"}' --upsert
    expect_out "inserted 1"
    dbc count "$database.c" 'n=100' 'state=z'
    expect_out 1
    dbc update "$database.c" 'n=100' -d '{"state": ""}' -o unset
    dbc count "$database.c" 'state=z'
    expect_out 0
}

@test "an unknown update operation is a usage error that lists the operations" {
    dbc update "$database.c" 'n=1' -d '{}' -o bogus
    expect_status 2
    expect_err "bogus not in {addToSet,pop,pull,pullAll,push,rename,replace,set,unset}"
}

@test "update prints how many documents it matched and changed" {
    fill 4
    dbc update "$database.c" 'n=0' -d '{"state": "x"}'
    expect_out "matched 1, changed 1"
    dbc update "$database.c" 'even=0' -d '{"state": "x"}' --multi
    expect_status 0
    expect_out "matched 2, changed 1"
    dbc update "$database.c" 'n=0' -d '{"state": "x"}'
    expect_status 0
    expect_out "matched 1, changed 0"
}

@test "update takes operators, null and long arrays" {
    dbc insert "$database.c" '{"_id": 1, "n": 5, "old": true}'
    dbc update "$database.c" '_id=1' -d '{"$inc": {"n": 2}, "$unset": {"old": ""}}'
    expect_status 0
    expect_out "matched 1, changed 1"
    dbc find "$database.c"
    expect_out '{ "_id" : 1, "n" : 7 }'
    dbc update "$database.c" '_id=1' -d '{"n": null, "a": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11]}'
    expect_out "matched 1, changed 1"
    dbc find "$database.c"
    expect_out '{ "_id" : 1, "n" : null, "a" : [ 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 ] }'
    dbc update "$database.c" '_id=1' -d '5'
    expect_status 2
    expect_err "the update is not a JSON document"
}

@test "update with replace replaces a document or applies its operators" {
    dbc insert "$database.c" '{"_id": 1, "n": 5, "old": true}'
    dbc update "$database.c" '_id=1' -d '{"$inc": {"n": 2}, "$unset": {"old": ""}}' -o replace
    expect_out "matched 1, changed 1"
    dbc find "$database.c"
    expect_out '{ "_id" : 1, "n" : 7 }'
    dbc update "$database.c" '_id=1' -d '{"new": null}' -o replace
    expect_out "matched 1, changed 1"
    dbc find "$database.c"
    expect_out '{ "_id" : 1, "new" : null }'
    dbc update "$database.c" '_id=1' -d '{"new": 2}' -o replace --multi
    expect_status 2
    expect_err "a replacement changes one document"
    dbc find "$database.c"
    expect_out '{ "_id" : 1, "new" : null }'
}

@test "update and remove send null and arrays unchanged" {
    dbc insert "$database.c" '{"_id": 1, "n": null}' '{"_id": 2, "n": 0}'
    dbc update "$database.c" '{"n": null}' -d '{"a": [null, 1]}' --multi
    expect_out "matched 1, changed 1"
    dbc find "$database.c" '_id=1'
    expect_out '{ "_id" : 1, "n" : null, "a" : [ null, 1 ] }'
    dbc remove "$database.c" '{"n": null}'
    expect_out "removed 1"
    dbc count "$database.c"
    expect_out 1
}

@test "remove requires a query or --all" {
    fill 3
    dbc remove "$database.c"
    expect_status 2
    expect_err "--all"
    dbc remove "$database.c" '{}'
    expect_status 2
    expect_err "--all"
    dbc remove "$database.c" 'n=1'
    expect_out "removed 1"
    dbc remove "$database.c" 'n=1'
    expect_status 1
    expect_out "removed 0"
    dbc remove "$database.c" --all
    expect_out "removed 2"
}

@test "an unacknowledged write is reported as sent" {
    local uri=$DBC_URI # may contain options
    [[ $uri == *\?* ]] && uri+='&w=0' || uri+='?w=0'
    printf '{"n": 1}\n{"n": 2}\n{"n": 3}\n' >"$folder/lines"
    dbc --uri "$uri" import "$database.c" -f "$folder/lines" --batch 2
    expect_status 0
    [[ $err == "sent 3, not acknowledged" ]] || fail "messages: $err"
    dbc --uri "$uri" insert "$database.c" '{"n": 4}'
    expect_status 0
    expect_out ""
    expect_err "sent 1, not acknowledged"
    dbc --uri "$uri" update "$database.c" 'n=4' -d '{"n": 5}'
    expect_status 0
    expect_out "sent, not acknowledged"
    dbc --uri "$uri" remove "$database.c" 'n=5'
    expect_status 0
    expect_out "sent, not acknowledged"
}
