"""Printers that keep what they get: a listener as on port 9100, and a receiver of the line printer protocol.

    with FakePrinter(directory) as printer:
        ... send to 127.0.0.1:printer.port ...
        data = printer.wait(1)[0]

Both write one file a connection (socket) or a job (LPD) into their directory; wait(n) returns their contents.
"""
import os
import re
import socket
import threading
import time


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as taken:
        return taken.getsockname()[1]


class FakePrinter:
    """Reads each connection to its end and keeps the bytes as job000, job001, ..."""

    def __init__(self, directory, port=0, address="127.0.0.1"):
        self.directory = directory
        self.problems = []
        os.makedirs(directory, exist_ok=True)
        self.count = 0
        self.listener = socket.create_server((address, port))
        self.port = self.listener.getsockname()[1]
        self.thread = threading.Thread(target=self._serve, daemon=True)

    def _serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            with connection:
                connection.settimeout(30)
                try:
                    self._receive(connection)
                except (OSError, ValueError) as error:
                    self.problems.append(str(error))

    def _keep(self, data):
        path = os.path.join(self.directory, "job%03d" % self.count)
        with open(path + ".part", "wb") as out:
            out.write(data)
        os.rename(path + ".part", path)
        self.count += 1

    def _receive(self, connection):
        data = b""
        while chunk := connection.recv(65536):
            data += chunk
        if data:  # a probe connects and goes
            self._keep(data)

    def wait(self, count, seconds=20):
        """Contents of the first count jobs, or what came in time."""
        end = time.monotonic() + seconds
        while self.count < count and time.monotonic() < end:
            time.sleep(0.01)
        jobs = []
        for number in range(self.count):
            with open(os.path.join(self.directory, "job%03d" % number), "rb") as job:
                jobs.append(job.read())
        return jobs

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *ignored):
        # A thread that still waits would take connections of whoever gets the number of the descriptor next.
        self.listener.shutdown(socket.SHUT_RDWR)
        self.thread.join()
        self.listener.close()


class FakeLpd(FakePrinter):
    """Receives jobs by the line printer protocol; the names of their queues stand in .queues."""

    def __init__(self, directory, port=0, address="127.0.0.1"):
        super().__init__(directory, port, address)
        self.queues = []

    def _receive(self, connection):
        stream = connection.makefile("rb")
        line = stream.readline()
        if not line.startswith(b"\2"):
            raise ValueError("command %r" % line)
        self.queues.append(line[1:-1].decode())
        connection.sendall(b"\0")
        while line := stream.readline():
            match = re.fullmatch(rb"([\2\3])(\d+) (.*)\n", line)
            if not match:
                raise ValueError("subcommand %r" % line)
            connection.sendall(b"\0")
            data = stream.read(int(match[2]) + 1)
            if len(data) != int(match[2]) + 1 or data[-1:] != b"\0":
                raise ValueError("a file is cut, or doesn't end in NUL")
            if match[1] == b"\3":
                self._keep(data[:-1])
            connection.sendall(b"\0")
