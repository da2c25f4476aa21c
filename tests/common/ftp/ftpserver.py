#!/usr/bin/python3
"""A local FTP server for Tarnwick's tests and for trying the program by hand.

Serves one folder to one user on 127.0.0.1. With --port 0 a free port is taken. Once the
server listens it prints one line "PORT <number>" on standard output and flushes it.

Faults for the tests (--fault, may be given more than once):
  refuse-login       every login is refused with 530
  stor-550           every STOR is answered "550 Permission denied."
  stor-552           every STOR is answered "552 Requested file action aborted. Exceeded storage allocation."
  dele-550           every DELE is answered "550 Permission denied."
  rnto-553           every RNTO is answered "553 Rename not allowed."
  drop-after=N       the first --times uploads are cut after N bytes: data and control
                     connections closed without a reply
  stall-after=N      the first --times uploads stop being read after N bytes, and the server
                     answers nothing more on that session
  stall-retr         downloads send nothing and the session answers nothing more
  silent             connections are accepted and never greeted
  greet-421          connections are greeted "421 Service not available, closing control
                     connection." and closed
  dos-listing        LIST answers in the DOS/IIS format
  cwd-421=NAME       CWD into a directory called NAME is answered "421 Timeout." and the
                     session is closed (a server ending an idle session)
  mkd-553=NAME       MKD of a directory called NAME is answered "553 Requested action not
                     taken. File name not allowed." (the directory is not made)
  drop-after-files=N once N uploads have arrived whole, the session that took the Nth is
                     closed at once, without a word (a connection dropped between two files)
  idle-421-after-files=N
                     once N uploads have arrived whole, the next command of the session that
                     took the Nth is answered "421 Timeout." and the session is closed (a
                     server that ends an idle session)
  mute-user          the greeting comes, but USER is never answered, nor anything after it
  pasv-dead-port     EPSV and PASV name a port where nothing listens
  data-silent        LIST, NLST, MLSD, RETR and STOR are answered 150, the data connection is
                     taken and then nothing more is sent or read on either connection
  half-reply[=CMD]   half a reply line, then the connection is closed: in place of the
                     greeting, or of the answer to CMD when one is named
--certificate PATH offers TLS (AUTH TLS, explicit FTPS) with the certificate and key in PATH,
made (self-signed, for localhost and 127.0.0.1) when the file does not exist.
--login-delay S holds every password check S seconds (without holding other sessions), as a
real server's check of a password does. Every login that succeeds is appended to --login-log,
one line each ("<session> <user>").
Every command the server receives is appended to --command-log, one line each
("<session> <COMMAND> <argument>"; the password is not written).
"""

import argparse
import logging
import os
import socket
import sys
import threading
import time

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.filesystems import AbstractedFS
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.log import config_logging
from pyftpdlib.servers import FTPServer


class Options:
    faults = {}
    times = 1
    command_log = None
    login_log = None
    login_delay = 0.0
    uploads_cut = 0
    uploads_received = 0
    session_count = 0
    dead_port = None
    lock = threading.Lock()


def append_line(path, text):
    if not path:
        return
    with Options.lock:
        with open(path, "a", encoding="utf-8") as f:
            f.write(text + "\n")


def log_command(session, line):
    append_line(Options.command_log, "%d %s" % (session, line))


def dead_port():
    """A port where nothing listens: bound, so nobody else takes it, but never listening."""
    if Options.dead_port is None:
        sock = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
        sock.bind(("127.0.0.1", 0))
        Options.dead_port = sock
    return Options.dead_port.getsockname()[1]


def count_upload():
    """Counts an upload that arrived whole; returns the count."""
    with Options.lock:
        Options.uploads_received += 1
        return Options.uploads_received


def take_cut():
    """True while the first --times uploads are still to be cut."""
    with Options.lock:
        if Options.uploads_cut < Options.times:
            Options.uploads_cut += 1
            return True
    return False


def refuses_mkd(arg):
    """True when the mkd-553 fault names the directory that MKD asks for."""
    name = Options.faults.get("mkd-553")
    return bool(name) and arg.rstrip("/").split("/")[-1] == name


def hard_close(channel):
    """Closes a connection without a word, nor a TLS goodbye."""
    channel._error = True
    channel.close()


def make_certificate(path):
    """A self-signed certificate for localhost and 127.0.0.1, with its key, in one PEM file."""
    import datetime
    import ipaddress
    from cryptography import x509
    from cryptography.hazmat.primitives import hashes, serialization
    from cryptography.hazmat.primitives.asymmetric import ec
    from cryptography.x509.oid import NameOID

    key = ec.generate_private_key(ec.SECP256R1())
    name = x509.Name([x509.NameAttribute(NameOID.COMMON_NAME, "localhost")])
    now = datetime.datetime.utcnow()
    certificate = (
        x509.CertificateBuilder()
        .subject_name(name)
        .issuer_name(name)
        .public_key(key.public_key())
        .serial_number(x509.random_serial_number())
        .not_valid_before(now - datetime.timedelta(days=1))
        .not_valid_after(now + datetime.timedelta(days=30))
        .add_extension(x509.SubjectAlternativeName([
            x509.DNSName("localhost"),
            x509.IPAddress(ipaddress.ip_address("127.0.0.1"))]), critical=False)
        .sign(key, hashes.SHA256()))
    with open(path, "wb") as f:
        f.write(key.private_bytes(serialization.Encoding.PEM,
                                  serialization.PrivateFormat.PKCS8,
                                  serialization.NoEncryption()))
        f.write(certificate.public_bytes(serialization.Encoding.PEM))


class DtpFaults:
    cut_after = None
    stall_after = None

    def enable_receiving(self, type, cmd):
        if cmd == "STOR":
            if "drop-after" in Options.faults and take_cut():
                self.cut_after = int(Options.faults["drop-after"])
            elif "stall-after" in Options.faults and take_cut():
                self.stall_after = int(Options.faults["stall-after"])
        super().enable_receiving(type, cmd)

    def handle_read_event(self):
        if self.stall_after is not None and self.tot_bytes_received >= self.stall_after:
            # Stop reading for good; the control session is silenced too.
            self.receive = False
            self.cmd_channel.silenced = True
            return
        super().handle_read_event()
        if self.cut_after is not None and self.tot_bytes_received >= self.cut_after:
            self.file_obj.flush()
            cmd = self.cmd_channel
            cmd.silenced = True
            self.cut_after = None
            # A hard cut: no reply, both connections gone.
            try:
                self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER,
                                       b"\x01\x00\x00\x00\x00\x00\x00\x00")
            except Exception:
                pass
            hard_close(self)
            hard_close(cmd)

    def readable(self):
        if self.stall_after is not None and self.cmd_channel.silenced:
            return False
        if self.cmd_channel.data_silent:
            # Taken, and then left alone: neither read nor closed.
            return False
        return super().readable()


class FaultDTPHandler(DtpFaults, DTPHandler):
    pass


class Faults:
    silenced = False
    data_silent = False
    closing_for_idle = False

    def handle(self):
        if "greet-421" in Options.faults:
            self.on_connect()
            self.respond("421 Service not available, closing control connection.")
            self.close_when_done()
            return
        if Options.faults.get("half-reply", None) == "":
            self.on_connect()
            self.push("220 Tarnwick te")
            self.close_when_done()
            return
        super().handle()

    def on_login(self, username):
        append_line(Options.login_log, "%d %s" % (getattr(self, "session_number", 0), username))

    def on_file_received(self, file):
        count = count_upload()
        dropped = Options.faults.get("drop-after-files")
        if dropped and count == int(dropped):
            # Closed under the client's feet, after the reply that the file arrived (once the
            # data connection is done with: it is still closing here).
            self.silenced = True
            self.ioloop.call_later(0, hard_close, self)
        idle = Options.faults.get("idle-421-after-files")
        if idle and count == int(idle):
            self.closing_for_idle = True

    def ftp_PASS(self, line):
        if Options.login_delay > 0 and not self.authenticated and self.username:
            self.ioloop.call_later(Options.login_delay, self.checked_pass, line)
            return
        super().ftp_PASS(line)

    def checked_pass(self, line):
        if not self._closed:
            super().ftp_PASS(line)

    def ftp_PASV(self, line):
        if "pasv-dead-port" in Options.faults:
            port = dead_port()
            self.respond("227 Entering passive mode (127,0,0,1,%d,%d)." % (port // 256, port % 256))
            return
        super().ftp_PASV(line)

    def ftp_EPSV(self, line):
        if "pasv-dead-port" in Options.faults:
            self.respond("229 Entering extended passive mode (|||%d|)." % dead_port())
            return
        super().ftp_EPSV(line)

    def on_connect(self):
        with Options.lock:
            Options.session_count += 1
            self.session_number = Options.session_count

    def respond(self, resp, logfun=None):
        if self.silenced:
            return
        if logfun is None:
            super().respond(resp)
        else:
            super().respond(resp, logfun)

    def pre_process_command(self, line, cmd, arg):
        if self.silenced:
            return
        shown = "PASS ****" if cmd == "PASS" else line
        log_command(getattr(self, "session_number", 0), shown)
        if self.closing_for_idle:
            self.respond("421 Timeout.")
            self.close_when_done()
            return
        if cmd == "USER" and "mute-user" in Options.faults:
            self.silenced = True
            return
        if Options.faults.get("half-reply") and cmd == Options.faults["half-reply"]:
            self.push("%s Tarnwick te" % ("150" if cmd in ("LIST", "RETR", "STOR") else "250"))
            self.silenced = True
            self.close_when_done()
            return
        if cmd in ("LIST", "NLST", "MLSD", "RETR", "STOR") and "data-silent" in Options.faults:
            self.respond("150 File status okay. About to open data connection.")
            self.silenced = True
            self.data_silent = True
            return
        if cmd == "PASS" and "refuse-login" in Options.faults:
            self.respond("530 Authentication failed.")
            return
        if cmd == "STOR" and "stor-550" in Options.faults:
            self.respond("550 Permission denied.")
            return
        if cmd == "STOR" and "stor-552" in Options.faults:
            self.respond("552 Requested file action aborted. Exceeded storage allocation.")
            return
        if cmd == "DELE" and "dele-550" in Options.faults:
            self.respond("550 Permission denied.")
            return
        if cmd == "RNTO" and "rnto-553" in Options.faults:
            self.respond("553 Rename not allowed.")
            return
        if cmd == "MKD" and refuses_mkd(arg):
            self.respond("553 Requested action not taken. File name not allowed.")
            return
        if cmd == "CWD" and arg and arg.strip("/") == Options.faults.get("cwd-421"):
            self.respond("421 Timeout.")
            self.close_when_done()
            return
        if cmd == "RETR" and "stall-retr" in Options.faults:
            self.silenced = True
            return
        super().pre_process_command(line, cmd, arg)


class FaultHandler(Faults, FTPHandler):
    dtp_handler = FaultDTPHandler


try:
    from pyftpdlib.handlers import TLS_DTPHandler, TLS_FTPHandler

    class TlsFaultDTPHandler(DtpFaults, TLS_DTPHandler):
        def readable(self):
            # pyftpdlib closes a data channel that is asked whether it is readable before its
            # transfer command came; a TLS one is asked while its handshake runs.
            if not self.receive and not self._initialized:
                return self._ssl_want_read
            return super().readable()

    class TlsFaultHandler(Faults, TLS_FTPHandler):
        dtp_handler = TlsFaultDTPHandler
except ImportError:  # no python3-openssl
    TlsFaultHandler = None


class DosFS(AbstractedFS):
    def format_list(self, basedir, listing, ignore_err=True):
        for basename in listing:
            path = os.path.join(basedir, basename)
            try:
                st = self.lstat(path)
            except OSError:
                if ignore_err:
                    continue
                raise
            stamp = time.strftime("%m-%d-%y  %I:%M%p", time.gmtime(st.st_mtime))
            if self.isdir(path):
                middle = "%-20s" % "<DIR>"
            else:
                middle = "%20d" % st.st_size
            yield ("%s %s %s\r\n" % (stamp, middle, basename)).encode("utf8", self.cmd_channel.unicode_errors)


def serve_silent(sock):
    held = []
    while True:
        conn, _ = sock.accept()
        held.append(conn)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--home", required=True)
    parser.add_argument("--user", default="tarnwick")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--fault", action="append", default=[])
    parser.add_argument("--times", type=int, default=1)
    parser.add_argument("--perm", default="elradfmwMT")
    parser.add_argument("--command-log")
    parser.add_argument("--login-log")
    parser.add_argument("--login-delay", type=float, default=0.0)
    parser.add_argument("--certificate")
    args = parser.parse_args()

    for fault in args.fault:
        name, _, value = fault.partition("=")
        Options.faults[name] = value
    Options.times = args.times
    Options.command_log = args.command_log
    Options.login_log = args.login_log
    Options.login_delay = args.login_delay

    if "silent" in Options.faults:
        sock = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        sock.bind(("127.0.0.1", args.port))
        sock.listen(16)
        print("PORT %d" % sock.getsockname()[1], flush=True)
        serve_silent(sock)
        return

    authorizer = DummyAuthorizer()
    authorizer.add_user(args.user, args.password, os.path.abspath(args.home), perm=args.perm)
    handler = FaultHandler
    if args.certificate:
        if TlsFaultHandler is None:
            print("TLS needs python3-openssl", file=sys.stderr)
            return 2
        if not os.path.exists(args.certificate):
            make_certificate(args.certificate)
        handler = TlsFaultHandler
        handler.certfile = args.certificate
    handler.authorizer = authorizer
    handler.banner = "Tarnwick test server ready."
    handler.passive_ports = None
    if "dos-listing" in Options.faults:
        handler.abstracted_fs = DosFS
    config_logging(level=logging.WARNING)
    server = FTPServer(("127.0.0.1", args.port), handler)
    server.max_cons = 256
    print("PORT %d" % server.address[1], flush=True)
    try:
        server.serve_forever(handle_exit=True)
    finally:
        server.close_all()


if __name__ == "__main__":
    sys.exit(main())
