#!/usr/bin/env python3
"""play.py BUILD FOLDER SHARE SHARES: plays FOLDER/media and the servers' addresses in four players.

Appends to FOLDER/results.jsonl what each player did with each, skips what stands there, and takes
every SHARES-th of them. Needs a display of its own; XDG_RUNTIME_DIR is a short private folder."""

import json
import os
import pty
import re
import select
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import servers

FIRST_FRAME = 10  # s
STANDSTILL = 15  # s without progress, after which a run is over
SIDE = 32  # pixels of a picture that is looked at
BRIGHT = 48  # green, of which neither a black picture nor the hosts' own ground has any
TOLD = re.compile(r"^.*?\b([SWE])=([^ ]*)(?: D=(\S+))?(.*)$")
CLOCK = re.compile(r"(\d+):(\d\d):(\d\d\.\d+) / (\d+):(\d\d):(\d\d\.\d+)")
ERROR = re.compile(r"(ERROR (?!debug)|Failed to open).*")


def players(build):
    ours = f"{build}/tests/corpus_player"
    status = "--term-status-msg=S=${=time-pos} D=${=duration}"
    return {
        "ours": [ours, "widget"],
        "ours, quick": [ours, "quick"],
        "gst-play-1.0": ["gst-play-1.0", "--no-interactive", "--wait-on-eos",
                         "--audiosink=fakesink sync=true"],
        "mpv": ["mpv", "--no-config", "--ytdl=no", "--ao=null", "--vo=x11", "--keep-open=yes",
                status],
        "QMediaPlayer": ["/usr/lib/qt6/bin/qml", str(Path(__file__).parent / "QtPlayer.qml"), "--"],
    }


class Probe:
    """What ffprobe says of a file."""

    def __init__(self, path):
        told = json.loads(Path(f"{path}.json").read_text())
        streams = [s for s in told["streams"] if not s.get("disposition", {}).get("attached_pic")]
        self.path = path
        self.duration = float(told["format"].get("duration", 0))
        self.videos = [s for s in streams if s["codec_type"] == "video"]
        codecs = [re.sub("^pcm_.*", "pcm", s.get("codec_name", "unknown")) for s in streams
                  if s["codec_type"] in ("video", "audio")]
        self.kind = f"{path.suffix.lower()}: " + (" + ".join(dict.fromkeys(codecs)) or "no stream")
        turned = [s.get("side_data_list", [{}])[0].get("rotation") for s in self.videos]
        self.chain = str((turned, [s.get("pix_fmt") for s in self.videos], len(streams)))

    def bright(self, at):
        """Whether none of the reference's pictures from a little before `at` on is black."""
        shots = ffmpeg_pictures("-ss", f"{max(0, at - 0.3):.2f}", "-t", "1.5", "-i", self.path,
                                "-an", "-vf", f"fps=4,scale={SIDE}:{SIDE}")
        return bool(shots) and all(map(is_bright, shots))


def ffmpeg_pictures(*arguments):
    raw = subprocess.run(["ffmpeg", "-v", "quiet", "-nostdin", *arguments, "-f", "rawvideo",
                          "-pix_fmt", "rgb24", "-"], stdout=subprocess.PIPE, check=False).stdout
    return [raw[i:i + 3 * SIDE * SIDE] for i in range(0, len(raw), 3 * SIDE * SIDE)]


def is_bright(picture):
    return sum(green >= BRIGHT for green in picture[1::3]) > 4


def screen():
    return ffmpeg_pictures("-f", "x11grab", "-draw_mouse", "0", "-i", os.environ["DISPLAY"],
                           "-frames:v", "1", "-vf", f"crop=640:480:0:0,scale={SIDE}:{SIDE}")[0]


class Run:
    """One player with one address: what it has told, and what the screen showed."""

    def __init__(self, command, uri, goal, patience, looks):
        self.positions, self.duration, self.words, self.shots = [], 0.0, [], []
        self.ended, self.jump, self.last = False, 0.0, None
        self.progressed, looked = time.monotonic(), 0.0
        child, terminal = pty.fork()
        if child == 0:
            os.execvp(command[0], [*command, uri])
        rest = ""
        while time.monotonic() < self.progressed + (STANDSTILL if self.positions else patience):
            if select.select([terminal], [], [], 0.1)[0]:
                try:
                    rest += os.read(terminal, 65536).decode(errors="replace")
                except OSError:  # the player has ended
                    break
                *lines, rest = re.split(r"[\r\n]|\x1b\[[0-9;]*[A-Za-z]", rest)
                for line in lines:
                    self.hear(line, time.monotonic())
            far = self.positions and self.positions[-1] >= goal or self.ended
            if far and len(self.shots) >= looks:
                break
            if far and time.monotonic() > looked + 1:
                self.shots.append(screen())
                looked = time.monotonic()
        os.kill(child, signal.SIGTERM)
        # A player that ignores it hangs, and is told by the alarm's signal.
        killer = threading.Timer(5, os.kill, (child, signal.SIGALRM))
        killer.start()
        status = os.waitpid(child, 0)[1]
        killer.cancel()
        os.close(terminal)
        self.fatal = os.WTERMSIG(status) if os.WIFSIGNALED(status) else 0

    def hear(self, line, now):
        told, clock = TOLD.match(line), CLOCK.search(line)
        if clock:
            h, m, s, hours, minutes, seconds = map(float, clock.groups())
            # It cuts off what is less than a tenth.
            self.at(h * 3600 + m * 60 + s, hours * 3600 + minutes * 60 + seconds + 0.05, now)
        elif told and told[1] == "S":
            numbers = [float(n) if re.fullmatch(r"-?[\d.]+", n or "") else 0.0
                       for n in told.group(2, 3)]
            self.at(*numbers, now)
        elif told and told[1] == "E" or "Reached end of play list" in line:
            self.ended = True
        elif told or ERROR.match(line):
            text = (told[2] + told[4] if told else line).strip()
            self.words += [text] if text and text not in self.words else []

    def at(self, position, duration, now):
        if self.last and not self.ended:
            self.jump = max(self.jump, position - self.last[0] - (now - self.last[1]))
        if not self.positions or position > max(self.positions):
            self.progressed = now
        self.last = position, now
        self.positions.append(position)
        self.duration = duration or self.duration


def near(duration, reference):
    return abs(duration - reference) <= max(0.02 * reference, 0.1)


def decoded_length(path):
    """What a file lasts by its frames, whatever its headers say."""
    told = subprocess.run(["ffmpeg", "-nostdin", "-stats", "-v", "error", "-i", path, "-f", "null",
                           "-"], stderr=subprocess.PIPE, text=True, check=False).stderr
    times = re.findall(r"time=(\d+):(\d+):([\d.]+)", told) or [(0, 0, 0)]
    return sum(float(n) * unit for n, unit in zip(times[-1], (3600, 60, 1)))


def judge(run, goal, probe, bright, served):
    """What is wrong, in words; empty when nothing is."""
    if served and servers.KINDS[served].get("status") == 404:
        return [] if run.words else ["says nothing"]
    wrong = []
    if run.fatal not in (0, signal.SIGTERM):
        wrong.append("hangs at its end" if run.fatal == signal.SIGALRM
                     else f"crashes with signal {run.fatal}")
    if not run.positions and not run.ended:
        return [*wrong, "no first frame in time"]
    if not near(run.duration, probe.duration):
        decoded = decoded_length(probe.path)  # where ffprobe only guesses
        if not near(run.duration, decoded):
            wrong.append(f"its duration is {run.duration:.2f} s instead of {probe.duration:.2f} s"
                         f" ({decoded:.2f} s by its frames)")
    if not run.ended and max(run.positions) < goal:
        wrong.append(f"stands at {max(run.positions):.1f} s")
    if bright and run.shots and not any(map(is_bright, run.shots)):
        wrong.append("shows black")
    if served and run.jump > 1.5:
        wrong.append(f"jumps by {run.jump:.1f} s")
    if served and len(run.shots) > 1 and len(set(run.shots)) == 1:
        wrong.append("its picture stands still")
    return wrong


def main():
    build, folder, share, shares = Path(sys.argv[1]), Path(sys.argv[2]), *map(int, sys.argv[3:5])
    results = folder / "results.jsonl"
    results.touch()
    stamp = (build / "tests/corpus_player").stat().st_mtime  # another build plays them anew
    done = {(r["name"], r["player"], r["stamp"]) for r in map(json.loads, results.open())}
    private = Path(os.environ["XDG_RUNTIME_DIR"])
    media = sorted(p for p in (folder / "media").iterdir() if p.suffix != ".json")
    probes = [Probe(path) for path in media]
    first = {p.chain: p.path for p in reversed(probes)}
    jobs = []
    for probe in probes:
        link = private / f"{share}{probe.path.suffix.lower()}"
        jobs.append((probe.path.name, probe, probe.kind, link, None))
    film = next((p for p in probes if p.path.name.endswith(servers.FILM)), None)
    for name in servers.KINDS if film else ():
        jobs.append((f"server: {name}", film, f"server that {name}", None, name))

    for name, probe, kind, link, served in jobs[share::shares]:
        goal = min(1.2, probe.duration / 2) if not served else probe.duration * 0.6
        if goal < 0.3:  # nobody says on the way where it is
            goal = 0
        bright = None
        for player, command in players(build).items():
            ours = player.startswith("ours")
            mark = stamp if ours else 0
            skip = player == "ours, quick" and (served or first[probe.chain] != probe.path)
            if skip or (name, player, mark) in done:
                continue
            if bright is None:
                bright = bool(probe.videos) and probe.bright(goal)
            if served:
                with servers.serve(served, probe.path, probe.duration) as uri:
                    how = servers.KINDS[served]
                    patience = FIRST_FRAME + how.get("stall", 0) + how.get("delay", 0)
                    run = Run(command, uri, goal, patience, 2)
            else:
                link.unlink(missing_ok=True)
                link.symlink_to(probe.path.resolve())
                run = Run(command, f"file://{link}", goal, FIRST_FRAME, bool(probe.videos))
            result = {"name": name, "kind": kind, "player": player, "stamp": mark,
                      "wrong": judge(run, goal, probe, bright, served),
                      "words": run.words[:3]}
            with results.open("a") as out:
                out.write(json.dumps(result) + "\n")
            if ours and result["wrong"]:
                print(f"{name}: {'; '.join(result['wrong'] + result['words'])}", flush=True)


main()
