"""A program on a pseudo terminal, driven as a user would: send a line, wait for a text, never for a time."""
import os
import pty
import select
import signal
import struct
import fcntl
import termios


class Term:
    def __init__(self, argv, cwd=None, env=None, rows=24, columns=80):
        self.output = ""  # all so far, line ends as the program wrote them
        self.seen = 0  # what waits have passed over
        self.status = None
        self.pid, self.master = pty.fork()
        if self.pid == 0:
            try:
                if cwd:
                    os.chdir(cwd)
                os.execvpe(argv[0], argv, {**os.environ, "TERM": "vt100", **(env or {})})
            finally:
                os._exit(127)
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def send(self, text):
        data = text if isinstance(text, bytes) else text.encode("latin-1")
        while data:
            data = data[os.write(self.master, data):]

    def line(self, text, wait=None):
        """Sends a line; with a text to wait for, what the program said up to it."""
        self.send(text if isinstance(text, bytes) else text + "\n")
        return self.wait(wait) if wait else None

    def eof(self):
        self.send(b"\x04")

    def read(self, limit):
        """Some output, or False at the end of it."""
        ready, _, _ = select.select([self.master], [], [], limit)
        if not ready:
            raise AssertionError("nothing came within %i s behind: %r" % (limit, self.output[-600:]))
        try:
            data = os.read(self.master, 65536)
        except OSError:  # the other side is closed
            data = b""
        self.output += data.decode("latin-1").replace("\r\n", "\n")
        return bool(data)

    def wait(self, text, limit=60):
        """Reads until the text stands behind the last one waited for; what came up to it."""
        while True:
            at = self.output.find(text, self.seen)
            if at >= 0:
                start, self.seen = self.seen, at + len(text)
                return self.output[start:self.seen]
            if not self.read(limit):
                raise AssertionError("%r did not come, the program ended: %r" % (text, self.output[-600:]))

    def end(self, limit=60):
        """Waits for the end of the program; its status, negative for a signal."""
        while self.read(limit):
            pass
        return self.reap()

    def reap(self):
        if self.status is None:
            self.status = os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])
        return self.status

    def close(self):
        if self.status is None:
            os.kill(self.pid, signal.SIGKILL)
            self.reap()
        os.close(self.master)
