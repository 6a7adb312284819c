# SPDX-License-Identifier: GPL-3.0-or-later
"""The results as they come, one JSON object a line, and what is told of them in Markdown."""
import json
import pathlib
import re
import statistics

from measure import Usage
from rows import EFFECTS, Row, format_named

BEGIN, END = "<!-- bench/compare: begin -->", "<!-- bench/compare: end -->"


class Results:
    """Pairs, checks and machines, appended to a file that survives an interruption."""

    def __init__(self, path):
        self.path = path
        lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
        self.records = [json.loads(line) for line in lines if line.endswith("}")]

    def add(self, kind, **fields):
        record = {"kind": kind, **fields}
        self.records.append(record)
        self.path.parent.mkdir(parents=True, exist_ok=True)
        with self.path.open("a", encoding="utf-8") as file:
            file.write(json.dumps(record) + "\n")

    def of(self, kind, **fields):
        return [record for record in self.records if record["kind"] == kind
                and all(record.get(name) == value for name, value in fields.items())]

    def rows(self):
        """Those that have pairs, in the order of formats and lengths in which they came first."""
        found = [Row(format_named(pair["format"]), pair["minutes"], pair["effect"], pair["files"])
                 for pair in self.of("pair")]
        groups = list(dict.fromkeys((row.form, row.files) for row in found))
        return sorted(dict.fromkeys(found), key=lambda row: (
            groups.index((row.form, row.files)), row.minutes, EFFECTS.index(row.effect)))

    def latest(self, row, against):
        """The pairs of the newest build that did this row."""
        pairs = self.of("pair", row=row, against=against)
        return [pair for pair in pairs if pair["build"] == pairs[-1]["build"]]


def ratios(pairs, what):
    """How many times as much they took as we did, pair by pair."""
    return [getattr(Usage(*pair["theirs"]), what) / getattr(Usage(*pair["ours"]), what)
            for pair in pairs]


def median(pairs, what):
    return statistics.median(ratios(pairs, what))


def judgement(pairs, goal):
    """Of our wall time against theirs; nothing where there is no goal."""
    if goal is None:
        return ""
    return "met" if median(pairs, "wall") >= goal else "**not met**"


def replace_in(document, text):
    before = document.read_text(encoding="utf-8")
    pattern = re.compile(f"{re.escape(BEGIN)}.*{re.escape(END)}", re.S)
    if not pattern.search(before):
        raise SystemExit(f"{document}: no place for the tables between {BEGIN} and {END}")
    document.write_text(pattern.sub(lambda _: f"{BEGIN}\n{text}\n{END}", before), encoding="utf-8")


def markdown(results):
    """The machine and one table for each format and length that has results."""
    rows = results.rows()
    if not rows:
        return "No measurements yet."
    parts = [_machine(results, rows)]
    for group in dict.fromkeys((row.form, row.minutes, row.files) for row in rows):
        of_group = [row for row in rows if (row.form, row.minutes, row.files) == group]
        parts.append(f"### {_title(*group)}")
        parts.append(_table(results, of_group, ["ffmpeg", "sox"]))
        synced = _table(results, of_group, ["ffmpeg + sync", "sox + sync", "cp + sync"])
        if synced:
            parts += ["The same, theirs followed by `sync` of the file as a save of ours is:", synced]
    wrong = [record for record in results.of("check") if record["faults"]]
    parts += [f"Wrong result: {record['row']}, {record['tool']}: {'; '.join(record['faults'])}."
              for record in wrong]
    return "\n\n".join(parts)


def _title(form, minutes, files):
    return f"{form.name}, {f'{files} files of ' if files > 1 else ''}{minutes:g} min"


def _machine(results, rows):
    pairs = [pair for row in rows for against in row.opponents()
             if results.of("pair", row=row.name, against=against)
             for pair in results.latest(row.name, against)]
    builds = ", ".join(dict.fromkeys(pair["build"] for pair in pairs))
    lines = [f"- {name}: {value}" for name, value in results.of("machine")[-1]["facts"].items()]
    return "\n".join([*lines, f"- tracksmith-cli: {builds}"])


def _table(results, rows, opponents):
    """Empty where nothing was measured against any of them."""
    measured = {(row, against): results.latest(row.name, against) for row in rows
                for against in opponents if results.of("pair", row=row.name, against=against)}
    if not measured:
        return ""
    opponents = [against for against in opponents if any(key[1] == against for key in measured)]
    heads = ["effect", "ours"]
    for against in opponents:
        heads += [f"{against}: wall", "CPU", "memory"]
    lines = [heads + ["goal"], ["---"] + ["---:"] * (len(heads) - 1) + ["---"]]
    for row in rows:
        pairs = {against: measured[row, against] for against in opponents
                 if (row, against) in measured}
        if pairs:
            lines.append(_line(row, opponents, pairs))
    return "\n".join(f"| {' | '.join(line)} |" for line in lines)


def _line(row, opponents, pairs):
    ours = [Usage(*pair["ours"]) for found in pairs.values() for pair in found]
    usage = [statistics.median(getattr(each, what) for each in ours) for what in Usage._fields]
    cells = [row.effect, f"{usage[0]:.3g} s, {usage[1]:.3g} s CPU, {usage[2]:.0f} MB"]
    goals = []
    for against in opponents:
        found = pairs.get(against)
        cells += [_times(found, what) for what in Usage._fields] if found else ["–"] * 3
        goal = row.goal(against)
        if found and goal:
            asked = f"≥ {goal:g} × {against}" if goal >= 1 else f"time ≤ {1 / goal:g} × {against}"
            goals.append(f"{asked}: {judgement(found, goal)}")
    return [*cells, "; ".join(goals)]


def _times(pairs, what):
    each = ratios(pairs, what)
    middle = f"{statistics.median(each):.3g}"
    return f"{middle} ({min(each):.3g}–{max(each):.3g})" if len(each) > 1 else middle


def read(path):
    return Results(pathlib.Path(path))
