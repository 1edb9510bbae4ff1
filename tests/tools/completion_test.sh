#!/usr/bin/env bash
# usage: completion_test.sh SHELL PROGRAM SOURCES
# Tests the completion of dbc in bash, zsh or fish. It must complete everything that the help of the program lists.
# Needs no server. Exits with status 77 if the shell is not installed.
set -euo pipefail

shell=$1
sources=$3
PATH=$(dirname "$2"):$PATH
command -v "$shell" >/dev/null || {
    echo "$shell is not installed"
    exit 77
}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
touch a-file

# Each function reads command lines from standard input, completes the last word, and prints one line of candidates for
# each command line.
complete_with_bash() {
    source "$sources/dbc.bash-completion"
    local line
    while IFS= read -r line; do
        # Like bash, splits at "=" and ":", which become words.
        read -ra COMP_WORDS <<<"$(sed 's/[=:]/ & /g' <<<"$line")"
        if [[ $line == *[\ =:] ]]; then COMP_WORDS+=(""); fi
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _dbc dbc || true # compopt fails outside of a completion
        echo "${COMPREPLY[*]}"
    done
}
complete_with_zsh() {
    zsh -f -c '
        source_completion() { source $1/dbc.zsh-completion }
        found=()
        _files() { found+=(*) }
        _describe() { local candidate; for candidate in "${(@P)@[-1]}"; do found+=("${candidate%%:*}"); done }
        words=(dbc "") CURRENT=2
        source_completion $1
        while IFS= read -r line; do
            words=(${(s: :)line})
            [[ $line == *" " ]] && words+=("")
            CURRENT=$#words found=()
            _dbc
            current=$words[-1]
            print -r -- ${(M)found:#${current}*}
        done' zsh "$sources"
}
complete_with_fish() {
    HOME=$folder fish --no-config -c '
        source $argv[1]/dbc.fish
        while read --line line
            echo (complete -C "$line" | string replace --regex "\t.*" "")
        end' "$sources"
}

failed=0
# completes LINE EXPECTED: checks the candidates for the last word of LINE, which is empty after a space. If EXPECTED
# begins with "-- ", there may be other candidates, too.
lines=()
expectations=()
completes() {
    lines+=("$1")
    expectations+=("$2")
}

# Prints the names in the lists of a help text. Each begins a line.
commands_of() { dbc "$@" --help | sed -nE '/^(Subcommands|SUBCOMMANDS):/,/^[^ ]*$/s/^  ([a-z]+).*/\1/p'; }
options_of() { dbc "$@" --help | sed -nE 's/^  (-[a-zA-Z], *)?(--[a-z][a-z-]*).*/\2/p'; }

globals=$(options_of)
walk() { # WORD... of a command
    local below command
    below=$(commands_of "$@")
    if [[ -n $below ]]; then completes "dbc $* " "-- $below"; fi
    completes "dbc $* --" "-- $globals $(options_of "$@")"
    for command in $below; do walk "$@" "$command"; done
}
walk
((${#lines[@]} > 20)) || {
    echo "only ${#lines[@]} lines: the help was not understood"
    exit 1
}

completes "dbc im" "import"
completes "dbc --quiet users pa" "passwd"
completes "dbc --uri find fin" "find"
completes "dbc --uri=mongodb://h/ im" "import"
completes "dbc help files ge" "get"
completes "dbc --dialect c" "canonical"
completes "dbc import shop.orders --losses re" "refuse"
completes "dbc update shop.orders -o pull" "pull pullAll"
completes "dbc find shop.orders --sor" "--sort"
completes "dbc find shop.orders --sort nothing-to-say" ""
completes "dbc count --so" ""
completes "dbc import shop.orders -f a-f" "a-file"
completes "dbc import shop.orders --file a-f" "a-file"
completes "dbc files put shop a-f" "a-file"
completes "dbc files rm shop --partia" "--partial"

results=()
mapfile -t results < <(printf '%s\n' "${lines[@]}" | "complete_with_$shell")
[[ ${#results[@]} == "${#lines[@]}" ]] || {
    echo "$shell completed ${#results[@]} of ${#lines[@]} lines"
    exit 1
}
for index in "${!lines[@]}"; do
    expected=${expectations[index]}
    result=$(tr ' ' '\n' <<<"${results[index]}" | sort -u)
    if [[ $expected == "-- "* ]]; then
        missing=$(comm -13 <(echo "$result") <(printf '%s\n' ${expected#-- } | sort -u))
    else
        missing=$(comm -3 <(echo "$result") <(tr ' ' '\n' <<<"$expected" | sort -u))
    fi
    if [[ -n $missing ]]; then
        printf 'FAILED: "%s" is completed with "%s"; missing or too many: %s\n' "${lines[index]}" "${results[index]}" "$missing"
        failed=1
    fi
done
exit "$failed"
