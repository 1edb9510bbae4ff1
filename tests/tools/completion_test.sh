#!/usr/bin/env bash
# usage: completion_test.sh FILE
# Sources the completion of dbc and completes a few lines. Needs no server.
set -euo pipefail

source "$1"

failed=0
# completes "LINE" "EXPECTED": the last word of the line, empty after a space, is completed.
completes() {
    local expected=$2
    read -ra COMP_WORDS <<<"$1"
    if [[ $1 == *" " ]]; then COMP_WORDS+=(""); fi
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMP_LINE=$1 COMP_POINT=${#1}
    COMPREPLY=()
    _dbc || true # compopt knows of no completion here
    if [[ "${COMPREPLY[*]}" != "$expected" ]]; then
        printf 'FAILED: "%s" is completed with "%s" instead of "%s"\n' "$1" "${COMPREPLY[*]}" "$expected" >&2
        failed=1
    fi
}

completes "dbc " "find count distinct insert update remove aggregate export import ls indexes index drop files users check schema doctor help"
completes "dbc im" "import"
completes "dbc index cr" "create"
completes "dbc drop shop.orders --y" "--yes"
completes "dbc files " "put get ls rm"
completes "dbc --quiet users pa" "passwd"
completes "dbc --dialect c" "canonical"
completes "dbc --uri find " "find count distinct insert update remove aggregate export import ls indexes index drop files users check schema doctor help"
completes "dbc import shop.orders --losses re" "refuse"
completes "dbc import shop.orders --re" "--resume"
completes "dbc update shop.orders -o pull" "pull pullAll"
completes "dbc find shop.orders --sor" "--sort"
completes "dbc find shop.orders --sort " ""
completes "dbc count --so" ""
completes "dbc import shop.orders -f $1" "$1"
completes "dbc files put shop $1" "$1"
completes "dbc files rm shop --p" "--password-file --partial"
completes "dbc files ls shop --pa" "--password-file"
[[ $(complete -p dbc) == *" _dbc dbc" ]] || failed=1
exit "$failed"
