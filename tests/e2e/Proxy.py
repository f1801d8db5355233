#!/usr/bin/env python3
"""Stands before a server on this machine and goes away after so many connections, which live on.

  Proxy.py PORT CONNECTIONS    prints the port that it listens on
"""

import socket
import sys
import threading


def pump(source, target):
    while data := source.recv(65536):
        target.sendall(data)
    target.shutdown(socket.SHUT_WR)


port, connections = map(int, sys.argv[1:])
with socket.create_server(("127.0.0.1", 0)) as listener:
    print(listener.getsockname()[1], flush=True)
    for _ in range(connections):
        client, _ = listener.accept()
        server = socket.create_connection(("127.0.0.1", port))
        for ends in ((client, server), (server, client)):
            threading.Thread(target=pump, args=ends).start()
