#!/usr/bin/python3
"""Serves one folder as a local web space: FTP for Tarnwick to upload into, HTTP to look at
what it sent. Both listen on 127.0.0.1 only. Stop it with Ctrl+C.

    tools/local-webspace [FOLDER] [--ftp-port 2121] [--http-port 8080]
                         [--user tarnwick] [--password PASSWORD] [--announce]

FOLDER defaults to ~/tarnwick-webspace and is made when missing. Without --password a fresh
one is made up and printed. A port of 0 takes any free one. With --announce, the one line
"TARNWICK-WEBSPACE ftp=PORT http=PORT" follows on standard output once both servers listen
(Tarnwick's "Try it on this computer" starts it that way), and the servers stop when standard
input closes.
"""

import argparse
import functools
import http.server
import logging
import os
import secrets
import sys
import threading

try:
    from pyftpdlib.authorizers import DummyAuthorizer
    from pyftpdlib.handlers import FTPHandler
    from pyftpdlib.log import config_logging
    from pyftpdlib.servers import FTPServer
except ImportError:
    sys.exit("pyftpdlib is missing: install it with  apt-get install python3-pyftpdlib  "
             "and run this with /usr/bin/python3")


def main():
    parser = argparse.ArgumentParser(description="A local web space for trying Tarnwick.")
    parser.add_argument("folder", nargs="?", default=os.path.expanduser("~/tarnwick-webspace"))
    parser.add_argument("--ftp-port", type=int, default=2121)
    parser.add_argument("--http-port", type=int, default=8080)
    parser.add_argument("--user", default="tarnwick")
    parser.add_argument("--password", default=None)
    parser.add_argument("--announce", action="store_true")
    args = parser.parse_args()

    folder = os.path.abspath(args.folder)
    os.makedirs(folder, exist_ok=True)
    password = args.password or secrets.token_urlsafe(9)

    authorizer = DummyAuthorizer()
    authorizer.add_user(args.user, password, folder, perm="elradfmwMT")
    handler = FTPHandler
    handler.authorizer = authorizer
    handler.banner = "Tarnwick local web space ready."
    config_logging(level=logging.WARNING)
    try:
        ftp = FTPServer(("127.0.0.1", args.ftp_port), handler)
    except OSError as error:
        sys.exit("The FTP port %d is taken (%s): choose another with --ftp-port." % (args.ftp_port, error))

    class QuietHandler(http.server.SimpleHTTPRequestHandler):
        def log_message(self, *unused):
            pass

    try:
        web = http.server.ThreadingHTTPServer(
            ("127.0.0.1", args.http_port), functools.partial(QuietHandler, directory=folder))
    except OSError as error:
        sys.exit("The web port %d is taken (%s): choose another with --http-port." % (args.http_port, error))
    threading.Thread(target=web.serve_forever, daemon=True).start()
    ftp_port = ftp.address[1]
    http_port = web.server_address[1]

    if args.announce:
        print("TARNWICK-WEBSPACE ftp=%d http=%d" % (ftp_port, http_port))
        sys.stdout.flush()

        def stop_when_input_closes():
            while sys.stdin.buffer.read(4096):
                pass
            ftp.close_all()
            os._exit(0)

        threading.Thread(target=stop_when_input_closes, daemon=True).start()
        try:
            ftp.serve_forever(handle_exit=True)
        finally:
            web.shutdown()
        return

    print("Local web space in %s" % folder)
    print()
    print("Type these into Tarnwick (FTP Control & Settings, or the Configuration page):")
    print("  FTP server:  127.0.0.1:%d" % ftp_port)
    print("  User name:   %s" % args.user)
    print("  Password:    %s" % password)
    print("  Web site:    http://127.0.0.1:%d" % http_port)
    print("  FTP root:    (leave empty)")
    print()
    print("What Tarnwick sends shows at the web site address. Ctrl+C stops both servers.")
    sys.stdout.flush()
    try:
        ftp.serve_forever(handle_exit=True)
    finally:
        web.shutdown()
        ftp.close_all()


if __name__ == "__main__":
    main()
