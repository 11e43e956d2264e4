#!/usr/bin/env python3
"""Doxygen input filter: a header's opening comment is the documentation of the class it is named
after ("// MCResponder: the base of ...") or, when it names none, of the header itself. The comment
becomes a /// block in place of the `#pragma once` line above it, so that line numbers stay."""
import re
import sys

lines = open(sys.argv[1], encoding="utf-8").read().split("\n")
if len(lines) > 1 and lines[0].strip() == "#pragma once" and lines[1].startswith("//") and not lines[1].startswith("///"):
    named = re.match(r"// (MC\w+)(<[^>]*>)?: ", lines[1])
    lines[0] = f"/// @class {named.group(1)}" if named else "/// @file"
    i = 1
    while i < len(lines) and lines[i].startswith("//") and not lines[i].startswith("///"):
        lines[i] = "///" + lines[i][2:]
        i += 1
sys.stdout.write("\n".join(lines))
