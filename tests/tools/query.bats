# dbc find, count, distinct, aggregate, check and schema, and their queries.
load helper

@test "find prints documents as they are stored" {
    dbc insert "$database.c" '{"_id": 1, "z": null, "a": [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11], "d": {"$date": "2020-01-01T00:00:00Z"}}'
    expect_status 0
    dbc find "$database.c"
    expect_status 0
    expect_no_messages # also none of the driver
    expect_out '{ "_id" : 1, "z" : null, "a" : [ 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 ], "d" : { "$date" : "2020-01-01T00:00:00Z" } }'
}

@test "find writes every dialect of JSON" {
    dbc insert "$database.c" '{"_id": 1, "d": {"$date": {"$numberLong": "0"}}}'
    dbc --dialect canonical find "$database.c"
    expect_out '{ "_id" : { "$numberInt" : "1" }, "d" : { "$date" : { "$numberLong" : "0" } } }'
    dbc --dialect legacy find "$database.c"
    expect_out '{ "_id" : 1, "d" : { "$date" : 0 } }'
    dbc find "$database.c" --array
    expect_out $'[\n{ "_id" : 1, "d" : { "$date" : "1970-01-01T00:00:00Z" } }\n]'
}

@test "find takes a sort order, fields, a limit and a number to skip" {
    fill 5
    dbc find "$database.c" --sort '{"n": -1}' --fields '{"_id": 0, "n": 1}' --limit 2 --skip 1
    expect_status 0
    expect_out $'{ "n" : 3 }\n{ "n" : 2 }'
}

@test "find sorts by a list of fields or by JSON" {
    dbc insert "$database.c" '{"_id": 1, "n": 1, "m": 2}' '{"_id": 2, "n": 2, "m": 1}' '{"_id": 3, "n": 2, "m": 0}'
    dbc find "$database.c" --sort -n,m --fields '{"_id": 1}'
    expect_out $'{ "_id" : 3 }\n{ "_id" : 2 }\n{ "_id" : 1 }'
    dbc find "$database.c" --sort '{"n": -1, "m": -1}' --fields '{"_id": 1}'
    expect_out $'{ "_id" : 2 }\n{ "_id" : 3 }\n{ "_id" : 1 }'
    dbc find "$database.c" --sort 'n,'
    expect_status 2
    expect_err "a field is missing"
}

@test "find exits with status 1 if no document matches" {
    dbc find "$database.c" 'n=1'
    expect_status 1
    expect_out ""
}

@test "conditions compare fields with numbers and test whether they exist" {
    fill 10
    dbc count "$database.c" 'n>=3' 'n<7' 'even=1'
    expect_out 2
    dbc count "$database.c" 'n!=0'
    expect_out 9
    dbc count "$database.c" 'n?'
    expect_out 10
    dbc count "$database.c" '!n'
    expect_status 1
    expect_out 0
}

@test "conditions compare fields with strings, patterns and ids" {
    dbc insert "$database.c" '{"_id": {"$oid": "507f1f77bcf86cd799439011"}, "name": "Ada L", "code": "5"}'
    dbc count "$database.c" 'name=Ada L'
    expect_out 1
    dbc count "$database.c" 'name~^Ada'
    expect_out 1
    dbc count "$database.c" 'code="5"'
    expect_out 1
    dbc count "$database.c" 'code=5'
    expect_out 0
    dbc count "$database.c" '_id=507f1f77bcf86cd799439011'
    expect_out 1
}

@test "conditions take regular expressions with flags" {
    dbc insert "$database.c" '{"name": "Canada"}' '{"name": "canal"}' '{"name": "Peru"}' '{"name": "/usr/lib"}'
    dbc count "$database.c" 'name~/^can/i'
    expect_out 2
    dbc count "$database.c" 'name~/^can/'
    expect_out 1
    dbc count "$database.c" 'name~\/usr/lib'
    expect_out 1
    dbc count "$database.c" 'name~/usr/lib'
    expect_status 2
    expect_err '"b" is not a flag of a regular expression'
    expect_err 'name~\/usr/lib'
}

@test "signs of other languages are usage errors that suggest the right sign" {
    expect_usage_error 'not a condition: n==1; did you mean n=1? Write a string as n="=1"' find "$database.c" n==1
    expect_usage_error 'not a condition: n=>1; did you mean n>=1? Write a string as n=">1"' find "$database.c" 'n=>1'
    expect_usage_error 'not a condition: n=<1; did you mean n<=1? Write a string as n="<1"' count "$database.c" 'n=<1'
    expect_usage_error 'not a condition: n=~a; did you mean n~a? Write a string as n="~a"' count "$database.c" 'n=~a'
    expect_usage_error 'not a condition: n<>1; did you mean n!=1? Write a string as n<">1"' count "$database.c" 'n<>1'
    dbc insert "$database.c" '{"_id": 1, "n": "=1"}'
    dbc count "$database.c" 'n="=1"'
    expect_out 1
}

@test "--fields takes names with commas between, or JSON" {
    dbc insert "$database.c" '{"_id": 1, "a": 1, "b": {"c": 2, "d": 3}}'
    dbc find "$database.c" --fields a,b.c
    expect_out '{ "_id" : 1, "a" : 1, "b" : { "c" : 2 } }'
    dbc find "$database.c" --fields b.d,-_id
    expect_out '{ "b" : { "d" : 3 } }'
    dbc find "$database.c" --fields -b
    expect_out '{ "_id" : 1, "a" : 1 }'
    dbc find "$database.c" --fields '{"a": 1}'
    expect_out '{ "_id" : 1, "a" : 1 }'
    expect_usage_error '--fields: a field is missing; write name,-age' find "$database.c" --fields a,
}

@test "conditions compare fields with times" {
    dbc insert "$database.c" '{"_id": 1, "when": {"$date": "2023-06-01T10:30:00Z"}}' '{"_id": 2, "when": {"$date": "2022-06-01T00:00:00Z"}}' \
        '{"_id": 3, "when": "2023-06-01"}'
    local word
    for word in 'when>2023-01-01' 'when=2023-06-01T10:30Z' 'when=2023-06-01 12:30:00.000+02:00' 'when>=2023-06-01T10:29:59.999'; do
        dbc find "$database.c" "$word" --fields '{"_id": 1}'
        expect_out '{ "_id" : 1 }'
    done
    dbc find "$database.c" 'when<2023-01-01' --fields '{"_id": 1}'
    expect_out '{ "_id" : 2 }'
    dbc find "$database.c" 'when="2023-06-01"' --fields '{"_id": 1}'
    expect_out '{ "_id" : 3 }'
    dbc find "$database.c" 'when>2023-02-29'
    expect_status 2
    expect_err 'invalid time 2023-02-29; write a string as when="2023-02-29"'
}

@test "a query that is not JSON is a usage error that names line and column" {
    dbc find "$database.c" '{"n": }'
    expect_status 2
    expect_err 'the query is not JSON: line 1, column 7: a value is expected, not "}"'
    dbc find "$database.c" $'{"a": "é",\n "b": 1,}'
    expect_err 'line 2, column 8: no comma is allowed before "}"'
    dbc find "$database.c" "{'a': 1}"
    expect_err "line 1, column 2: a key in double quotes is expected, not \"'\""
    dbc find "$database.c" '{"a": {"$oid": "x"}}'
    expect_err 'line 1, column '
    dbc find "$database.c" 'a={"b"'
    expect_err 'the value of a is not JSON: line 1, column 5: ":" is expected after the key, not the end'
    dbc find "$database.c" 'nonsense'
    expect_status 2
    expect_err "not a condition: nonsense"
}

@test "count without a query counts all documents" {
    fill 7
    dbc count "$database.c"
    expect_status 0
    expect_out 7
    dbc count "$database.d"
    expect_status 1
    expect_out 0
}

@test "distinct prints the values of a field" {
    dbc insert "$database.c" '{"n": 1, "t": ["a", "b"]}' '{"n": 2, "t": ["b"]}' '{"n": 1, "t": ["c"]}'
    dbc distinct "$database.c" n
    expect_status 0
    expect_out $'1\n2'
    dbc distinct "$database.c" t 'n=1'
    expect_out $'"a"\n"b"\n"c"'
    dbc distinct "$database.c" none
    expect_status 1
    expect_out ""
}

@test "aggregate runs the stages in their order" {
    fill 6
    dbc aggregate "$database.c" '[{"$match": {"n": {"$gte": 2}}}, {"$group": {"_id": "$even", "sum": {"$sum": "$n"}}}, {"$sort": {"_id": 1}}]'
    expect_status 0
    expect_out $'{ "_id" : 0, "sum" : 6 }\n{ "_id" : 1, "sum" : 8 }'
}

@test "a pipeline that is not a list is a usage error" {
    dbc aggregate "$database.c" '{"$match": {}}'
    expect_status 2
    expect_err "not an array of stages"
}

@test "check lists the values that the document model cannot represent" {
    dbc insert "$database.c" '{"_id": 1, "x": null}' '{"_id": 2, "x": 1}'
    dbc check "$database.c"
    expect_status 4
    expect_out $'1  null is dropped\nin 1 document'
    dbc check "$database.c" '_id=2'
    expect_status 0
    expect_out "1 document without losses"
}

@test "schema prints paths, types, counts and ranges" {
    dbc insert "$database.c" '{"_id": 1, "n": 5, "t": "abc", "l": [1, 2], "w": {"$date": "2020-01-01T00:00:00Z"}}' '{"_id": 2, "n": -5, "g": {"x": true}}'
    dbc schema "$database.c"
    expect_status 0
    expect_out "_id   int32              2  1 .. 2
g     object             1
g.x   bool               1
l     array              1  length 2 .. 2
l.[]  int32              2  1 .. 2
n     int32              2  -5 .. 5
t     string             1  length 3 .. 3
w     time               1  2020-01-01T00:00:00Z .. 2020-01-01T00:00:00Z
2 documents"
}

@test "schema says how it chose its sample" {
    fill 5
    dbc schema "$database.c" --sample 2
    expect_status 0
    [[ $out == *$'\n2 documents' ]] || fail "$out"
    case $DATABASE_CLIENT_TEST_SERVER in
    ferretdb) expect_err 'sample: the first ones, because the server does not support $sample: Aggregation failed: ' ;;
    mongod) expect_err 'sample: chosen at random by the server' ;;
    *) expect_err 'sample: ' ;;
    esac
    dbc schema "$database.c" --sample 6
    expect_err 'sample: all documents'
    dbc schema "$database.c" --sample 0
    expect_err 'sample: all documents'
    [[ $out == *$'\n5 documents' ]] || fail "$out"
    dbc --quiet schema "$database.c" --sample 2
    expect_no_messages
}
