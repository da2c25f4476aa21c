#!/usr/bin/python3
"""A local HTTP server for Tarnwick's tests of the link check.

Listens on 127.0.0.1 (a free port with --port 0) and prints one line "PORT <number>" on standard
output once it listens. Every request is appended to --log as "<METHOD> <path>".

What each path answers (HEAD and GET alike unless said):
  /ok...          200 with a small page (any path that starts with /ok)
  /nohead         HEAD: 405 Method Not Allowed; GET: 200
  /nohead501      HEAD: 501 Not Implemented; GET: 200
  /moved          301 to /ok/new
  /moved308       308 to /ok/new308
  /moved-twice    301 to /moved
  /temporary      302 to /ok/login
  /moved-to-gone  301 to /gone
  /loop           301 to /loop2, which answers 301 to /loop
  /forbidden      403
  /silent...      the request is read and never answered; a line "SILENT <path>" is printed
  anything else   404 Not Found
"""

import argparse
import http.server
import signal
import sys
import threading

STOP = threading.Event()
LOG_LOCK = threading.Lock()
LOG = None

REDIRECTS = {
    "/moved": (301, "/ok/new"),
    "/moved308": (308, "/ok/new308"),
    "/moved-twice": (301, "/moved"),
    "/temporary": (302, "/ok/login"),
    "/moved-to-gone": (301, "/gone"),
    "/loop": (301, "/loop2"),
    "/loop2": (301, "/loop"),
}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "TestServer/1.0"

    def log_message(self, format, *args):
        pass

    def do_HEAD(self):
        self.answer(head=True)

    def do_GET(self):
        self.answer(head=False)

    def reply(self, status, head, location=None):
        body = b"" if head else ("<!DOCTYPE html><title>%d</title><p>%d</p>\n" % (status, status)).encode()
        self.send_response(status)
        if location:
            self.send_header("Location", location)
        if status == 405:
            self.send_header("Allow", "GET")
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.send_header("Content-Length", str(len(body) if not head else 42))
        self.end_headers()
        if body:
            self.wfile.write(body)

    def answer(self, head):
        if LOG:
            with LOG_LOCK:
                LOG.write("%s %s\n" % (self.command, self.path))
                LOG.flush()
        path = self.path.split("?", 1)[0]
        if path.startswith("/silent"):
            sys.stdout.write("SILENT %s\n" % self.path)
            sys.stdout.flush()
            STOP.wait()
            self.close_connection = True
            return
        if path in ("/nohead", "/nohead501"):
            if head:
                self.reply(405 if path == "/nohead" else 501, head)
            else:
                self.reply(200, head)
            return
        if path in REDIRECTS:
            status, target = REDIRECTS[path]
            self.reply(status, head, target)
            return
        if path == "/forbidden":
            self.reply(403, head)
            return
        if path.startswith("/ok"):
            self.reply(200, head)
            return
        self.reply(404, head)


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True
    allow_reuse_address = True


def main():
    global LOG
    parser = argparse.ArgumentParser()
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--log")
    options = parser.parse_args()
    if options.log:
        LOG = open(options.log, "a", encoding="utf-8")
    server = Server(("127.0.0.1", options.port), Handler)

    def stop(*_):
        STOP.set()
        threading.Thread(target=server.shutdown, daemon=True).start()

    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    sys.stdout.write("PORT %d\n" % server.server_address[1])
    sys.stdout.flush()
    server.serve_forever(poll_interval=0.1)
    STOP.set()


if __name__ == "__main__":
    main()
