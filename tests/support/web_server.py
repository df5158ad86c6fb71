#!/usr/bin/python3
"""A web server for tests, on ports of its own of 127.0.0.1: one for https, one for http.

  web_server.py FOLDER

Makes a certificate authority for this run. Writes into FOLDER:
  authority.pem   what a client must trust
  requests.log    a line for each request: METHOD PATH, a tab, the User-Agent
  ports           the https port and the http port, once the server answers
Serves the files below FOLDER/www; the paths of BEHAVIOURS misbehave instead, and so does a file that only says
"behave as PATH".
"""
import http.server
import os
import signal
import ssl
import subprocess
import sys
import threading
import time

FOLDER = ""
PORTS = {}


def run_openssl(*words):
    subprocess.run(["openssl", *words], cwd=FOLDER, check=True, capture_output=True)


def make_certificates():
    key = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"]
    run_openssl("req", "-x509", *key, "-keyout", "authority.key", "-out", "authority.pem", "-days", "2",
                "-subj", "/CN=Test Authority", "-addext", "keyUsage=critical,keyCertSign")
    run_openssl("req", *key, "-keyout", "server.key", "-out", "server.csr", "-subj", "/CN=localhost")
    with open(os.path.join(FOLDER, "server.ext"), "w") as file:
        file.write("subjectAltName=DNS:localhost,IP:127.0.0.1\n")
    run_openssl("x509", "-req", "-in", "server.csr", "-CA", "authority.pem", "-CAkey", "authority.key",
                "-CAcreateserial", "-days", "2", "-extfile", "server.ext", "-out", "server.pem")


def url(kind, path):
    return f"{kind}://localhost:{PORTS[kind]}{path}"


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        with open(os.path.join(FOLDER, "requests.log"), "a") as log:
            log.write(f"{self.command} {self.path}\t{self.headers.get('User-Agent', '')}\n")
        behaviour = BEHAVIOURS.get(self.model())
        if behaviour is None:
            return self.serve_file()
        self.close_connection = True
        try:
            behaviour(self)
        except OSError:
            pass  # the client has gone, which is what these paths are for

    def model(self):
        path = os.path.join(FOLDER, "www", self.path.lstrip("/"))
        if os.path.isfile(path):
            with open(path, "rb") as file:
                words = file.read(200).split()
            if words[:2] == [b"behave", b"as"]:
                return words[2].decode()
        return self.path

    def serve_file(self):
        path = os.path.join(FOLDER, "www", self.path.lstrip("/"))
        if not os.path.isfile(path):
            return self.answer(404, b"no such page")
        with open(path, "rb") as file:
            self.answer(200, file.read())

    def answer(self, status, body, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def redirect(self, target):
        self.answer(302, b"elsewhere", Location=target)

    def begin_endless_answer(self):
        self.send_response(200)
        self.send_header("Connection", "close")
        self.end_headers()

    def send_for_ever(self, piece, pause_seconds):
        self.begin_endless_answer()
        while True:
            self.wfile.write(piece)
            self.wfile.flush()
            time.sleep(pause_seconds)

    def send_half(self):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b"only this")

    def log_message(self, *_):
        pass


BEHAVIOURS = {
    "/redirected": lambda request: request.redirect("/page"),
    "/to-https": lambda request: request.redirect(url("https", "/page")),
    "/to-http": lambda request: request.redirect(url("http", "/page")),
    "/to-a-file": lambda request: request.redirect("file:///etc/passwd"),
    "/to-https-and-back": lambda request: request.redirect(url("https", "/to-http")),
    "/choices": lambda request: request.answer(300, b"this or that"),
    "/slow-loop": lambda request: (time.sleep(0.6), request.redirect("/slow-loop")),
    "/loop": lambda request: request.redirect("/loop"),
    "/hang-up": lambda request: None,
    "/hang-up-half-way": Handler.send_half,
    "/no-http": lambda request: request.wfile.write(b"220 this is a mail server\r\n"),
    "/endless": lambda request: request.send_for_ever(b"x" * 65536, 0),
    "/drip": lambda request: request.send_for_ever(b"x" * 10, 0.2),
    "/silent": lambda request: time.sleep(600),
}


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        pass  # a client that does not trust the certificate


def serve(kind, context):
    server = Server(("127.0.0.1", 0), Handler)
    if context is not None:
        # The handshake is left to the request's own thread.
        server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    PORTS[kind] = server.server_port
    threading.Thread(target=server.serve_forever, daemon=True).start()


def main(folder):
    global FOLDER
    FOLDER = folder
    make_certificates()
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(os.path.join(folder, "server.pem"), os.path.join(folder, "server.key"))
    serve("https", context)
    serve("http", None)
    ports = os.path.join(folder, "ports")
    with open(ports + ".new", "w") as file:
        file.write(f"{PORTS['https']} {PORTS['http']}\n")
    os.replace(ports + ".new", ports)
    signal.pause()


if __name__ == "__main__":
    main(sys.argv[1])
