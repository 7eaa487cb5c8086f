"""Servers on loopback as networks have them, each with one film."""

import contextlib
import http.server
import re
import threading
import time

FILM = "movie-hello.mp4"
CHUNK = 16384
KINDS = {  # what a server does, in words that end "a server that ..."
    "knows ranges": {"ranges": True},
    "knows no ranges": {},
    "sends at twice the film's rate": {"ranges": True, "rate": 2},
    "stalls for ten seconds": {"stall": 10},
    "closes after two thirds": {"close": 0.66},
    "answers 404": {"status": 404},
    "redirects": {"ranges": True, "status": 302},
    "takes five seconds to answer": {"ranges": True, "delay": 5},
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        how, body = self.server.how, self.server.body
        time.sleep(how.get("delay", 0))
        if how.get("status") == 404:
            return self.send_error(404)
        if how.get("status") == 302 and self.path != "/film.mp4":
            self.send_response(302)
            self.send_header("Location", "/film.mp4")
            self.send_header("Content-Length", "0")
            return self.end_headers()
        wanted = re.match(r"bytes=(\d+)-(\d*)", self.headers.get("Range", ""))
        start, end = 0, len(body)
        if wanted and how.get("ranges"):
            start, end = int(wanted[1]), int(wanted[2] or len(body) - 1) + 1
            self.send_response(206)
            self.send_header("Content-Range", f"bytes {start}-{end - 1}/{len(body)}")
        else:
            self.send_response(200)
        self.send_header("Accept-Ranges", "bytes" if how.get("ranges") else "none")
        self.send_header("Content-Type", "video/mp4")
        self.send_header("Content-Length", str(end - start))
        self.end_headers()
        with contextlib.suppress(ConnectionError):
            self.send(body, start, end)

    def send(self, body, start, end):
        how, stop = self.server.how, int(len(body) * 0.4)
        for at in range(start, end, CHUNK):
            if "stall" in how and at <= stop < at + CHUNK:
                time.sleep(how["stall"])
            if "close" in how and at >= len(body) * how["close"]:
                self.close_connection = True
                return
            self.wfile.write(body[at:min(end, at + CHUNK)])
            if "rate" in how:
                time.sleep(CHUNK / (how["rate"] * len(body) / self.server.seconds))

    def log_message(self, *_):
        pass


@contextlib.contextmanager
def serve(kind, path, seconds):
    """Gives the film's address."""
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler) as server:
        server.daemon_threads = True
        server.handle_error = lambda *_: None  # players hang up as they like
        server.how, server.body, server.seconds = KINDS[kind], path.read_bytes(), seconds
        threading.Thread(target=server.serve_forever, daemon=True).start()
        yield f"http://127.0.0.1:{server.server_port}/a.mp4"
        server.shutdown()
