#!/usr/bin/python3
"""A mail server on loopback for tests.

    smtp_server.py PORT_FILE MAIL_FOLDER PORT CERTIFICATE KEY [PLAIN_REPLY...]

It wants STARTTLS and the sign-in "clock"/"S3cret-Mail" (CERTIFICATE "-": neither). The replies given answer the first
messages ("451 ..." or "550 ..."); later messages are taken, and stored as numbered files. It ends by itself after two
minutes.
"""
import os
import ssl
import sys
import time

from aiosmtpd.controller import Controller
from aiosmtpd.smtp import AuthResult

port_file, folder, port, certificate, key, *replies = sys.argv[1:]


class Store:
    async def handle_DATA(self, server, session, envelope):
        if replies:
            return replies.pop(0)
        name = os.path.join(folder, "%03d" % len(os.listdir(folder)))
        with open(name, "wb") as file:
            file.write(("MAIL %s\nRCPT %s\nTLS %s\n" % (envelope.mail_from, ",".join(envelope.rcpt_tos),
                                                       session.ssl is not None)).encode())
            file.write(envelope.content)
        return "250 taken"


def authenticate(server, session, envelope, mechanism, data):
    good = (data.login, data.password) == (b"clock", b"S3cret-Mail")
    return AuthResult(success=good, handled=False)


options = {}
if certificate != "-":
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    options = {"tls_context": context, "require_starttls": True, "authenticator": authenticate,
               "auth_required": True}
controller = Controller(Store(), hostname="127.0.0.1", port=int(port), **options)
controller.start()
with open(port_file + ".new", "w") as file:
    file.write(str(controller.server.sockets[0].getsockname()[1]))
os.rename(port_file + ".new", port_file)
time.sleep(120)
