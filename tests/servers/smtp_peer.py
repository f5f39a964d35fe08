#!/usr/bin/python3
"""smtp_peer.py DIR [SIZE_LIMIT [CERTIFICATE KEY USER PASSWORD]]: an SMTP server on loopback that keeps what it is told, for tests and the demo.

Prints "ready PORT" once it listens on a port of its own. Each mail becomes DIR/NNNN.eml, the bytes as they came with
transparency undone, and DIR/NNNN.json, its envelope. Refuses recipients in refused.test, and mails over SIZE_LIMIT
bytes at the end of their data. With a certificate it takes nothing before STARTTLS and a login. Ends when it is told to, or when its standard input closes.
"""
import asyncio
import itertools
import json
import os
import ssl
import sys

from aiosmtpd.smtp import AuthResult, SMTP

folder = sys.argv[1]
size_limit = int(sys.argv[2]) if len(sys.argv) > 2 else 1 << 27
numbers = itertools.count(1)


class Keeper:
    async def handle_RCPT(self, server, session, envelope, address, options):
        if address.endswith("@refused.test"):
            return "550 5.1.1 no such user here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        path = os.path.join(folder, "%04d" % next(numbers))
        with open(path + ".json", "w", encoding="utf-8") as file:
            json.dump({"helo": session.host_name, "from": envelope.mail_from, "to": envelope.rcpt_tos}, file)
        with open(path + ".part", "wb") as file:
            file.write(envelope.content)
        os.rename(path + ".part", path + ".eml")
        return "250 OK queued"


def login_options(certificate, key, user, password):
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
    context.load_cert_chain(certificate, key)
    given = (user.encode(), password.encode())
    return {"tls_context": context, "require_starttls": True, "auth_required": True,
            "authenticator": lambda server, session, envelope, mechanism, data: AuthResult(
                success=(data.login, data.password) == given, handled=False)}


async def main():
    options = login_options(*sys.argv[3:]) if len(sys.argv) > 3 else {}
    keeper = Keeper()
    loop = asyncio.get_running_loop()
    server = await loop.create_server(
        lambda: SMTP(keeper, hostname="mx.example.test", ident="test peer", data_size_limit=size_limit,
                     decode_data=False, **options), "127.0.0.1", 0)
    print("ready", server.sockets[0].getsockname()[1], flush=True)
    await loop.run_in_executor(None, sys.stdin.read)
    server.close()


asyncio.run(main())
