# dbc doctor.
load helper

@test "doctor checks every step from the connection string to the server" {
    dbc doctor
    expect_status 0
    [[ $out == "ok    connection string: "*"ok    address: "*"ok    port: "*"ok    tls: not used"*"ok    login: "*"ok    version: "* ]] ||
        fail "$out"
    dbc --uri 'mongodb://127.0.0.1:1/?serverSelectionTimeoutMS=100' doctor
    expect_status 3
    [[ $out == *"fail  port: 127.0.0.1:1 refuses connections or does not respond; check that the server runs"* ]] || fail "$out"
    dbc --uri 'mongodb://no-such-host.invalid/' doctor
    expect_status 3
    [[ $out == *"fail  address: no-such-host.invalid: "* ]] || fail "$out"
    dbc --uri 'mongodb://u:p%@h/' doctor
    expect_status 3
    [[ $out == "fail  connection string: "* ]] || fail "$out"
    DBC_URI="mongodb://${DATABASE_CLIENT_TEST_AUTH_URI#*@}" dbc doctor
    expect_status 4
    [[ $out == *"fail  login: "*"the server requires authentication: use --user" ]] || fail "$out"
}

@test "doctor checks every host" {
    local place=${DATABASE_CLIENT_TEST_URI#*://}
    place=${place##*@}
    place=${place%%/*}
    dbc --uri "mongodb://no-such-host.invalid,$place,127.0.0.1:1/?serverSelectionTimeoutMS=100" doctor
    expect_status 3
    [[ $out == *"fail  address: no-such-host.invalid: "*"ok    port: $place accepts connections"*"fail  port: 127.0.0.1:1 refuses connections or does not respond"* ]] ||
        fail "$out"
    dbc --uri 'mongodb://127.0.0.1:1,127.0.0.1:2/?serverSelectionTimeoutMS=100' doctor
    expect_status 3
    [[ $out == *"fail  port: 127.0.0.1:1 "*"fail  port: 127.0.0.1:2 "* && $out != *" server: "* ]] || fail "$out"
    dbc --uri "mongodb://${folder//\//%2F}%2Fnone.sock/?serverSelectionTimeoutMS=100" doctor
    expect_status 3
    [[ $out == *"fail  port: $folder/none.sock refuses connections or does not respond"* ]] || fail "$out"
}

# Starts a server whose certificate is the file $folder/$1. Its host and port are in $address.
start_tls_server() { # NAME
    local line="" output
    openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=$1" -addext subjectAltName=IP:127.0.0.1 \
        -keyout "$folder/$1.key" -out "$folder/$1" 2>/dev/null
    mkfifo "$folder/$1.out"
    openssl s_server -www -accept 127.0.0.1:0 -key "$folder/$1.key" -cert "$folder/$1" >"$folder/$1.out" 2>/dev/null &
    exec {output}<"$folder/$1.out" # stays open, so that the server can continue to print
    until [[ $line == ACCEPT* ]]; do read -r line <&"$output" || fail "openssl does not listen"; done
    address=${line#ACCEPT }
}

@test "doctor checks the TLS certificate of every host" {
    local trusted other
    start_tls_server trusted
    trusted=$address
    start_tls_server other
    other=$address
    dbc --uri "mongodb://$trusted,$other/?tls=true&tlsCAFile=$folder/trusted&serverSelectionTimeoutMS=2000" doctor
    expect_status 3
    [[ $out == *"ok    tls: $trusted: handshake succeeded"*"fail  tls: $other: "*"check tlsCAFile"* ]] || fail "$out"
}

@test "doctor distinguishes an untrusted certificate from an unreachable server" {
    start_tls_server untrusted
    dbc --uri "mongodb://$address/?tls=true&serverSelectionTimeoutMS=2000" doctor
    expect_status 3
    [[ $out == *"ok    port: $address accepts connections"*"fail  tls: "*"check tlsCAFile"* ]] || fail "$out"
}
