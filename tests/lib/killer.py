"""Ends a program in front of its n-th call that changes something, by the debugging interface of Linux on x86-64.

    call = run(["./program", "word"], env, at=7)           killed there, unless it makes fewer such calls
    run([...], env).calls                                  the names of all of them, in order

Only the program's own calls count, not those of the commands that it starts; whoever outlives it is waited for.
"""
import ctypes
import os
import platform
import signal
from collections import namedtuple

LIBC = ctypes.CDLL(None, use_errno=True)
LIBC.ptrace.argtypes = [ctypes.c_long] * 4
LIBC.ptrace.restype = ctypes.c_long
TRACEME, PEEKUSER, DETACH, SYSCALL, SETOPTIONS = 0, 3, 17, 24, 0x4200
TRACESYSGOOD, EXITKILL = 1, 0x100000
SUBREAPER = 36
NUMBER, FIRST, THIRD = (8 * place for place in (15, 14, 12))  # of a call and its words, among the registers
SYSCALL_STOP = signal.SIGTRAP | 0x80

CHANGES = {1: "write", 18: "pwrite64", 20: "writev", 42: "connect", 44: "sendto", 48: "shutdown", 56: "clone", 57: "fork",
           58: "vfork", 61: "wait4", 62: "kill", 73: "flock", 74: "fsync", 76: "truncate", 77: "ftruncate", 82: "rename",
           83: "mkdir", 84: "rmdir", 86: "link", 87: "unlink", 88: "symlink", 90: "chmod", 91: "fchmod", 92: "chown",
           93: "fchown", 231: "exit_group", 257: "openat", 263: "unlinkat", 264: "renameat", 280: "utimensat", 435: "clone3"}
MAKES = os.O_CREAT | os.O_TRUNC

Run = namedtuple("Run", "calls status")  # status: as of subprocess, negative for a signal


def missing():
    """Why programs can't be ended so here, or None."""
    return None if platform.machine() == "x86_64" else "the numbers of system calls are known for x86-64 only"


def _start(argv, env):
    """A child that stops as its program starts."""
    pid = os.fork()
    if pid:
        os.waitpid(pid, 0)
        LIBC.ptrace(SETOPTIONS, pid, 0, TRACESYSGOOD | EXITKILL)
        return pid
    try:
        null = os.open("/dev/null", os.O_RDWR)
        for stream in range(3):
            os.dup2(null, stream)
        LIBC.ptrace(TRACEME, 0, 0, 0)
        os.execve(argv[0], argv, env)
    finally:
        os._exit(127)


def _change(pid):
    """The name of the call that the program is about to make, if it changes something."""
    name = CHANGES.get(LIBC.ptrace(PEEKUSER, pid, NUMBER, 0))
    if name == "write" and LIBC.ptrace(PEEKUSER, pid, FIRST, 0) <= 2:
        return None
    if name == "openat" and not LIBC.ptrace(PEEKUSER, pid, THIRD, 0) & MAKES:
        return None
    return name


def _reap():
    """Waits for whoever the program left."""
    try:
        while True:
            os.waitpid(-1, 0)
    except ChildProcessError:
        pass


def run(argv, env, at=0, number=signal.SIGKILL, before=None):
    """Runs it to its end, or up to the call at; before(pid) is called in front of that one, then the signal is sent."""
    LIBC.prctl(SUBREAPER, 1, 0, 0, 0)
    # The leak checker can't look into a process that is looked into already.
    env = dict(env, ASAN_OPTIONS="detect_leaks=0:" + env.get("ASAN_OPTIONS", ""))
    pid = _start(argv, env)
    calls, inside, pending, request = [], False, 0, SYSCALL
    while True:
        LIBC.ptrace(request, pid, 0, pending)
        _, status = os.waitpid(pid, 0)
        if not os.WIFSTOPPED(status):
            break
        stop, pending = os.WSTOPSIG(status), 0
        if stop != SYSCALL_STOP:
            pending = 0 if stop == signal.SIGTRAP else stop
            continue
        inside = not inside
        name = _change(pid) if inside else None
        if not name:
            continue
        calls.append(name)
        if len(calls) == at:
            if before:
                before(pid)
            os.kill(pid, number)
            request = DETACH if number != signal.SIGKILL else SYSCALL
    _reap()
    LIBC.prctl(SUBREAPER, 0, 0, 0, 0)
    return Run(calls, os.waitstatus_to_exitcode(status))
