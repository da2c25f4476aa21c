#!/usr/bin/python3
"""Serves one folder as a local web space: FTP for Tarnwick to upload into, HTTP to look at
what it sent. Both listen on 127.0.0.1 only. Stop it with Ctrl+C.

    tools/local-webspace [FOLDER] [--ftp-port 2121] [--http-port 8080]
                         [--user tarnwick] [--password PASSWORD] [--announce]
                         [--tls [--certificate FILE]]

FOLDER defaults to ~/tarnwick-webspace and is made when missing. Without --password a fresh
one is made up and printed. A port of 0 takes any free one. With --announce, the one line
"TARNWICK-WEBSPACE ftp=PORT http=PORT" follows on standard output once both servers listen
(Tarnwick's "Try it on this computer" starts it that way), and the servers stop when standard
input closes.

With --tls the FTP server offers encrypted connections (FTPS: AUTH TLS) with a self-signed
certificate for 127.0.0.1 and localhost, kept in FILE (by default
~/.config/tarnwick-webspace/certificate.pem, made when missing); its SHA-256 fingerprint is
printed, to compare with the one Tarnwick shows when it asks whether to trust it.
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
        .not_valid_after(now + datetime.timedelta(days=825))
        .add_extension(x509.SubjectAlternativeName([
            x509.DNSName("localhost"),
            x509.IPAddress(ipaddress.ip_address("127.0.0.1"))]), critical=False)
        .sign(key, hashes.SHA256()))
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as f:
        f.write(key.private_bytes(serialization.Encoding.PEM,
                                  serialization.PrivateFormat.PKCS8,
                                  serialization.NoEncryption()))
        f.write(certificate.public_bytes(serialization.Encoding.PEM))


def fingerprint_of(path):
    from cryptography import x509
    from cryptography.hazmat.primitives import hashes
    with open(path, "rb") as f:
        certificate = x509.load_pem_x509_certificate(f.read())
    return ":".join("%02X" % b for b in certificate.fingerprint(hashes.SHA256()))


def main():
    parser = argparse.ArgumentParser(description="A local web space for trying Tarnwick.")
    parser.add_argument("folder", nargs="?", default=os.path.expanduser("~/tarnwick-webspace"))
    parser.add_argument("--ftp-port", type=int, default=2121)
    parser.add_argument("--http-port", type=int, default=8080)
    parser.add_argument("--user", default="tarnwick")
    parser.add_argument("--password", default=None)
    parser.add_argument("--announce", action="store_true")
    parser.add_argument("--tls", action="store_true")
    parser.add_argument("--certificate",
                        default=os.path.expanduser("~/.config/tarnwick-webspace/certificate.pem"))
    args = parser.parse_args()

    folder = os.path.abspath(args.folder)
    os.makedirs(folder, exist_ok=True)
    password = args.password or secrets.token_urlsafe(9)

    authorizer = DummyAuthorizer()
    authorizer.add_user(args.user, password, folder, perm="elradfmwMT")
    handler = FTPHandler
    fingerprint = None
    if args.tls:
        try:
            from pyftpdlib.handlers import TLS_FTPHandler
        except ImportError:
            sys.exit("TLS needs python3-openssl: install it with  apt-get install python3-openssl")
        if not os.path.exists(args.certificate):
            make_certificate(args.certificate)
        from pyftpdlib.handlers import TLS_DTPHandler

        class DataChannel(TLS_DTPHandler):
            def readable(self):
                # pyftpdlib closes a data channel that is asked whether it is readable before
                # its transfer command came; a TLS one is asked while its handshake runs.
                if not self.receive and not self._initialized:
                    return self._ssl_want_read
                return super().readable()

        handler = TLS_FTPHandler
        handler.dtp_handler = DataChannel
        handler.certfile = args.certificate
        fingerprint = fingerprint_of(args.certificate)
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
        print("TARNWICK-WEBSPACE ftp=%d http=%d%s" % (
            ftp_port, http_port, " fingerprint=%s" % fingerprint if fingerprint else ""))
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
    print("  FTP server:  %s127.0.0.1:%d" % ("ftps://" if args.tls else "", ftp_port))
    print("  User name:   %s" % args.user)
    print("  Password:    %s" % password)
    print("  Web site:    http://127.0.0.1:%d" % http_port)
    print("  FTP root:    (leave empty)")
    print()
    if fingerprint:
        print("The connection is encrypted with a certificate made for this computer. Tarnwick")
        print("asks once whether to trust it: its SHA-256 fingerprint must read")
        print("  %s" % fingerprint)
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
