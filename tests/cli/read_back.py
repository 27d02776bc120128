"""Usage: read_back.py QUORVEL - writes a log whose names are hostile, and reads what quorvel makes of it with others.

Names carry formulas, markup, control characters, quotes, line-like texts and bytes that are no UTF-8; each must come
back from CSV, JSON, SQLite and HTML as it is in the log, and harm nobody on the way.
"""
import csv
import html.parser
import json
import os
import sqlite3
import subprocess
import sys
import tempfile

NAMES = [
    b"=HYPERLINK(\"http://x\")", b"+1+1", b"-2", b"@SUM(A1)", b"<script>alert(1)</script>", b"a&amp;b", b"'quoted'",
    b"a\"b,c;d", b"esc\x1b]0;t\x07\x1b[31m", b"bell\x07\x08", b"\xe5ke", b"\xff\xfe\x80", b"nul\x00l", b"new\rline",
    b"'; DROP TABLE sessions; --", b"{\"a\":[1]}", b"\\u0041\\n", b"</td></tr></table><h1>x", b"name\xe2\x80\xaeexe", b"%s%n",
]


def log_of(names, is_utf8):
    line = b"[%s] Mon 06Jun22 08:00:%02d - (%06d) %s\r\n"
    text = b"[01] Mon 06Jun22 07:59:00 - Serv-U File Server (64-bit) - Version 15.1 (15.1.6.25) - (C) 2017\r\n"
    for i, name in enumerate(names):
        events = [(b"02", b"Connected to 10.0.0.%d (local address 10.0.0.1, port 21)" % i), (b"20", b"USER " + name),
                  (b"21", b"331 User name okay, need password."), (b"20", b"PASS secret"),
                  (b"02", b"User \"" + name + b"\" logged in"), (b"21", b"230 User logged in, proceed."),
                  (b"20", b"RETR /" + name), (b"21", b"550 No such file."), (b"02", b"Closed session")]
        text += b"".join(line % (kind, i % 60, i + 1, event) for kind, event in events)
    return text if is_utf8 else text.replace(b"PASS secret", b"PASS secr\xe9t")


def in_utf8(name, is_utf8):
    if is_utf8:
        return name.decode("utf-8", "replace")
    return "".join(bytes([b]).decode("cp1252") if b not in (0x81, 0x8D, 0x8F, 0x90, 0x9D) else chr(b) for b in name)


class Texts(html.parser.HTMLParser):
    """The texts between tags, and every tag that there is."""

    def __init__(self):
        super().__init__()
        self.cells, self.tags = [""], set()

    def handle_starttag(self, tag, attrs):
        self.tags.add(tag)
        self.cells.append("")
        assert not any(name.startswith("on") or name in ("src", "href") for name, _ in attrs), attrs

    def handle_data(self, data):
        self.cells[-1] += data


def check(quorvel, folder, is_utf8):
    names = [n for n in NAMES if not is_utf8 or is_decodable(n)]
    log = os.path.join(folder, "a.log")
    with open(log, "wb") as file:
        file.write(log_of(names, is_utf8))
    expected = [in_utf8(n, is_utf8) for n in names]

    def run(*arguments):
        done = subprocess.run([quorvel, *arguments], cwd=folder, capture_output=True, check=False)
        assert done.returncode == 0, (arguments, done.returncode, done.stderr)
        return done.stdout

    run("export", log, "--format", "csv", "--output", "csv", "--raw-text")
    with open(os.path.join(folder, "csv", "sessions.csv"), newline="", encoding="utf-8") as file:
        assert [row["user"] for row in csv.DictReader(line.replace("\0", "\ufffe") for line in file)] == [
            e.replace("\0", "\ufffe") for e in expected]
    run("export", log, "--format", "csv", "--output", "safe")
    with open(os.path.join(folder, "safe", "actions.csv"), newline="", encoding="utf-8") as file:
        for row in csv.reader(line.replace("\0", "") for line in file):
            assert all(cell[:1] not in ("=", "+", "-", "@", "\t", "\r") for cell in row), row

    run("export", log, "--format", "jsonl", "--output", "jsonl")
    with open(os.path.join(folder, "jsonl", "logons.jsonl"), encoding="utf-8") as file:
        assert [json.loads(row)["user"] for row in file] == expected
    with open(os.path.join(folder, "jsonl", "actions.jsonl"), encoding="utf-8") as file:
        assert [json.loads(row)["path"] for row in file] == ["/" + e for e in expected]

    run("export", log, "--format", "sqlite", "--output", "a.db")
    database = sqlite3.connect(os.path.join(folder, "a.db"))
    assert [row[0] for row in database.execute("SELECT user FROM sessions ORDER BY session")] == expected
    assert database.execute("PRAGMA user_version").fetchone() == (1,)
    assert database.execute("PRAGMA integrity_check").fetchone() == ("ok",)
    for view in ("overview", "logins_by_address", "logins_by_user", "files", "transfers", "traffic"):
        database.execute("SELECT * FROM " + view).fetchall()
    assert database.execute("SELECT count(*) FROM transfers").fetchone() == (len(names),)

    events = [json.loads(line) for line in run("export", log, "--format", "ecs", "--timezone", "Europe/Berlin").split(b"\n")[:-1]]
    assert [e["user"]["name"] for e in events if e["event"]["action"] == "logon"] == expected
    assert all(e["@timestamp"].startswith("2022-06-06T06:00:") for e in events)
    assert not any("secr" in e["event"].get("original", "") for e in events)

    texts = Texts()
    texts.feed(run("sessions", log, "--format", "html").decode("utf-8"))
    assert not texts.tags & {"script", "img", "iframe", "link", "object"}, texts.tags
    for control in [chr(c) for c in range(32) if chr(c) != "\n"] + ["\x7f", "\x80", "\u202e"]:
        assert all(control not in cell for cell in texts.cells)
        expected = [e.replace(control, "\ufffd") for e in expected]
    assert [e for e in expected if e not in texts.cells] == []
    shown = run("sessions", log)
    assert not any(byte < 32 and byte != 10 or byte == 127 for byte in shown), shown
    assert b"\xe2\x80\xae" not in shown


def is_decodable(name):
    try:
        name.decode("utf-8")
    except UnicodeDecodeError:
        return False
    return True


for utf8 in (True, False):
    with tempfile.TemporaryDirectory() as place:
        check(os.path.abspath(sys.argv[1]), place, utf8)
