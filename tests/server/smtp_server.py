#!/usr/bin/python3
"""A mail server on loopback for tests.

    smtp_server.py PORT_FILE MAIL_FOLDER PORT CERTIFICATE KEY CONNECTIONS_FILE CLOSED_FILE DELAY LIMIT [PLAIN_REPLY...]

It wants STARTTLS and the sign-in "clock"/"S3cret-Mail" (CERTIFICATE "-": neither). The replies given answer the first
messages ("451 ..." or "550 ..."); later messages are taken, and stored as numbered files. Each message takes DELAY
milliseconds; after LIMIT messages (0: never) a connection is closed. For each connection a byte is added to
CONNECTIONS_FILE, and for each that was closed to CLOSED_FILE. It ends by itself after ten minutes.
"""
import asyncio
import os
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult

port_file, folder, port, certificate, key, connections_file, closed_file, delay, limit, *replies = sys.argv[1:]


def count(file):
    with open(file, "ab") as bytes:
        bytes.write(b".")


def close(transport):
    transport.close()
    asyncio.get_running_loop().call_soon(count, closed_file)  # the client has been told by then


class Store:
    def __init__(self):
        self.count = 0

    async def handle_DATA(self, server, session, envelope):
        await asyncio.sleep(int(delay) / 1000)
        session.taken = getattr(session, "taken", 0) + 1
        if session.taken == int(limit):
            asyncio.get_running_loop().call_later(0.05, close, server.transport)
        if replies:
            return replies.pop(0)
        name = os.path.join(folder, "%05d" % self.count)
        self.count += 1
        with open(name + ".new", "wb") as file:
            file.write(("MAIL %s\nRCPT %s\nTLS %s\n" % (envelope.mail_from, ",".join(envelope.rcpt_tos),
                                                       session.ssl is not None)).encode())
            file.write(envelope.content)
        os.rename(name + ".new", name)
        return "250 taken"


class CountedConnection(SMTP):
    def connection_made(self, transport):
        if self.transport is None:  # it is made a second time when it is encrypted
            count(connections_file)
        super().connection_made(transport)


def authenticate(server, session, envelope, mechanism, data):
    good = (data.login, data.password) == (b"clock", b"S3cret-Mail")
    return AuthResult(success=good, handled=False)


options = {}
if certificate != "-":
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    options = {"tls_context": context, "require_starttls": True, "authenticator": authenticate,
               "auth_required": True}


async def serve():
    store = Store()
    server = await asyncio.get_running_loop().create_server(
        lambda: CountedConnection(store, **options), "127.0.0.1", int(port))
    with open(port_file + ".new", "w") as file:
        file.write(port)
    os.rename(port_file + ".new", port_file)
    await asyncio.sleep(600)
    server.close()


asyncio.run(serve())
