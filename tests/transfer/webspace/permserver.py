#!/usr/bin/python3
"""An FTP server whose directories have permissions of their own, for the root search's tests.

  permserver.py --home DIR --perm RELDIR=LETTERS [--perm ...]

Serves DIR to user "tarnwick", password "secret", on a free loopback port, with pyftpdlib's
permission letters overridden for the files and directories directly inside each RELDIR. Prints
"PORT <number>" once it listens.
"""
import argparse
import logging
import os

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.log import config_logging
from pyftpdlib.servers import FTPServer


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--home", required=True)
    parser.add_argument("--perm", action="append", default=[])
    args = parser.parse_args()
    home = os.path.realpath(args.home)
    authorizer = DummyAuthorizer()
    authorizer.add_user("tarnwick", "secret", home, perm="elradfmwMT")
    for item in args.perm:
        directory, _, letters = item.partition("=")
        authorizer.override_perm("tarnwick", os.path.join(home, directory), letters)
    handler = FTPHandler
    handler.authorizer = authorizer
    config_logging(level=logging.WARNING)
    server = FTPServer(("127.0.0.1", 0), handler)
    print("PORT %d" % server.address[1], flush=True)
    server.serve_forever(handle_exit=True)


if __name__ == "__main__":
    main()
