#!/usr/bin/env python3
"""report.py FOLDER PAGE: lists what failed in the player of this project, with what its peers did
with the same, and writes the table of all kinds of media into PAGE, between its two marks."""

import collections
import json
import re
import sys
from pathlib import Path

OURS, PEERS = "ours", ["gst-play-1.0", "mpv", "QMediaPlayer"]
MARK = "<!-- tests/corpus/report.py -->"


def without_figures(wrong):
    return re.sub(r" (is|at|by) -?[\d.]+ s.*", r" \1 another", wrong)


def main():
    folder, page = Path(sys.argv[1]), Path(sys.argv[2])
    results = list(map(json.loads, (folder / "results.jsonl").open()))
    newest = max(r["stamp"] for r in results)
    kinds = collections.defaultdict(lambda: collections.defaultdict(dict))
    quick = []
    for r in results:
        if r["player"] in PEERS or r["stamp"] == newest:
            kinds[r["kind"]][r["name"]][r["player"]] = r

    rows, played = [], 0
    for kind, names in sorted(kinds.items()):
        right = collections.Counter(p for done in names.values() for p, r in done.items()
                                    if not r["wrong"])
        why = collections.Counter()
        for name, done in sorted(names.items()):
            played += OURS in done
            for player in (p for p in done if p.startswith(OURS) and done[p]["wrong"]):
                bad = done[player]
                too = " and ".join(p for p in PEERS if done.get(p, {}).get("wrong"))
                rest = f" (something is wrong in {too} too)" if too else ""
                print(f"{name} ({kind}), {player}: {'; '.join(bad['wrong'] + bad['words'])}{rest}")
                if player == OURS:
                    wrong = bad["wrong"] if len(names) == 1 else map(without_figures, bad["wrong"])
                    why["; ".join([*wrong, *bad["words"][:1]]) + rest] += 1
                elif not done[OURS]["wrong"]:
                    quick.append(name)
        cells = [kind, len(names), *(right[p] for p in [OURS, *PEERS]),
                 "; ".join(f"{n} × {text}" if len(names) > 1 else text for text, n in why.items())]
        rows.append(f"| {' | '.join(map(str, cells))} |")

    head, _, rest = page.read_text().partition(MARK)
    _, _, tail = rest.partition(MARK)
    table = ["| media | files | " + " | ".join([OURS, *PEERS]) + " | what differs in ours |",
             "|---|---|" + "---|" * 5, *rows]
    page.write_text("\n".join([head + MARK, *table, MARK + tail]))
    print(f"{played} files and servers, {len(rows)} kinds; only the second kind of host differs in"
          f" {len(quick)}. The table is in {page}.")


main()
