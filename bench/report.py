"""The table and the picture of what bench/run has measured."""
import math
import statistics
import textwrap

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402, the backend is chosen first

OURS, BARE = "plug-in", "bare pipeline"
QT = ("Qt, GStreamer", "Qt, FFmpeg")
COUNTS = (1, 2, 4, 8, 16, 32)
FILES = (1, 10, 100, 300)
# How long an operation may hold the GUI thread, as documented, in seconds: one for each state
# change that it waits for.
BOUNDS = {"register": 3, "0 load, new video": 4, "0 load, cached": 2, "0 load, refused": 1,
          "2 play": 1, "2 pause": 1, "2 stop": 2, "park": 1, "restore": 1}


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, math.ceil(share * len(ordered)) - 1)]


def values_of(results, measure, name, key):
    """All values of a figure over the turns, lists among them joined."""
    joined = []
    for turn in results[measure].get(name, []):
        joined += turn[key] if isinstance(turn[key], list) else [turn[key]]
    return joined


def median(results, measure, name, key):
    return statistics.median(values_of(results, measure, name, key))


class Table:
    def __init__(self, *heads):
        self.lines = ["| " + " | ".join(heads) + " |", "|" + "---|" * len(heads)]

    def row(self, *cells):
        self.lines.append("| " + " | ".join(cells) + " |")

    def __str__(self):
        return "\n".join(self.lines)


def verdict(met):
    return "met" if met else "**missed**"


def loads(results):
    table = Table("ms to the first frame", OURS, BARE, *QT, "plug-in / bare", "plug-in / better Qt",
                  "goal")
    for key, what, limit in (("back", "back to a file", 1.10), ("new", "new file", 1.15)):
        for size in (360, 720, 1080):
            measure = f"loads {size}"
            times = {name: values_of(results, measure, name, key) for name in (OURS, BARE, *QT)}
            middle = {name: statistics.median(times[name]) for name in times}
            bare = middle[OURS] / middle[BARE]
            better = middle[OURS] / min(middle[name] for name in QT)
            goal, met = f"{limit:.2f} x bare", bare <= limit
            if key == "back":
                share = 1.0 if size == 360 else 1.5
                goal, met = goal + f", {share} x Qt", met and better <= share
            cells = [f"{middle[name]:.1f} (p95 {percentile(times[name], .95):.0f})" for name in times]
            table.row(f"{what}, {size}p", *cells, f"{bare:.2f}", f"{better:.2f}",
                      f"{goal}: {verdict(met)}")
    polled = [f"{median(results, f'loads {size}', OURS, 'polled'):.0f} ms at {size}p"
              for size in (360, 720, 1080)]
    return f"{table}\n\nBack to a file with the polling delay: {', '.join(polled)}."


def processor(results):
    ours = values_of(results, "playing", OURS, "cpu")
    bare = values_of(results, "playing", BARE, "cpu")
    # Of neighbours in time, so that what else the machine does hits both.
    ratios = [a / b for a, b in zip(ours, bare)]
    middle = statistics.mean(ratios)
    # Student's t for 95 % of the usual numbers of pairs; more pairs than ten only narrow it.
    factor = {2: 12.7, 3: 4.3, 10: 2.26}.get(len(ratios), 2.26)
    half = factor * statistics.stdev(ratios) / math.sqrt(len(ratios))
    qt = ", ".join(f"{name} {statistics.mean(values_of(results, 'playing', name, 'cpu')):.2f}"
                   for name in QT)
    parked = median(results, "parked", OURS, "cpu") - median(results, "parked", OURS, "without")
    table = Table("processor", "figure", "goal")
    table.row("playing 720p30, s/s",
              f"{OURS} {statistics.mean(ours):.2f}, {BARE} {statistics.mean(bare):.2f}, {qt}", "")
    table.row("plug-in / bare, 95 % interval",
              f"{middle:.2f} ({middle - half:.2f} to {middle + half:.2f}), {len(ratios)} pairs",
              "1.05, or no difference: " + verdict(middle <= 1.05 or middle - half <= 1))
    table.row("parked and paused, % of a core", f"{100 * parked:.2f}",
              "0.5: " + verdict(parked < .005))
    return str(table)


def commands(results):
    table = Table("ms from raised to answered, playing", "median", "p95", "p99", "goal")
    for code in ("1", "3", "9", "10", "11"):
        times = values_of(results, "commands", OURS, code)
        middle, worst = statistics.median(times), percentile(times, .99)
        table.row(code, f"{middle:.0f}", f"{percentile(times, .95):.0f}", f"{worst:.0f}",
                  "150, p99 250: " + verdict(middle < 150 and worst < 250))
    return str(table)


def memory(results):
    ours, bare = (median(results, "memory", name, "perFile") / 1024 for name in (OURS, BARE))
    return (f"Memory of a cached URI: {ours:.1f} MiB, bare pipeline in READY {bare:.1f} MiB, ratio "
            f"{ours / bare:.2f}; goal 1.10: {verdict(ours <= 1.1 * bare)}.")


def players(results):
    table = Table("players", "CPU %, plug-in", "each", "CPU %, bare", "MiB, plug-in", "bare",
                  "threads, plug-in", "bare", "start ms, plug-in", "bare", "frames missed %, plug-in",
                  "bare")
    for count in COUNTS:
        measure = f"players {count}"
        if measure not in results:
            continue
        pair = {key: [median(results, measure, name, key) for name in (OURS, BARE)]
                for key in ("cpu", "memory", "threads", "start", "missed")}
        table.row(str(count), f"{100 * pair['cpu'][0]:.1f}", f"{100 * pair['cpu'][0] / count:.2f}",
                  f"{100 * pair['cpu'][1]:.1f}", *(f"{v / 1024:.0f}" for v in pair["memory"]),
                  *(f"{v:.0f}" for v in pair["threads"]), *(f"{v:.0f}" for v in pair["start"]),
                  *(f"{100 * v:.1f}" for v in pair["missed"]))
    each = {count: median(results, f"players {count}", OURS, "cpu") / count for count in (1, 16)}
    hundred = results["players 100"][OURS][0]
    return (f"{table}\n\nCost of a player at 16 against that at 1: {each[16] / each[1]:.2f}; goal "
            f"1.1: {verdict(each[16] <= 1.1 * each[1])}.\n100 paused players in one process: all "
            f"show their frame after {hundred['start'] / 1000:.1f} s; {hundred['memory'] / 1024:.0f}"
            f" MiB, {hundred['threads']} threads, {hundred['descriptors']} descriptors, "
            f"{100 * hundred['cpu']:.1f} % of a core.")


def cache(results):
    table = Table("URIs in one cache", "switch, ms (p95)", "MiB of the process", "descriptors",
                  "threads")
    for count in FILES:
        measure = f"cache {count}"
        if measure not in results:
            continue
        times = values_of(results, measure, OURS, "back")
        turn = results[measure][OURS][0]
        table.row(str(count), f"{statistics.median(times):.1f} ({percentile(times, .95):.0f})",
                  f"{turn['memory'] / 1024:.0f}", str(turn["descriptors"]), str(turn["threads"]))
    return str(table)


def holds(results):
    table = Table("longest hold of the GUI thread", "median, ms", "longest, ms", "documented, s")
    turn = dict(results["holds"][OURS][0])
    turn.pop("loading")
    for name, times in turn.items():
        table.row(name, f"{statistics.median(times):.1f}", f"{max(times):.1f}",
                  str(BOUNDS.get(name, "no wait")))
    return str(table)


def start(results):
    turns = results["start"][OURS]
    first, tenth = ([statistics.median(turn[key][i] for turn in turns)
                     for key in ("registered", "shown")] for i in (0, 9))
    loading = statistics.median(turn["loading"] for turn in turns)
    return (f"Loading the library takes {loading:.1f} ms beside Qt that is loaded already; the "
            f"first player's registration {first[0]:.0f} ms, its picture comes after "
            f"{first[1]:.0f} ms; the tenth's {tenth[0]:.0f} and {tenth[1]:.0f} ms.")


def table(about, results):
    parts = [", ".join(f"{key}: {value}" for key, value in about.items()) + "."]
    parts += [part(results) for part in (loads, processor, commands, memory, players, cache, holds,
                                         start)]
    return "\n\n".join(parts)


def picture(results, path):
    figure, axes = pyplot.subplots(2, 2, figsize=(12, 8))
    for axis, key, title in ((axes[0][0], "back", "Back to a file loaded before"),
                             (axes[0][1], "new", "A new file")):
        for i, name in enumerate((OURS, BARE, *QT)):
            places = [place + .2 * i for place in range(3)]
            axis.bar(places, [median(results, f"loads {size}", name, key)
                              for size in (360, 720, 1080)], .2, label=name)
        axis.set_xticks([.3, 1.3, 2.3], ["360p", "720p", "1080p"])
        axis.set_ylabel("ms to the first frame, median")
        axis.set_title(title)
        axis.legend()
    counts = [count for count in COUNTS if f"players {count}" in results]
    for name in (OURS, BARE):
        axes[1][0].plot(counts, [100 * median(results, f"players {count}", name, "cpu")
                                 for count in counts], "o-", label=name)
    axes[1][0].set_title("Players in one window")
    axes[1][0].set_xlabel("players")
    axes[1][0].set_ylabel("% of a core")
    axes[1][0].legend()
    axes[1][1].boxplot([values_of(results, "playing", name, "cpu") for name in (OURS, BARE, *QT)],
                       labels=[textwrap.fill(name, 8) for name in (OURS, BARE, *QT)])
    axes[1][1].set_title("Playing 720p30")
    axes[1][1].set_ylabel("processor seconds per second")
    axes[1][1].set_ylim(bottom=0)
    figure.tight_layout()
    figure.savefig(path, dpi=80)


def publish(text, path):
    """Puts the figures between their two marks; what is written around them stays."""
    begin, end = "<!-- figures -->", "<!-- end of figures -->"
    whole = path.read_text()
    before, after = whole.split(begin)[0], whole.split(end)[1]
    path.write_text(f"{before}{begin}\n{text}\n\n![Figures](results.png)\n{end}{after}")
