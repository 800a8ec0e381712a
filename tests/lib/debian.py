"""Fresh Debian 12 systems to install packages in, kept between runs, and packages made newer.

A system is made once, by debootstrap and apt-get from the mirror that this host's apt uses; what a test does in it is laid over.
"""
import os
import re
import shutil
import subprocess
from pathlib import Path

SUITE = "bookworm"
POLICY = "#!/bin/sh\nexit 101\n"  # no service is started by its installation
MADE = "etc/made-whole"


def apt_mirror():
    """Where this host's apt has the suite from; the first source that lists it."""
    lines = subprocess.run(["apt-get", "indextargets", "--format", "$(REPO_URI) $(CODENAME)", "Created-By: Packages"],
                           capture_output=True, text=True, check=True).stdout.splitlines()
    return next(line.split()[0] for line in lines if line.split()[1:] == [SUITE])


def run(log, *words, **more):
    log.write("== %s\n" % " ".join(map(str, words)))
    log.flush()
    subprocess.run(list(map(str, words)), stdin=subprocess.DEVNULL, stdout=log, stderr=log, check=True, **more)


def apt_install(log, place, packages):
    env = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "DEBIAN_FRONTEND": "noninteractive", "LC_ALL": "C",
           **{name: value for name, value in os.environ.items() if name.lower().endswith("_proxy")}}
    shutil.copy("/etc/resolv.conf", place / "etc/resolv.conf")
    run(log, "chroot", place, "apt-get", "update", env=env)
    run(log, "chroot", place, "apt-get", "install", "-y", "--no-install-recommends", *packages, env=env)
    run(log, "chroot", place, "apt-get", "clean", env=env)


def system(cache, name, packages, base=None):
    """Directory of the system, which is made if it isn't there whole. Packages on top of another system's, or of a minimal one."""
    place, cache = Path(cache, name), Path(cache)
    wanted = " ".join(packages)
    if (place / MADE).exists() and (place / MADE).read_text() == wanted:
        return place
    shutil.rmtree(place, ignore_errors=True)
    with open(cache / (name + ".log"), "w") as log:
        if base:
            run(log, "cp", "-a", base, place)
        else:
            (cache / "debs").mkdir(parents=True, exist_ok=True)
            run(log, "debootstrap", "--variant=minbase", "--cache-dir=%s" % (cache / "debs").resolve(), SUITE, place, apt_mirror())
            (place / "usr/sbin/policy-rc.d").write_text(POLICY)
            (place / "usr/sbin/policy-rc.d").chmod(0o755)
        if packages:
            apt_install(log, place, packages)
    (place / MADE).write_text(wanted)
    return place


def depends(package):
    """The packages that it can't do without, the first of each choice."""
    text = subprocess.run(["dpkg-deb", "-f", package, "Depends"], capture_output=True, text=True, check=True).stdout
    return sorted({re.match(r"[^\s(|:]+", part.strip())[0] for part in text.split(",")})


def newer(package, version, scratch, change):
    """The same package under a later version, its tree changed by a function."""
    tree, out = Path(scratch, "newer"), Path(scratch, "newer.deb")
    subprocess.run(["dpkg-deb", "-R", package, tree], check=True)
    control = tree / "DEBIAN/control"
    control.write_text(re.sub(r"(?m)^Version: .*", "Version: " + version, control.read_text()))
    change(tree)
    subprocess.run(["dpkg-deb", "--root-owner-group", "-b", tree, out], check=True, stdout=subprocess.DEVNULL)
    shutil.rmtree(tree)
    return out
