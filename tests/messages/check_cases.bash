#!/usr/bin/env bash
# The cases that every implementation of these messages must pass are listed in cases_*.txt, one in a line: test, message,
# situation. Each must be among the tests that ran and passed:
#   check_cases.bash FOLDER [EMULATOR...] TEST_PROGRAM
set -euo pipefail
folder=$1
shift
expected=108

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$@" > "$work/output" || { tail -n 20 "$work/output"; exit 1; }
sed -n 's/^\[       OK \] \([A-Za-z0-9_.]*\).*/\1/p' "$work/output" | sort -u > "$work/passed"
cut -f 1 "$folder"/cases_*.txt | tr ',' '\n' | sort -u > "$work/listed"

lines=$(cat "$folder"/cases_*.txt | wc -l)
[ "$lines" = "$expected" ] || { echo "$lines cases are listed, not $expected"; exit 1; }
repeated=$(cut -f 2- "$folder"/cases_*.txt | sort | uniq -d)
[ -z "$repeated" ] || { echo "listed twice: $repeated"; exit 1; }
missing=$(comm -23 "$work/listed" "$work/passed")
[ -z "$missing" ] || { echo "listed, but no test of this name ran and passed:"; echo "$missing"; exit 1; }
echo "$lines cases, in $(wc -l < "$work/listed") tests: all ran and passed"
