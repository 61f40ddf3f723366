#!/usr/bin/env bash
# Checks the built library: library_file.bash WHAT SHARED STATIC SOURCE_FOLDER
set -euo pipefail
what=$1 shared=$2 static=$3 source=$4
export LC_ALL=C

fail() { printf '%s\n' "$@" >&2; exit 1; }

exported() { nm -D --defined-only "$shared" | awk '$2 == "T" { print $3 }' | sed 's/@.*//' | sort; }

# Compares two sorted lists. An empty list means that the check itself has failed.
same() {
  [ -s "$1" ] && [ -s "$2" ] || fail "nothing to compare: $3"
  diff "$1" "$2" || fail "$3"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

case $what in
  exports_what_the_header_declares)
    exported > "$work/exported"
    grep -oE '\bpavo_zorv_[a-z0-9_]+\(' "$source/include/pavo_zorv.h" | grep -oE 'pavo_zorv_[a-z0-9_]+_(decode_ext|encode_ext|duplicate|free_ext|compare)\(' | tr -d '(' | sort -u > "$work/declared"
    # Every declaration, not only those that look like operations.
    grep -cE '^(PAVO_ZORV_NODISCARD )?PAVO_ZORV_API ' "$source/include/pavo_zorv.h" > "$work/declarations"
    [ "$(cat "$work/declarations")" = "$(wc -l < "$work/declared")" ] || fail "the header declares something else as well"
    same "$work/exported" "$work/declared" "the library exports (<) something else than include/pavo_zorv.h declares (>): \
is every message in include/pavo_zorv_messages.h?"
    # Nothing but functions and the version node.
    others=$(nm -D --defined-only "$shared" | awk '$2 != "T" && $2 != "A" { print }')
    [ -z "$others" ] || fail "these exported symbols are not functions:" "$others"
    ;;
  layout_names_every_member)
    awk '/^typedef struct [a-z0-9_]+ \{/ { record = $3 }
         /^\}/ { record = "" }
         record != "" && /;/ { sub(/;.*/, ""); gsub(/\*/, " "); if (NF > 1) print record, $NF }' \
      "$source/include/pavo_zorv.h" | sort > "$work/members"
    sed -n 's/^PAVO_ZORV_AT_(\([a-z0-9_]*\), \([a-z0-9_]*\),.*/\1 \2/p' "$source/include/pavo_zorv_layout.h" |
      sort > "$work/placed"
    same "$work/members" "$work/placed" "the header has other members (<) than its layout names (>)"
    ;;
  exports_five_functions_of_each_message)
    exported > "$work/exported"
    "$source/tests/support/functions" > "$work/expected"
    same "$work/exported" "$work/expected" \
      "the library exports (<) something else than five functions of each message in include/pavo_zorv_messages.h (>)"
    count=$(wc -l < "$work/expected")
    grep -q " $count in all" "$source/README.md" || fail "README.md does not say that there are $count functions in all"
    ;;
  needs_nothing_but_memory_and_string_functions)
    needed=$(nm -D --undefined-only "$shared" | awk '{ print $2 }' | sed 's/@.*//')
    [ -n "$needed" ] || fail "nm lists no undefined symbols"
    for symbol in $needed; do
      case $symbol in
        memcpy | memmove | memset | memcmp | strlen | strcmp) ;;
        __stack_chk_fail | __memcpy_chk | __memmove_chk | __memset_chk) ;; # the compiler's hardening
        *) fail "needs $symbol" ;;
      esac
    done
    # The archive as well, in which the linker cannot have resolved helper functions of the compiler.
    needed=$(nm -A --undefined-only "$static" | awk '{ print $NF }' | sort -u)
    [ -n "$needed" ] || fail "nm lists no undefined symbols"
    for symbol in $needed; do
      case $symbol in
        memcpy | memmove | memset | memcmp | strlen | strcmp | _GLOBAL_OFFSET_TABLE_) ;;
        __stack_chk_fail | __memcpy_chk | __memmove_chk | __memset_chk) ;;
        *) fail "the archive needs $symbol" ;;
      esac
    done
    libraries=$(readelf -d "$shared" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    [ "$libraries" = libc.so.6 ] || fail "needs other libraries than libc: $libraries"
    ;;
  has_no_writable_data_and_no_initialisers)
    sections=$(readelf -SW "$shared" | sed -n 's/^ *\[ *[0-9]*\] \(\.[^ ]*\).*/\1/p')
    grep -qx .text <<< "$sections" || fail "readelf lists no text section, but: $sections"
    if grep -xE '\.(data|bss|tdata|tbss|init|init_array|fini|fini_array|ctors|dtors)(\..*)?' <<< "$sections"; then
      fail "the sections above must not exist"
    fi
    ;;
  has_nothing_writable_once_it_is_loaded)
    readelf -dW "$shared" | grep -q 'FLAGS.*BIND_NOW' || fail "functions are bound lazily"
    # Every section that the loader writes is inside the region that it protects afterwards, which ends at a page
    # boundary.
    read -r first size <<< "$(readelf -lW "$shared" | awk '$1 == "GNU_RELRO" { print $3, $6 }')"
    [ -n "${size-}" ] && (((first + size) % 4096 == 0)) || fail "wrong protected region: ${first-} ${size-}"
    readelf -SW "$shared" | sed -n 's/^ *\[ *[0-9]*\] //p' | awk '$7 ~ /W/ { print $1, "0x" $3, "0x" $5 }' > "$work/writable"
    [ -s "$work/writable" ] || fail "readelf lists no writable section"
    while read -r name place length; do
      ((place >= first && place + length <= first + size)) || fail "$name stays writable"
    done < "$work/writable"
    ;;
  static_archive_has_no_writable_data_and_no_initialisers)
    size -A "$static" > "$work/sizes"
    grep -q '^\.text' "$work/sizes" || fail "size lists no text section"
    if awk '$1 ~ /^\.(data|bss|tdata|tbss|init_array|fini_array|ctors|dtors)/ && $1 !~ /^\.data\.rel\.ro/ && $2 != 0' "$work/sizes" | grep .; then
      fail "the sections above must not exist"
    fi
    ;;
  has_the_abi_number_in_its_soname)
    soname=$(readelf -d "$shared" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
    [ "$soname" = libpavo_zorv.so.1 ] || fail "soname: $soname"
    ;;
  text_is_at_most_180_kilobytes)
    text=$(size -A "$shared" | awk '$1 == ".text" { print $2 }')
    [ "$text" -gt 0 ] && [ "$text" -le 180000 ] || fail "text section: $text bytes, of at most 180000. \
A larger limit is set here, in $0, and in tests/library/CMakeLists.txt and ARCHITECTURE.md (Weight)."
    echo "text section: $text bytes"
    ;;
  a_static_program_with_one_message_is_below_20_kilobytes)
    cat > "$work/program.c" <<'PROGRAM'
#include "pavo_zorv_memory.h"
int main(int count, char **arguments) {
  api_lbl_stack stack, copy;
  unsigned char buffer[64];
  int result = pavo_zorv_api_lbl_stack_decode_ext(&stack, (unsigned char *)arguments[0], (size_t)count,
                                                  pavo_zorv_heap_allocate, NULL);
  result += pavo_zorv_api_lbl_stack_duplicate(&copy, &stack, pavo_zorv_heap_allocate, NULL);
  result += pavo_zorv_api_lbl_stack_compare(&copy, &stack);
  result += (int)pavo_zorv_api_lbl_stack_encode_ext(&copy, buffer, sizeof buffer, NULL, NULL);
  pavo_zorv_api_lbl_stack_free_ext(&copy, pavo_zorv_heap_release, NULL);
  pavo_zorv_api_lbl_stack_free_ext(&stack, pavo_zorv_heap_release, NULL);
  return result;
}
PROGRAM
    "${CC:-cc}" -O2 -I"$source/include" -Wl,--gc-sections "$work/program.c" "$static" -o "$work/program"
    bytes=$(size "$work/program" | awk 'NR == 2 { print $1 }')
    [ "$bytes" -gt 0 ] && [ "$bytes" -lt 20480 ] || fail "the program has $bytes bytes of code and constants"
    echo "the program has $bytes bytes of code and constants"
    ;;
  *) fail "no such check: $what" ;;
esac
