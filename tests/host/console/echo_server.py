#!/usr/bin/env python3
"""A web server for tests, on a free port of the loopback interface. Prints the port, and serves until it is ended.

It answers with what it was asked, a line each: method and path, the headers that tests look at, the body. Other paths:
/status/404 that status, /redirect to /echo, /slow after a minute, /latin a text in ISO 8859-1, /bytes no text at all,
/named a file with a name, /cookie one cookie.

With two files, of a certificate and its key, it speaks TLS, and wants that certificate of its clients, too.
"""

import http.server
import ssl
import sys
import time

SHOWN = "Accept", "Authorization", "Content-Type", "Cookie", "Range", "Referer", "User-Agent", "X-Test"


class Handler(http.server.BaseHTTPRequestHandler):
    def answer(self, status, body, headers=()):
        self.send_response(status)
        for name, value in (*headers, ("Content-Length", str(len(body)))):
            self.send_header(name, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)

    def echo(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        lines = [f"{self.command} {self.path}"]
        lines += [f"{name}: {self.headers[name]}" for name in SHOWN if name in self.headers]
        self.answer(200, "\n".join(lines).encode() + b"\n" + body, [("Content-Type", "text/plain"), ("X-Answer", "42")])

    def do_GET(self):
        if self.path.startswith("/status/"):
            self.answer(int(self.path.rsplit("/", 1)[1]), b"sorry")
        elif self.path == "/redirect":
            self.answer(302, b"elsewhere", [("Location", "/echo")])
        elif self.path == "/slow":
            time.sleep(60)
        elif self.path == "/latin":
            self.answer(200, "é".encode("latin-1"), [("Content-Type", "text/plain; charset=ISO-8859-1")])
        elif self.path == "/bytes/data.bin":
            self.answer(200, b"\xff\x00\xfe")
        elif self.path == "/named":
            self.answer(200, b"text", [("Content-Disposition", 'attachment; filename="report.txt"')])
        elif self.path == "/cookie":
            self.answer(200, b"taken", [("Set-Cookie", "flavour=plain; Path=/")])
        else:
            self.echo()

    do_POST = do_PUT = do_HEAD = do_DELETE = do_PATCH = do_GET

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
if len(sys.argv) > 2:
    context = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH, cafile=sys.argv[1])
    context.load_cert_chain(sys.argv[1], sys.argv[2])
    context.verify_mode = ssl.CERT_REQUIRED
    server.handle_error = lambda *_: None  # clients without the certificate are expected
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
print(server.server_port, flush=True)
try:
    server.serve_forever()
except KeyboardInterrupt:
    sys.exit(0)
