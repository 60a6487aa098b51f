#!/usr/bin/env python3
"""What a screen reader meets in the program's windows, read through AT-SPI.

    walk_accessible_tree.py TOUR LANGUAGE

Starts the tour program (AccessibilityTour.cpp), which shows the main window
and then each dialog in turn, and walks the accessible tree of every window it
shows, as Orca's flat review would. It fails on:
  - a control that takes the focus (showing, enabled) without a name, but
    for an empty label, or a list box named only by the item it shows, with
    no label for it;
  - a window or a table without a name;
  - a table whose cells read empty (a sample of rows, every column);
  - the program dying while its tables are queried, the current cell
    included (Qt 6.4 crashes when a table has none);
  - a message box that is not read as an alert.
Needs an X display and a session bus with the accessibility bus (run it
through run-with-accessibility-bus.sh) and python3-pyatspi.
"""
import os
import select
import subprocess
import sys
import time

try:
    import pyatspi
except ImportError:
    sys.exit("python3-pyatspi is missing: run .ci/install-deps")

TABLE_ROLES = {pyatspi.ROLE_TABLE, pyatspi.ROLE_TREE_TABLE, pyatspi.ROLE_TREE}
# Rows of a table read: the first two, one in the middle and the last.
SAMPLED_COLUMNS = 20
TIMEOUT = 30
# WALK_DUMP=1 prints every node read, for looking into a failure.
DUMP = os.environ.get("WALK_DUMP") == "1"


class Walk:
    def __init__(self, window_name):
        self.window = window_name
        self.problems = []

    def fail(self, path, what):
        self.problems.append(f"{self.window}: {' > '.join(path)}: {what}")

    def node(self, node, path):
        states = node.getState()
        if not states.contains(pyatspi.STATE_SHOWING):
            return
        role = node.getRole()
        name = (node.name or "").strip()
        here = path + [f"{node.getRoleName()} '{name}'"]
        if DUMP:
            print("  " * len(path) + here[-1], [r.getRelationType() for r in node.getRelationSet()], file=sys.stderr)
        reachable = states.contains(pyatspi.STATE_FOCUSABLE) and states.contains(pyatspi.STATE_SENSITIVE)
        # A label's name is the text it shows; an empty one says nothing
        # because it shows nothing, even where it takes the focus on a click.
        if reachable and not name and role != pyatspi.ROLE_LABEL:
            self.fail(here, "a control reachable by Tab has no name")
        if role == pyatspi.ROLE_COMBO_BOX and reachable and name:
            self.combo(node, name, here)
        if role in TABLE_ROLES:
            if not name:
                self.fail(here, "a table has no name")
            self.table(node, here)
            return
        for child in node:
            if child is not None:
                self.node(child, here)

    # Qt on Linux names a list box by the item it shows, unless the program
    # names it; then only a label pointing at it tells what it is.
    def combo(self, node, name, path):
        items = set()
        for child in node:
            if child is not None and child.getRole() == pyatspi.ROLE_LIST:
                items |= {item.name for item in child if item is not None}
        labelled = any(r.getRelationType() == pyatspi.RELATION_LABELLED_BY for r in node.getRelationSet())
        if name in items and not labelled:
            self.fail(path, "a list box is named only by the item it shows")

    def table(self, node, path):
        table = node.queryTable()
        rows, columns = table.nRows, table.nColumns
        # What a screen reader asks first when a table gets the focus: its
        # current cell and what is selected.
        table.getSelectedRows()
        table.getSelectedColumns()
        for child_index in range(min(node.childCount, 1)):
            node.getChildAtIndex(child_index)
        for row in sorted({0, min(1, rows - 1), rows // 2, rows - 1}):
            if row < 0:
                continue
            for column in range(min(columns, SAMPLED_COLUMNS)):
                cell = table.getAccessibleAt(row, column)
                if cell is None:
                    self.fail(path, f"row {row + 1}, column {column + 1} cannot be read")
                elif not (cell.name or "").strip():
                    self.fail(path, f"the cell of row {row + 1}, column {column + 1} reads empty")


def find_application(pid):
    deadline = time.time() + TIMEOUT
    while time.time() < deadline:
        for app in pyatspi.Registry.getDesktop(0):
            if app is not None and app.get_process_id() == pid:
                return app
        time.sleep(0.2)
    sys.exit("the program never appeared on the accessibility bus")


def active_window(app):
    deadline = time.time() + 5
    while time.time() < deadline:
        for window in app:
            if window is not None and window.getState().contains(pyatspi.STATE_ACTIVE):
                return window
        time.sleep(0.1)
    return None


def read_line(process):
    ready, _, _ = select.select([process.stdout], [], [], TIMEOUT)
    if not ready:
        return None
    return process.stdout.readline().strip()


def main():
    tour, language = sys.argv[1], sys.argv[2]
    process = subprocess.Popen([tour, language], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    problems, walked = [], []
    try:
        app = None
        while True:
            line = read_line(process)
            if line is None or line == "":
                problems.append(f"the program stopped answering after {walked[-1] if walked else 'starting'}")
                break
            if line == "done":
                break
            if not line.startswith("ready "):
                continue
            name = line.split(" ", 1)[1]
            app = app or find_application(process.pid)
            window = active_window(app)
            walk = Walk(name)
            if window is None:
                walk.fail([], "no active window on the accessibility bus")
            else:
                if not (window.name or "").strip():
                    walk.fail([], "the window has no name")
                if name == "QMessageBox" and window.getRole() != pyatspi.ROLE_ALERT:
                    walk.fail([], f"a message box reads as {window.getRoleName()}, not as an alert")
                walk.node(window, [])
            if process.poll() is not None:
                walk.fail([], f"the program died (exit status {process.returncode}) while it was read")
                problems += walk.problems
                break
            problems += walk.problems
            walked.append(name)
            process.stdin.write("next\n")
            process.stdin.flush()
    finally:
        if process.poll() is None:
            process.stdin.write("quit\n")
            process.stdin.flush()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
    print(f"language {language}: walked {', '.join(walked)}")
    for problem in problems:
        print("FAIL", problem)
    if process.returncode not in (0, None):
        print(f"FAIL the program exited with status {process.returncode}")
        return 1
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
