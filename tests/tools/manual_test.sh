#!/usr/bin/env bash
# usage: manual_test.sh PROGRAM PAGE
# Checks that the manual page has every command of the help of the program, with its options and examples.
set -euo pipefail

program=$1
page=$2
failed=0
miss() {
    echo "FAILED: $*"
    failed=1
}

if command -v man >/dev/null; then # man prints a warning if the markup of the page is wrong
    warnings=$(MANROFFSEQ='' LC_ALL=C.UTF-8 MANWIDTH=200 man --warnings -l "$page" 2>&1 >/dev/null)
    [[ -z $warnings ]] || miss "$warnings"
fi

commands_of() { "$program" "$@" --help | sed -nE '/^(Subcommands|SUBCOMMANDS):/,/^[^ ]*$/s/^  ([a-z]+).*/\1/p'; }
options_of() { "$program" "$@" --help | sed -nE 's/^  (-[a-zA-Z], *)?(--[a-z][a-z-]*).*/\2/p'; }
examples_of() { "$program" "$@" --help | sed -n '/^Examples:/,$s/^  dbc/dbc/p'; }
# Prints the text of a section without markup.
plain() { sed 's/\\f[A-Z]//g; s/\\-/-/g; s/\\e/\\/g; s/\\&//g'; }
section() { sed -nE "/^\.S[SH] \"?dbc ${*}[ \"]/,/^\.S[SH]/p" "$page" | plain; }

count=0
walk() {
    local below command option example text
    below=$(commands_of "$@")
    for command in $below; do walk "$@" "$command"; done
    if [[ -n $below ]]; then return; fi
    count=$((count + 1))
    text=$(section "$*")
    [[ -n $text ]] || miss "the page has no command $*"
    for option in $(options_of "$@"); do
        [[ $option == --help ]] || grep -qE -- "^.*(^| )$option( |$)" <<<"$text" || miss "the page has no $option of $*"
    done
    examples_of "$@" | grep -q . || miss "the help of $* has no example"
    while IFS= read -r example; do
        grep -qxF -- "  $example" <<<"$text" || miss "the page has no example $example"
    done < <(examples_of "$@")
}
walk
((count > 15)) || miss "only $count commands: the help was not understood"

for option in $(options_of); do
    sed -n '/^\.SH OPTIONS/,/^\.SH COMMANDS/p' "$page" | plain | grep -qE -- "(^| )$option( |$)" || miss "the page has no $option"
done
exit "$failed"
