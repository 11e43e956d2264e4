#!/usr/bin/python3
# Reads, over AT-SPI as a screen reader does, the accessibles of the application named argv[1].
#   read-accessible.py APP          the first of role table: "ROLE|NAME|DESCRIPTION"
#   read-accessible.py APP --all    every accessible under the table, a line each:
#                                   "ROLE|NAME|DESCRIPTION|STATES" (STATES: the ones of pressed,
#                                   checked, sensitive, selected it has)
# Prints nothing when there is no such table.
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


def line(node):
    states = node.getState()
    named = [n for s, n in ((pyatspi.STATE_PRESSED, "pressed"), (pyatspi.STATE_CHECKED, "checked"),
                            (pyatspi.STATE_SENSITIVE, "sensitive"), (pyatspi.STATE_SELECTED, "selected"))
             if states.contains(s)]
    return f"{node.getRoleName()}|{node.name}|{node.description}|{','.join(named)}"


desktop = pyatspi.Registry.getDesktop(0)
for i in range(desktop.childCount):
    app = desktop.getChildAtIndex(i)
    if app is None or sys.argv[1] not in (app.name or ""):
        continue
    node = find(app)
    if node is None:
        continue
    if "--all" in sys.argv:
        for j in range(node.childCount):
            print(line(node.getChildAtIndex(j)))
    else:
        print(f"{node.getRoleName()}|{node.name}|{node.description}")
    break
