#!/usr/bin/python3
"""One FTP client process that keeps one connection for every file it sends.

    ftp_send.py [--rename] HOST PORT USER PASSWORD REMOTE_DIR FILE...

Logs in once, makes REMOTE_DIR (and its parents) when missing, sends each FILE into it under
its own name (binary, passive data connections), and logs out. With --rename each file is sent
under a temporary name and renamed when whole (RNFR/RNTO), as Tarnwick sends every file. The same work as
`curl --ftp-create-dirs -T "{a,b,...}" ftp://host/dir/`, without curl's command-line tool
around it: on loopback curl's serial transfers now and then stall a whole second before they
open a data connection (seen with --trace-time between "Connecting to" and "Trying"), which
makes its time a poor anchor for many small files. The benchmarks time both.
"""
import ftplib
import os
import sys


def main():
    args = sys.argv[1:]
    rename = bool(args) and args[0] == "--rename"
    if rename:
        args = args[1:]
    if len(args) < 6:
        print(__doc__, file=sys.stderr)
        return 2
    host, port, user, password, remote = args[:5]
    files = args[5:]
    ftp = ftplib.FTP()
    ftp.connect(host, int(port), timeout=60)
    ftp.login(user, password)
    for part in [p for p in remote.split("/") if p]:
        try:
            ftp.cwd(part)
        except ftplib.error_perm:
            ftp.mkd(part)
            ftp.cwd(part)
    for path in files:
        name = os.path.basename(path)
        with open(path, "rb") as f:
            ftp.storbinary("STOR " + (name + ".part" if rename else name), f, blocksize=512 * 1024)
        if rename:
            ftp.rename(name + ".part", name)
    ftp.quit()
    return 0


if __name__ == "__main__":
    sys.exit(main())
