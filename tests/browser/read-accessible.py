#!/usr/bin/python3
# Prints, for the first accessible of role table in the application named argv[1], one line:
# "ROLE|NAME|DESCRIPTION", as a screen reader gets them over AT-SPI; nothing when there is none.
import sys
import pyatspi


def find(node, depth=0):
    if node is None or depth > 40:
        return None
    try:
        if node.getRole() == pyatspi.ROLE_TABLE:
            return node
        for i in range(node.childCount):
            found = find(node.getChildAtIndex(i), depth + 1)
            if found is not None:
                return found
    except Exception:
        return None
    return None


desktop = pyatspi.Registry.getDesktop(0)
for i in range(desktop.childCount):
    app = desktop.getChildAtIndex(i)
    if app is None or sys.argv[1] not in (app.name or ""):
        continue
    node = find(app)
    if node is not None:
        print(f"{node.getRoleName()}|{node.name}|{node.description}")
        break
