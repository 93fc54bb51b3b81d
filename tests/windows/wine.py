"""Running programs of the Windows build under Wine.

The tests run inside Wine's root with the project mounted at PROJECT. One copy of
a fresh Windows installation serves a whole run.
"""

import os
import subprocess
import tempfile
from pathlib import Path

PROJECT = Path("/ormidex")
BUILD = PROJECT / "build/windows"
RESULTS = PROJECT / "build/results/windows"
TEMPLATE = Path("/opt/windows")
PREFIX = Path("/tmp/windows")
SYSTEM32 = PREFIX / "drive_c/windows/system32"
SCRATCH = PREFIX / "drive_c/scratch"

ENVIRONMENT = {
    "PATH": os.environ.get("PATH", "/usr/bin:/bin"),
    "HOME": "/root",
    "LANG": "C.UTF-8",
    "DISPLAY": ":99",
    "WINEPREFIX": str(PREFIX),
    "WINEARCH": "win32",
    "WINEDEBUG": os.environ.get("WINEDEBUG", "-all"),
    "WINEDLLOVERRIDES": "mscoree,mshtml=",
}

# Nothing here takes longer than a few seconds; a program that does, hangs.
TIMEOUT_S = 120


def succeeds(*arguments):
    return subprocess.run(arguments, check=False, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def make_installation():
    """A writable view of the template where the system grants one, else a copy.

    /tmp and the mounts are the run's own and end with it.
    """
    layer = Path("/tmp/layer")
    for folder in (PREFIX, layer, layer / "upper", layer / "work"):
        folder.mkdir()
    if succeeds("mount", "-t", "overlay", "overlay", "-o",
                f"lowerdir={TEMPLATE},upperdir={layer}/upper,workdir={layer}/work", str(PREFIX)):
        return
    # Not into /tmp, which is in memory.
    PREFIX.rmdir()
    PREFIX.symlink_to(tempfile.mkdtemp(prefix="windows-", dir="/var/tmp"))
    subprocess.run(["cp", "-aT", TEMPLATE, PREFIX.resolve()], check=True)


def start_windows():
    """Makes the installation and the display of this run."""
    make_installation()
    SCRATCH.mkdir()
    display = subprocess.Popen(
        ["Xvfb", ENVIRONMENT["DISPLAY"], "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
         "-nolisten", "local"],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    # The server and the services stay for the run, so programs start at once.
    subprocess.run(["wineserver", "-p"], env=ENVIRONMENT, check=True)
    run("wineboot")
    return display


def stop_windows(display):
    subprocess.run(["wineserver", "-k"], env=ENVIRONMENT, check=False)
    display.terminate()
    display.wait()
    if PREFIX.is_symlink():
        subprocess.run(["rm", "-rf", PREFIX.resolve()], check=False)


def windows_path(path):
    """The name by which a Windows program knows a file of this system."""
    return "Z:" + str(path).replace("/", "\\")


def command(program, *arguments):
    return ["wine", str(program), *map(str, arguments)]


def run(program, *arguments, variables=None, cwd=None, timeout=TIMEOUT_S):
    """Runs a program to its end; the result has returncode and stdout (with stderr)."""
    environment = {**ENVIRONMENT, **(variables or {})}
    # A file and not a pipe, which a child left behind would keep open.
    with tempfile.TemporaryFile() as output:
        def text():
            output.seek(0)
            return output.read().decode(errors="replace").replace("\r\n", "\n")
        try:
            result = subprocess.run(command(program, *arguments), env=environment, cwd=cwd,
                                    stdin=subprocess.DEVNULL, stdout=output,
                                    stderr=subprocess.STDOUT, timeout=timeout, check=False)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"{Path(str(program)).name} {arguments} did not end within "
                                 f"{timeout} s; it printed:\n{text()}") from None
        result.stdout = text()
    return result


def start(program, *arguments, variables=None, cwd=None):
    """Starts a program that is talked to through stdin and stdout."""
    environment = {**ENVIRONMENT, **(variables or {})}
    return subprocess.Popen(command(program, *arguments), env=environment, cwd=cwd,
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, errors="replace", bufsize=1)


def set_version(name):
    """Makes Wine claim a Windows version: winxp, win2k, nt40, win98, ..."""
    result = run("winecfg", "-v", name)
    if result.returncode != 0:
        raise AssertionError(f"Wine does not offer the version {name}: {result.stdout}")
