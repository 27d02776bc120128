#!/usr/bin/env python3
"""Usage: compare-fleet-answers.py FLEET OWN - compares a cluster's answers with the program's, row for row."""
import collections
import json
import pathlib
import sys


def rows(path):
    """The rows of a file of JSON lines, times as the program writes them."""
    for line in path.read_text(encoding="utf-8").splitlines():
        row = json.loads(line)
        for name, value in row.items():
            if name in ("time", "first", "last", "connected", "logged_on", "ended") and value:
                row[name] = value.replace(" ", "T")
        yield row


def chosen(all_rows, names):
    """How often each row stands there, by these columns only."""
    return collections.Counter(tuple(row[name] for name in names) for row in all_rows)


def summed(all_rows, keys, numbers, earliest=(), latest=()):
    """Rows of one key as one; the program was asked for each log on its own."""
    sums = {}
    for row in all_rows:
        key = tuple(row[name] for name in keys)
        if key not in sums:
            sums[key] = dict(row)
            continue
        for name in numbers:
            sums[key][name] += row[name]
        for names, pick in ((earliest, min), (latest, max)):
            for name in names:
                sums[key][name] = pick(value for value in (sums[key][name], row[name]) if value)
    return sums.values()


def compare(question, fleet, own):
    print(f"{question}: {sum(fleet.values())} rows")
    for row, times in (fleet - own).items():
        print(f"  only in the cluster, {times} times: {row}")
    for row, times in (own - fleet).items():
        print(f"  only in the program, {times} times: {row}")
    return fleet == own and sum(fleet.values()) > 0


def main():
    fleet, own = map(pathlib.Path, sys.argv[1:3])
    good = True

    sessions = list(rows(fleet / "sessions.json"))
    good &= compare("sessions", chosen(sessions, sessions[0]), chosen(rows(own / "sessions.json"), sessions[0]))

    names = ("address", "failures", "attempts", "first", "last")
    logins = summed(rows(own / "logins.json"), ["address"], ["failures", "attempts"], ["first"], ["last"])
    good &= compare("refused by address", chosen(rows(fleet / "refused-by-address.json"), names), chosen(logins, names))

    sums = ("downloads", "download_bytes", "uploads", "upload_bytes")
    traffic = summed(rows(own / "traffic.json"), ["user", "day"], sums)
    names = ("user", "day", *sums)
    good &= compare("traffic", chosen(rows(fleet / "traffic-by-user-and-day.json"), names), chosen(traffic, names))

    keys = ("path", "action", "outcome")
    files = collections.Counter(tuple(row[name] for name in keys) for row in rows(own / "files.json"))
    by_path = collections.Counter()
    for row in rows(fleet / "actions-by-path.json"):
        by_path[tuple(row[name] for name in keys)] += row["times"]
    good &= compare("actions by path", by_path, files)

    broken = list(rows(fleet / "broken-transfers.json"))
    good &= compare("broken transfers", chosen(broken, broken[0]), chosen(rows(own / "transfers.json"), broken[0]))
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
