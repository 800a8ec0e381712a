"""File systems of a test's own, in a mount namespace that ends with the test: small ones that fill up, and one in a file that
loses what a host loses when it is switched off."""
import ctypes
import fcntl
import os
import shutil
import subprocess

LIBC = ctypes.CDLL(None, use_errno=True)
CLONE_NEWNS = 0x20000
SHUTDOWN, WITHOUT_JOURNAL = 0x8004587D, b"\2\0\0\0"  # nothing more reaches the disk, not even what is in the journal's hands
# Renamed files aren't written early, and the journal waits: what nobody has synced is gone.
OPTIONS = "loop,noauto_da_alloc,commit=300"
SIZE = 48 << 20


def private_mounts():
    """Why this process can't have mounts of its own, or None."""
    if os.geteuid() != 0 or LIBC.unshare(CLONE_NEWNS) != 0:
        return "mounts need root, or are not permitted here"
    done = subprocess.run(["mount", "--make-rprivate", "/"], capture_output=True, text=True)
    return done.stderr.strip() or None


def mount(*words):
    done = subprocess.run(["mount", *words], capture_output=True, text=True)
    return done.stderr.strip() or None


class Disk:
    """Directories that lie on a file system in a file: their content is copied there when it is made."""

    def __init__(self, image, *directories):
        self.image, self.directories = image, directories

    @staticmethod
    def missing():
        """Why there can't be one, or None."""
        for needed in ("/dev/loop-control", "/sbin/mkfs.ext4"):
            if not os.path.exists(needed):
                return needed + " is missing"
        return private_mounts()

    def __enter__(self):
        os.mkdir(self.image + ".at")
        with open(self.image, "wb") as file:
            file.truncate(SIZE)
        subprocess.run(["/sbin/mkfs.ext4", "-q", "-F", self.image], check=True)
        fault = mount("-o", OPTIONS, self.image, self.image + ".at")
        if fault:
            raise OSError(fault)
        for number, directory in enumerate(self.directories):
            shutil.copytree(directory, self._place(number))
        self._bind()
        self.sync()
        return self

    def __exit__(self, *ignored):
        self._unmount()

    def _place(self, number):
        return "%s.at/%d" % (self.image, number)

    def _bind(self):
        for number, directory in enumerate(self.directories):
            subprocess.run(["mount", "--bind", self._place(number), directory], check=True)

    def _unmount(self):
        for directory in (*self.directories, self.image + ".at"):
            subprocess.run(["umount", directory], check=True)

    def sync(self):
        file = os.open(self.image + ".at", os.O_RDONLY)
        LIBC.syncfs(file)
        os.close(file)

    def cut(self, end=lambda: None):
        """Switches the host off and on again; end() ends the programs that still have files open there."""
        file = os.open(self.image + ".at", os.O_RDONLY)
        fcntl.ioctl(file, SHUTDOWN, WITHOUT_JOURNAL)
        os.close(file)
        end()
        self._unmount()
        subprocess.run(["mount", "-o", OPTIONS, self.image, self.image + ".at"], check=True)
        self._bind()
