#!/usr/bin/env python3
"""Writes src/platform/CodePageTables.inc: the upper halves of the 8-bit code pages, from Python's codecs.

Run it from the root when a table has to change:  tools/code-pages.py > src/platform/CodePageTables.inc
A byte that a page leaves undefined becomes the character of the same number.
"""

PAGES = (874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258)


def character(page, byte):
    try:
        return ord(bytes([byte]).decode(f"cp{page}"))
    except UnicodeDecodeError:
        return byte


print("// Written by tools/code-pages.py; the characters of the bytes 0x80 to 0xFF, page by page.")
print("// clang-format off")
for page in PAGES:
    print(f"{{{page}, {{{{")
    for row in range(0x80, 0x100, 8):
        print("    " + " ".join(f"0x{character(page, byte):04X}," for byte in range(row, row + 8)))
    print("}}},")
print("// clang-format on")
