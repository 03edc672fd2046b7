#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks a built zrtools.dll from outside: its exports, the libraries it needs, and every resource under
# its type, name and language. Usage: check_dll.sh OBJDUMP DLL SOURCE_FOLDER
set -eu
objdump=$1
dll=$2
resources=$3/module/resources

fail() {
    echo "$dll: $1" >&2
    exit 1
}

exports=$($objdump -p "$dll" | sed -n '/Ordinal\/Name Pointer/,/^$/s/^\t\[ *[0-9]*\] //p')
[ "$exports" = ZRDLLFunc ] || fail "exports '$exports'"

for library in $($objdump -p "$dll" | sed -n 's/.*DLL Name: //p'); do
    case $(echo "$library" | tr A-Z a-z) in
        kernix.dll | kernel32.dll | user32.dll | gdi32.dll | comctl32.dll | msvcrt.dll) ;;
        *) fail "needs $library" ;;
    esac
done

# resource TYPE NAME LANGUAGE: prints the bytes of a resource.
resource() { wrestool --extract --raw --type="$1" --name="$2" --language="$3" "$dll"; }

for table in ENG CN_CN DE_DE FR_FR JA_JP; do
    file=$resources/lng/$(echo $table | tr A-Z a-z).lng
    resource LNG $table 1033 | cmp -s - "$file" || fail "has a different table $table"
done
resource ZRDATA CLEANER_QUERY_INFO 1033 | cmp -s - "$resources/cleaner_query_info.xml" ||
    fail "has a different description of the cleaner"
[ "$(resource 5 101 0 | wc -c)" -gt 0 ] || fail "has no dialog 101"
# The fixed part of the version record: signature, its own version, the file's.
resource 16 1 1033 | od -An -tx1 -v | tr -d ' \n' | grep -q bd04effe........03000600851f0100 ||
    fail "has a different version"
[ "$(wrestool --list "$dll" | wc -l)" = 8 ] || fail "has unexpected resources"
