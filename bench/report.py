"""The table and the picture of what bench/run has measured."""
import json
import math
import statistics
import textwrap

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402, the backend is chosen first

OURS_AND_BARE = OURS, BARE = "plug-in", "bare pipeline"
CLIENT = "client program"
QT = ("Qt, GStreamer", "Qt, FFmpeg")
COUNTS = (1, 2, 4, 8, 16, 32)
FILES = (1, 10, 100, 300)
RETURNS = "load returns"
# How long an operation may wait on the GUI thread, in seconds: one for each change to paused or
# playing, as the host guide says under "Threads and memory ordering".
BOUNDS = {"register": 2, "0 load, new video": 2, "0 load, cached": 1, "0 load, refused": 1,
          "2 play": 1, "2 pause": 1, "2 stop": 1, "park": 1, "restore": 1}
MISSED = ("Frames missed are those that the file's rate gives for the nominal time of the count and "
          "that were not seen. The count can go on a moment longer, and the figure is then negative.")


def percentile(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, math.ceil(share * len(ordered)) - 1)]


def present(results, measure, names):
    """Those of the subjects that have been measured: a system may not have each of them."""
    return [name for name in names if values_of(results, measure, name, None)]


def values_of(results, measure, name, key):
    """All values of a figure over the turns, lists among them joined; without a key the turns."""
    turns = results.get(measure, {}).get(name, [])
    joined = []
    for turn in turns:
        value = turn if key is None else turn.get(key, [])
        joined += value if isinstance(value, list) else [value]
    return joined


def median(results, measure, name, key):
    """Not a number where nothing has been measured; nothing is then met, and nothing fails."""
    values = values_of(results, measure, name, key)
    return statistics.median(values) if values else math.nan


class Table:
    def __init__(self, *heads):
        self.lines = ["| " + " | ".join(heads) + " |", "|" + "---|" * len(heads)]

    def row(self, *cells):
        self.lines.append("| " + " | ".join(cells) + " |")

    def __str__(self):
        return "\n".join(self.lines)


def verdict(met):
    return "met" if met else "**missed**"


def better_qt(results, measure, key, middle=median):
    return min((middle(results, measure, name, key) for name in present(results, measure, QT)),
               default=math.nan)


def load_goals(key, size, about):
    """Limits of the plug-in's time as shares of the bare pipeline's and of Qt's better backend."""
    if key == "new":
        return 0.5, 1.8
    if size == 360:
        return 1.05, 1.4 if about.get("sink draws NV12") else 1.0
    return 0.7 if size == 1080 and about.get("sink draws NV12") else 0.9, 1.0


def loads(systems):
    """The one table in which the systems stand side by side."""
    heads = ["ms to the first frame, median (p95)"]
    for system in systems:
        heads += [f"{system}: {OURS}", BARE, *QT, "ratios and goals"]
    table = Table(*heads)
    for key, what in (("back", "back to a file"), ("new", "new file")):
        for size in (360, 720, 1080):
            measure, cells = f"loads {size}", []
            for about, results in systems.values():
                for name in (OURS, BARE, *QT):
                    times = values_of(results, measure, name, key)
                    cells.append(f"{statistics.median(times):.1f} ({percentile(times, .95):.0f})"
                                 if times else "not there")
                ours = median(results, measure, OURS, key)
                bare = ours / median(results, measure, BARE, key)
                qt = ours / better_qt(results, measure, key)
                limits = load_goals(key, size, about)
                cells.append(f"{bare:.2f} x bare, {qt:.2f} x Qt; goals {limits[0]}, {limits[1]}: "
                             + ("not measured" if math.isnan(qt) else
                                verdict(bare <= limits[0] and qt <= limits[1])))
            table.row(f"{what}, {size}p", *cells)
    polled = [f"on {system} " + ", ".join(
        f"{median(results, f'loads {size}', OURS, 'polled'):.0f} ms at {size}p"
        for size in (360, 720, 1080)) for system, (_, results) in systems.items()]
    return (f"{table}\n\nBack to a file with the polling delay: {'; '.join(polled)}.\n"
            + "\n".join(client(system, results) for system, (_, results) in systems.items()))


def client(system, results):
    """How much later than with the record, driven by hand and found by the same poll."""
    later = {f"{what} at {size}p": median(results, f"loads {size}", CLIENT, key)
             - median(results, f"loads {size}", OURS, by_hand)
             for what, key, by_hand in (("back", "back", "polled"), ("new", "new", "polled new"))
             for size in (360, 720, 1080)}
    if any(map(math.isnan, later.values())):
        return f"A client program on {system}: not measured."
    figures = ", ".join(f"{what} {time:+.0f} ms" for what, time in later.items())
    return (f"A client program on {system}, from source set to first frame, against the record "
            f"driven by hand: {figures}; goal 50 ms: {verdict(max(later.values()) <= 50)}.")


def timeline(_, results):
    """Medians of when each stage was over, and how long after the one before it."""
    parts = []
    columns = [(size, name) for size in (360, 1080) for name in OURS_AND_BARE
               if values_of(results, f"timeline {size}", name, None)]
    for key, what in (("back", "back to a file"), ("new", "new file")):
        ended = {column: {stage: statistics.median(times) for stage, times in
                          results[f"timeline {column[0]}"][column[1]][0][key].items()}
                 for column in columns}
        order = {}
        for stages in ended.values():
            for stage, time in stages.items():
                order.setdefault(stage, time)
        table = Table(f"{what}: ms after the question", *(f"{name}, {size}p"
                                                         for size, name in columns))
        for stage in sorted(order, key=order.get):
            cells = []
            for column in columns:
                time = ended[column].get(stage)
                # That the call returns is no stage: a subject may go on behind it.
                before = [other for name, other in ended[column].items()
                          if name != RETURNS and time is not None and other < time]
                cells.append("" if time is None else f"{time:.1f}" if stage == RETURNS
                             else f"{time:.1f} ({time - max(before, default=0):+.1f})")
            table.row(stage, *cells)
        if columns:
            parts.append(str(table))
    return "\n\n".join(parts)


def processor(about, results):
    ours = values_of(results, "playing", OURS, "cpu")
    bare = values_of(results, "playing", BARE, "cpu")
    # Of neighbours in time, so that what else the machine does hits both.
    ratios = [a / b for a, b in zip(ours, bare)]
    middle = statistics.mean(ratios)
    # Student's t for 95 % of the usual numbers of pairs; more pairs than ten only narrow it.
    factor = {2: 12.7, 3: 4.3, 10: 2.26}.get(len(ratios), 2.26)
    half = factor * statistics.stdev(ratios) / math.sqrt(len(ratios)) if len(ratios) > 1 else 0

    def mean(_, measure, name, key):
        return statistics.mean(values_of(results, measure, name, key))

    qt = "".join(f", {name} {mean(results, 'playing', name, 'cpu'):.2f}"
                 for name in present(results, "playing", QT))
    to_qt = statistics.mean(ours) / better_qt(results, "playing", "cpu", mean)
    if about.get("sink draws NV12"):
        goal = "0.5 x bare, 1.5 x Qt: " + verdict(middle <= .5 and to_qt <= 1.5)
    else:
        goal = "1.05 x bare, or no difference: " + verdict(middle <= 1.05 or middle - half <= 1)
    parked = median(results, "parked", OURS, "cpu") - median(results, "parked", OURS, "without")
    table = Table("processor", "figure", "goal")
    table.row("playing 720p30, s/s",
              f"{OURS} {statistics.mean(ours):.2f}, {BARE} {statistics.mean(bare):.2f}{qt}", "")
    table.row("plug-in / bare, 95 % interval; plug-in / better Qt",
              f"{middle:.2f} ({middle - half:.2f} to {middle + half:.2f}), {len(ratios)} pairs; "
              f"{to_qt:.2f}", goal)
    table.row("parked and paused, % of a core", f"{100 * parked:.2f}",
              "0.5: " + verdict(parked < .005))
    return str(table)


def commands(_, results):
    table = Table("ms from raised to answered, playing", "median", "p95", "p99", "goal")
    for code in ("1", "3", "9", "10", "11"):
        times = values_of(results, "commands", OURS, code)
        middle, worst = statistics.median(times), percentile(times, .99)
        table.row(code, f"{middle:.0f}", f"{percentile(times, .95):.0f}", f"{worst:.0f}",
                  "150, p99 250: " + verdict(middle < 150 and worst < 250))
    return str(table)


def memory(_, results):
    ours, bare = (median(results, "memory", name, "perFile") / 1024 for name in (OURS, BARE))
    return (f"Memory of a cached URI: {ours:.1f} MiB, bare pipeline in READY {bare:.1f} MiB, ratio "
            f"{ours / bare:.2f}; goal 1.10: {verdict(ours <= 1.1 * bare)}.")


def players(_, results):
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
    return (f"{table}\n\n{MISSED}\n\nCost of a player at 16 against that at 1: "
            f"{each[16] / each[1]:.2f}; goal 1.1: {verdict(each[16] <= 1.1 * each[1])}.\n100 paused players in one process: all "
            f"show their frame after {hundred['start'] / 1000:.1f} s; {hundred['memory'] / 1024:.0f}"
            f" MiB, {hundred['threads']} threads, {hundred['descriptors']} descriptors, "
            f"{100 * hundred['cpu']:.1f} % of a core.")


def cache(_, results):
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


def holds(_, results):
    table = Table("longest hold of the GUI thread", "median, ms", "longest, ms", "documented, s")
    turn = dict(results["holds"][OURS][0])
    turn.pop("loading")
    for name, times in turn.items():
        table.row(name, f"{statistics.median(times):.1f}", f"{max(times):.1f}",
                  str(BOUNDS.get(name, "no wait")))
    return str(table)


def start(_, results):
    turns = results["start"][OURS]
    first, tenth = ([statistics.median(turn[key][i] for turn in turns)
                     for key in ("registered", "shown")] for i in (0, 9))
    loading = statistics.median(turn["loading"] for turn in turns)
    return (f"Loading the library takes {loading:.1f} ms beside Qt that is loaded already; the "
            f"first player's registration {first[0]:.0f} ms, its picture comes after "
            f"{first[1]:.0f} ms; the tenth's {tenth[0]:.0f} and {tenth[1]:.0f} ms.")


def said_of(about):
    return ", ".join(f"{key}: {value}" for key, value in about.items()) + "."


def table(systems):
    """Each part for all systems, before the next part. `systems`: name to (about, results)."""
    parts = [f"{system}: {said_of(about)}" for system, (about, _) in systems.items()]
    parts.append(loads(systems))
    for part in (timeline, processor, commands, memory, players, cache, holds, start):
        for system, (about, results) in systems.items():
            text = part(about, results)
            parts += [f"**{system}**", text] if text else []
    return "\n\n".join(parts)


def picture(results, path):
    figure, axes = pyplot.subplots(2, 2, figsize=(12, 8))
    for axis, key, title in ((axes[0][0], "back", "Back to a file loaded before"),
                             (axes[0][1], "new", "A new file")):
        for i, name in enumerate(present(results, "loads 360", (OURS, BARE, *QT))):
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
    names = present(results, "playing", (OURS, BARE, *QT))
    axes[1][1].boxplot([values_of(results, "playing", name, "cpu") for name in names])
    axes[1][1].set_xticklabels([textwrap.fill(name, 8) for name in names])
    axes[1][1].set_title("Playing 720p30")
    axes[1][1].set_ylabel("processor seconds per second")
    axes[1][1].set_ylim(bottom=0)
    figure.tight_layout()
    figure.savefig(path, dpi=80)


def publish(folder):
    """Puts the figures of every system into RESULTS.md, between their two marks; what is written
    around them stays."""
    systems = {}
    for path in sorted(folder.glob("results-*.json")):
        kept = json.loads(path.read_text())
        systems["Debian " + path.stem.partition("-")[2]] = kept["machine"], kept["results"]
    pictures = "\n".join(f"![Figures of {name}](results-{name.split()[1]}.png)" for name in systems)
    begin, end = "<!-- figures -->", "<!-- end of figures -->"
    path = folder / "RESULTS.md"
    whole = path.read_text()
    before, after = whole.split(begin)[0], whole.split(end)[1]
    path.write_text(f"{before}{begin}\n{table(systems)}\n\n{pictures}\n{end}{after}")
