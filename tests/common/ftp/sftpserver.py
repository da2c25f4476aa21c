#!/usr/bin/python3
"""A local SFTP server (SSH) for Tarnwick's tests.

Serves one folder, as "/", to one user with a password, on 127.0.0.1. With --port 0 a free port
is taken. Once the server listens it prints one line "PORT <number>" on standard output.
The host key is read from --host-key, and made (Ed25519) when that file does not exist; its
public half goes beside it as <file>.pub.

Faults for the tests (--fault, may be given more than once):
  refuse-login       every password is refused
  drop-after=N       the first --times uploads are cut after N bytes: the connection is
                     dropped without a word
Every login that succeeds is appended to --login-log ("<session> <user>"), every operation to
--command-log ("<session> <OPERATION> <path>").
"""

import argparse
import asyncio
import os
import sys
import warnings

warnings.simplefilter("ignore")
import asyncssh  # noqa: E402


class Options:
    faults = {}
    times = 1
    cuts = 0
    user = "tarnwick"
    password = "secret"
    home = "."
    login_log = None
    command_log = None
    login_delay = 0.0
    sessions = 0


def append_line(path, text):
    if path:
        with open(path, "a", encoding="utf-8") as f:
            f.write(text + "\n")


class Server(asyncssh.SSHServer):
    def connection_made(self, conn):
        Options.sessions += 1
        self.number = Options.sessions
        conn.set_extra_info(session_number=self.number)

    def begin_auth(self, username):
        return True

    def password_auth_supported(self):
        return True

    async def validate_password(self, username, password):
        if Options.login_delay > 0:
            await asyncio.sleep(Options.login_delay)
        ok = (username == Options.user and password == Options.password
              and "refuse-login" not in Options.faults)
        if ok:
            append_line(Options.login_log, "%d %s" % (self.number, username))
        return ok


class Sftp(asyncssh.SFTPServer):
    def __init__(self, chan):
        super().__init__(chan, chroot=os.fsencode(Options.home))
        self.number = chan.get_connection().get_extra_info("session_number", 0)
        self.received = {}

    def log(self, operation, *paths):
        shown = " ".join(os.fsdecode(p) for p in paths)
        append_line(Options.command_log, "%d %s %s" % (self.number, operation, shown))

    def mkdir(self, path, attrs):
        self.log("MKDIR", path)
        return super().mkdir(path, attrs)

    def rmdir(self, path):
        self.log("RMDIR", path)
        return super().rmdir(path)

    def remove(self, path):
        self.log("REMOVE", path)
        return super().remove(path)

    def rename(self, oldpath, newpath):
        self.log("RENAME", oldpath, newpath)
        return super().rename(oldpath, newpath)

    def open(self, path, pflags, attrs):
        writing = bool(pflags & asyncssh.FXF_WRITE)
        self.log("STOR" if writing else "RETR", path)
        file_obj = super().open(path, pflags, attrs)
        if writing and "drop-after" in Options.faults and Options.cuts < Options.times:
            Options.cuts += 1
            self.received[id(file_obj)] = 0
        return file_obj

    def write(self, file_obj, offset, data):
        if id(file_obj) in self.received:
            self.received[id(file_obj)] += len(data)
            if self.received[id(file_obj)] >= int(Options.faults["drop-after"]):
                del self.received[id(file_obj)]
                file_obj.flush()
                self.channel.get_connection().abort()
                return
        return super().write(file_obj, offset, data)


async def serve(args):
    if not os.path.exists(args.host_key):
        key = asyncssh.generate_private_key("ssh-ed25519")
        key.write_private_key(args.host_key)
        key.write_public_key(args.host_key + ".pub")
    server = await asyncssh.create_server(
        Server, "127.0.0.1", args.port, server_host_keys=[args.host_key],
        sftp_factory=Sftp, allow_scp=False)
    port = server.sockets[0].getsockname()[1]
    print("PORT %d" % port, flush=True)
    await asyncio.Event().wait()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--home", required=True)
    parser.add_argument("--user", default="tarnwick")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--port", type=int, default=0)
    parser.add_argument("--fault", action="append", default=[])
    parser.add_argument("--times", type=int, default=1)
    parser.add_argument("--host-key", required=True)
    parser.add_argument("--command-log")
    parser.add_argument("--login-log")
    parser.add_argument("--login-delay", type=float, default=0.0)
    args = parser.parse_args()
    for fault in args.fault:
        name, _, value = fault.partition("=")
        if name not in ("refuse-login", "drop-after"):
            print("fault %s is not offered by the SFTP test server" % name, file=sys.stderr)
            return 2
        Options.faults[name] = value
    Options.times = args.times
    Options.user = args.user
    Options.password = args.password
    Options.home = os.path.abspath(args.home)
    Options.login_log = args.login_log
    Options.command_log = args.command_log
    Options.login_delay = args.login_delay
    try:
        asyncio.run(serve(args))
    except KeyboardInterrupt:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
