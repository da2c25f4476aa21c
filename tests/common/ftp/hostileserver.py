#!/usr/bin/python3
"""A hostile FTP server for Tarnwick's tests: it speaks enough FTP for a client to log in, move
about, list and fetch, and then answers in ways that no honest server does. Every byte it sends is
written here, so the tests decide exactly what the program reads.

Serves one folder to one user on 127.0.0.1, with the arguments of ftpserver.py (--home, --user,
--password, --port, --command-log; --perm and --times are accepted and passed over). Once it
listens it prints "PORT <number>" and flushes.

Behaviours (--fault, may be given more than once):
  long-line-close    PWD is answered with one line of 1 MB and no line end; the server then closes
                     the connection
  long-line-stall    the same, and the server then stays silent with the connection open
  long-reply         CWD is answered with a reply of 100,000 lines ("550-...") closed by "550 No."
  listing=N          LIST sends N entries in the Unix form ("file000001.txt" ...)
  endless-listing    LIST sends entries without end, until the client closes the data connection
  hostile-names      LIST sends names holding "../", "/", NUL, CR and LF, and "." and "..",
                     between two honest ones; RETR of any name sends "fetched <name>"
  code-999           PWD is answered "999 Something odd happened."
  code-000           CWD is answered "000 Fine." (a code below the protocol's range)
  code-1234          MKD is answered "1234 Made it, maybe."
Every command it receives is appended to --command-log ("<session> <COMMAND> <argument>").
"""

import argparse
import os
import socket
import sys
import threading

LISTING_TIME = b"Nov 22 05:01"


class Options:
    faults = {}
    home = "."
    user = "tarnwick"
    password = "secret"
    command_log = None
    sessions = 0
    lock = threading.Lock()


def log_command(session, line):
    if not Options.command_log:
        return
    with Options.lock:
        with open(Options.command_log, "a", encoding="utf-8", errors="replace") as f:
            f.write("%d %s\n" % (session, line))


def unix_line(name, size=1234, directory=False):
    kind = b"d" if directory else b"-"
    return (kind + b"rw-r--r--   1 owner group %10d " % size + LISTING_TIME + b" " + name +
            b"\r\n")


class Session(threading.Thread):
    def __init__(self, conn):
        super().__init__(daemon=True)
        self.conn = conn
        self.cwd = "/"
        self.data_listener = None
        self.logged_in = False
        with Options.lock:
            Options.sessions += 1
            self.number = Options.sessions

    def send(self, text):
        if isinstance(text, str):
            text = text.encode("utf-8")
        self.conn.sendall(text)

    def reply(self, line):
        self.send(line + "\r\n")

    def run(self):
        try:
            self.serve()
        except (OSError, ConnectionError):
            pass
        finally:
            try:
                self.conn.close()
            except OSError:
                pass

    def read_line(self, reader):
        line = reader.readline(8192)
        if not line:
            return None
        return line.rstrip(b"\r\n").decode("utf-8", "replace")

    def serve(self):
        self.reply("220 Hostile test server ready.")
        reader = self.conn.makefile("rb")
        while True:
            line = self.read_line(reader)
            if line is None:
                return
            verb, _, arg = line.partition(" ")
            verb = verb.upper()
            log_command(self.number, "PASS ****" if verb == "PASS" else line)
            handler = getattr(self, "do_" + verb, None)
            if handler is None:
                self.reply("502 Command not implemented.")
                continue
            if handler(arg) == "close":
                return

    # Login and session.
    def do_USER(self, arg):
        self.reply("331 Username ok, send password.")

    def do_PASS(self, arg):
        self.logged_in = True
        self.reply("230 Login successful.")

    def do_QUIT(self, arg):
        self.reply("221 Goodbye.")
        return "close"

    def do_NOOP(self, arg):
        self.reply("200 NOOP ok.")

    def do_TYPE(self, arg):
        self.reply("200 Type set.")

    def do_FEAT(self, arg):
        self.send("211-Features:\r\n EPSV\r\n PASV\r\n SIZE\r\n211 End\r\n")

    def do_PWD(self, arg):
        if "long-line-close" in Options.faults or "long-line-stall" in Options.faults:
            self.send(b"257 \"" + b"A" * (1024 * 1024))
            if "long-line-stall" in Options.faults:
                threading.Event().wait()  # silent for good
            return "close"
        if "code-999" in Options.faults:
            self.reply("999 Something odd happened.")
            return
        self.reply('257 "%s" is the current directory.' % self.cwd.replace('"', '""'))

    def do_CWD(self, arg):
        if "long-reply" in Options.faults and arg.strip("/") == "deep":
            lines = [b"550-Line %d of a reply that goes on and on." % i for i in range(100000)]
            self.send(b"\r\n".join(lines) + b"\r\n550 No.\r\n")
            return
        if "code-000" in Options.faults and arg.strip("/") == "odd":
            self.reply("000 Fine.")
            return
        path = arg if arg.startswith("/") else os.path.join(self.cwd, arg)
        self.cwd = os.path.normpath(path) if path else "/"
        if not self.cwd.startswith("/"):
            self.cwd = "/"
        self.reply("250 Directory changed.")

    def do_CDUP(self, arg):
        self.cwd = os.path.dirname(self.cwd.rstrip("/")) or "/"
        self.reply("250 Directory changed.")

    def do_MKD(self, arg):
        if "code-1234" in Options.faults:
            self.reply("1234 Made it, maybe.")
            return
        self.reply('257 "%s" created.' % arg)

    def do_SIZE(self, arg):
        if "hostile-names" in Options.faults:
            self.reply("213 %d" % len(b"fetched " + arg.encode("utf-8", "replace")))
            return
        path = os.path.join(Options.home, self.cwd.lstrip("/"), arg)
        if os.path.isfile(path):
            self.reply("213 %d" % os.path.getsize(path))
        else:
            self.reply("550 Not a plain file.")

    def do_MDTM(self, arg):
        self.reply("550 Not a plain file.")

    def do_REST(self, arg):
        self.reply("350 Ready.")

    # Data connections: passive only.
    def open_listener(self):
        if self.data_listener:
            self.data_listener.close()
        self.data_listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
        self.data_listener.bind(("127.0.0.1", 0))
        self.data_listener.listen(1)
        return self.data_listener.getsockname()[1]

    def do_EPSV(self, arg):
        port = self.open_listener()
        self.reply("229 Entering Extended Passive Mode (|||%d|)." % port)

    def do_PASV(self, arg):
        port = self.open_listener()
        self.reply("227 Entering Passive Mode (127,0,0,1,%d,%d)." % (port >> 8, port & 0xff))

    def data_connection(self):
        if not self.data_listener:
            self.reply("425 Use PASV first.")
            return None
        self.data_listener.settimeout(10)
        try:
            conn, _ = self.data_listener.accept()
        except OSError:
            self.reply("425 No data connection.")
            return None
        finally:
            self.data_listener.close()
            self.data_listener = None
        return conn

    def send_data(self, opening, produce):
        self.reply(opening)
        conn = self.data_connection()
        if conn is None:
            return
        try:
            for chunk in produce():
                conn.sendall(chunk)
        except (OSError, ConnectionError):
            conn.close()
            self.reply("426 Connection closed; transfer aborted.")
            return
        conn.close()
        self.reply("226 Transfer complete.")

    def listing(self):
        count = Options.faults.get("listing")
        if count is not None:
            count = int(count)
            batch = []
            for i in range(count):
                batch.append(unix_line(b"file%06d.txt" % i, size=i))
                if len(batch) == 1000:
                    yield b"".join(batch)
                    batch = []
            yield b"".join(batch)
            return
        if "endless-listing" in Options.faults:
            i = 0
            while True:
                yield b"".join(unix_line(b"endless%09d.txt" % (i + j)) for j in range(1000))
                i += 1000
        if "hostile-names" in Options.faults:
            yield unix_line(b"honest.txt", size=15)
            for name in (b"../escape.txt", b"../../etc/passwd", b"sub/dir.txt", b"/abs.txt",
                         b"nul\x00byte.txt", b"car\rriage.txt", b"new\nline.txt", b".", b".."):
                yield unix_line(name, size=20)
            yield unix_line(b"also honest.txt", size=20)
            return
        for name in sorted(os.listdir(os.path.join(Options.home, self.cwd.lstrip("/")))):
            path = os.path.join(Options.home, self.cwd.lstrip("/"), name)
            yield unix_line(name.encode("utf-8"), size=os.path.getsize(path),
                            directory=os.path.isdir(path))

    def do_LIST(self, arg):
        self.send_data("150 Here comes the directory listing.", self.listing)

    def do_NLST(self, arg):
        self.do_LIST(arg)

    def do_RETR(self, arg):
        if "hostile-names" in Options.faults:
            payload = b"fetched " + arg.encode("utf-8", "replace")
            self.send_data("150 Opening BINARY mode data connection.", lambda: [payload])
            return
        path = os.path.join(Options.home, self.cwd.lstrip("/"), arg)
        if not os.path.isfile(path):
            self.reply("550 No such file.")
            return

        def chunks():
            with open(path, "rb") as f:
                yield f.read()
        self.send_data("150 Opening BINARY mode data connection.", chunks)

    def do_STOR(self, arg):
        self.reply("150 Ok to send data.")
        conn = self.data_connection()
        if conn is None:
            return
        while conn.recv(65536):
            pass
        conn.close()
        self.reply("226 Transfer complete.")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--home", required=True)
    parser.add_argument("--user", default="tarnwick")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--fault", action="append", default=[])
    parser.add_argument("--times", type=int, default=1)
    parser.add_argument("--perm", default="")
    parser.add_argument("--command-log")
    args = parser.parse_args()
    for fault in args.fault:
        name, _, value = fault.partition("=")
        Options.faults[name] = value
    Options.home = os.path.abspath(args.home)
    Options.user = args.user
    Options.password = args.password
    Options.command_log = args.command_log

    sock = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    sock.bind(("127.0.0.1", args.port))
    sock.listen(16)
    print("PORT %d" % sock.getsockname()[1], flush=True)
    while True:
        conn, _ = sock.accept()
        Session(conn).start()


if __name__ == "__main__":
    sys.exit(main())
