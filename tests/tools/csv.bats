# dbc import and export of CSV and TSV.
load helper

@test "export and import of CSV and TSV keep types" {
    dbc insert "$database.c" \
        '{"_id": 1, "t": "plain", "i": 5, "l": {"$numberLong": "5"}, "d": 2.0, "b": true, "w": {"$date": "2020-02-29T12:30:00.250Z"}}' \
        '{"_id": 2, "t": "", "i": -2147483648, "l": {"$numberLong": "-9223372036854775808"}, "d": 1e300, "b": false, "w": {"$date": {"$numberLong": "-1"}}}' \
        '{"_id": 3, "t": "a \"quote\", a comma,\ttab\r\nand lines \u00e9", "d": -0.1, "o": {"x": {"y": 1}, "z": "005"}, "a": [1, "2", {"k": {"$numberLong": "3"}}]}' \
        '{"_id": 4, "o": {"z": "null", "x": {"y": 2}}, "m": 1, "oid": {"$oid": "507f1f77bcf86cd799439011"}}' \
        '{"_id": 5, "m": "1", "e": {}, "n": null, "bin": {"$binary": {"base64": "AAE=", "subType": "00"}}, "r": {"$regularExpression": {"pattern": "^a,", "options": "i"}}}' \
        '{"_id": 6, "far": {"$date": {"$numberLong": "253402300800000"}}}'
    expect_status 0
    dbc export "$database.c" '{"_id": {"$ne": 4}}'
    cp "$folder/out" "$folder/first"
    local format
    for format in csv tsv; do
        dbc export "$database.c" -f "$folder/table.$format" '{"_id": {"$ne": 4}}'
        expect_status 0
        dbc -q remove "$database.d" --all
        dbc import "$database.d" -f "$folder/table.$format"
        expect_status 0
        dbc export "$database.d"
        cmp "$folder/first" "$folder/out" || fail "$format came back changed: $(<"$folder/table.$format") $out"
    done
    # Document 4 has the fields of its object in another order, but the columns have only one order.
    dbc export "$database.c" _id=4 --format csv
    expect_out "_id:int,o.z:string,o.x.y:int,m:int,oid:objectId
4,null,2,1,507f1f77bcf86cd799439011"
    dbc export "$database.c" --format csv
    [[ ${out%%$'\n'*} == *,m:json,* ]] || fail "a column of two types is not JSON: $out"
}

@test "import of CSV without types derives them from the values" {
    printf '\xef\xbb\xbfname,n,big,d,b,w,x,user_id,nothing,a.b\r\nAda,5,5000000000,2.5,true,2023-01-31,007,507f1f77bcf86cd799439011,null,1\r\n"5",,,1e3,,2023-02-30,"2023-01-31",,,\r\n' >"$folder/t.csv"
    dbc import "$database.c" -f "$folder/t.csv"
    expect_status 0
    dbc --dialect canonical find "$database.c" --fields '{"_id": 0}'
    expect_out '{ "name" : "Ada", "n" : { "$numberInt" : "5" }, "big" : { "$numberLong" : "5000000000" }, "d" : { "$numberDouble" : "2.5" }, "b" : true, "w" : { "$date" : { "$numberLong" : "1675123200000" } }, "x" : "007", "user_id" : { "$oid" : "507f1f77bcf86cd799439011" }, "nothing" : null, "a" : { "b" : { "$numberInt" : "1" } } }
{ "name" : "5", "d" : { "$numberDouble" : "1000.0" }, "w" : "2023-02-30", "x" : "2023-01-31" }'
    dbc export "$database.c" --format csv --plain-header --columns name,n,d,w,x
    expect_out 'name,n,d,w,x
Ada,5,2.5,2023-01-31T00:00:00.000Z,007
"5",,1000.0,2023-02-30,"2023-01-31"'
}

@test "columns on the command line replace those of the file" {
    printf 'Ada\t1\t2020-01-01\nBob\t2\t\n' >"$folder/t"
    dbc import "$database.c" -f "$folder/t" --format tsv --header name:string,total:double,when:date
    expect_status 0
    dbc export "$database.c" --format csv --columns name,total:double,missing
    expect_out $'name,total:double,missing\nAda,1.0,\nBob,2.0,'
    dbc export "$database.c" --format csv --columns name:int
    expect_status 4
    expect_err 'document 1: name is not of type int but of type string; a column name:json accepts every type'
    dbc export "$database.c" --columns name
    expect_status 2
    dbc insert "$database.d" '{"a.b": 1}'
    if [[ $status == 0 ]]; then
        dbc export "$database.d" --format csv
        expect_status 4
        expect_err 'the field "a.b" cannot be a column'
    fi
}

@test "import says where a row is wrong" {
    bad() { # TEXT MESSAGE
        printf "$1" >"$folder/bad.csv"
        dbc import "$database.c" -f "$folder/bad.csv"
        expect_status 2
        expect_err "$2"
    }
    bad 'a,b\n1,2\n\n"x\ny",4\n3\n' 'bad.csv: line 6: 1 value for 2 columns; stopped at line 6, after 2 documents; continue with --resume 2'
    bad 'a:int,b\n1,2\nx,3\n' 'bad.csv: line 3: a: "x" is not of type int; stopped at line 3, after 1 document'
    bad 'a:json,b\n"{""x"": }",2\n' 'line 2: a is not JSON: line 1, column 7: a value is expected, not "}"'
    bad 'a,b\n"1,2\n3,4\n' 'line 2: a value in this record has no closing quote'
    bad 'a,b\n"1"2,3\n' 'line 2: "2" follows the closing quote of a value'
    bad 'a,b\n1,\xff\n' 'line 2: value 2 is not UTF-8'
    bad 'a,b,a\n1,2,3\n' 'two columns have the name a'
    bad 'a,,b\n1,2,3\n' 'column 2 has no name'
    bad 'a,a.b\n1,2\n' 'line 2: a.b is a field of a, which has a value'
}
