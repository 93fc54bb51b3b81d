"""A Windows machine with cameras: the virtual driver, the device list, the registry.

Every change is undone by leaving the `with` block, so tests do not meet each other.
"""

import contextlib
import shutil

import wine

DRIVER = wine.BUILD / "tests/windows/driver"
SERVICE = "ormcam"
PARAMETERS = rf"HKLM\SYSTEM\CurrentControlSet\Services\{SERVICE}\Parameters"
CATEGORY = r"HKCR\CLSID\{860BB310-5D01-11D0-BD3B-00A0C911CE86}\Instance"
CAMERA_NAME = "Torvenal(tm) 1394 Camera"
FPN_PLACE = r"1394\KELMOR&Torvenal(tm)_1394_Camera"
# Where the fixed-pattern-noise values live: consumer systems, and NT.
FPN_KEY_CONSUMER = "HKLM\\ENUM\\" + FPN_PLACE
FPN_KEY_NT = "HKLM\\SYSTEM\\CurrentControlSet\\Enum\\" + FPN_PLACE


def must(result, what):
    if result.returncode != 0:
        raise AssertionError(f"{what}: {result.stdout}")


def set_value(key, name, text, kind="REG_SZ"):
    must(wine.run("reg", "add", key, "/v", name, "/t", kind, "/d", text, "/f"),
         f"cannot write {key} {name}")


def delete_key(key):
    wine.run("reg", "delete", key, "/f")


@contextlib.contextmanager
def registry_value(key, name, text, kind="REG_BINARY"):
    """A value; its key is gone afterwards."""
    set_value(key, name, text, kind)
    try:
        yield
    finally:
        delete_key(key)


@contextlib.contextmanager
def listed_devices(*devices):
    """Makes the system list video devices, each a dictionary of text properties."""
    names = [f"{CATEGORY}\\device{number:02}" for number in range(len(devices))]
    try:
        for name, properties in zip(names, devices):
            # A device without properties is a key all the same.
            must(wine.run("reg", "add", name, "/f"), f"cannot write {name}")
            for prop, text in properties.items():
                set_value(name, prop, text)
        yield
    finally:
        for name in names:
            delete_key(name)


def camera(index):
    """The listing of the virtual driver's camera `index`."""
    return {"FriendlyName": CAMERA_NAME, "DevicePath": rf"\\.\ormcam{index}",
            "CLSID": "{17CCA71B-ECD7-11D0-B908-00A0C9223196}"}


def other_device(name="USB Video Device"):
    return {"FriendlyName": name, "DevicePath": r"\\.\no-such-device",
            "CLSID": "{17CCA71B-ECD7-11D0-B908-00A0C9223196}"}


def start_driver():
    must(wine.run("net", "start", SERVICE), "the driver does not start")


def stop_driver():
    return wine.run("net", "stop", SERVICE)


@contextlib.contextmanager
def driver(cameras):
    """The virtual kernel driver with the cameras of a simulator description."""
    shutil.copy(DRIVER / "ormcam.sys", wine.SYSTEM32 / "drivers")
    for folder in (wine.SYSTEM32, wine.SYSTEM32 / "drivers"):
        shutil.copy(DRIVER / "ormcambackend.dll", folder)
    must(wine.run("sc", "create", SERVICE, "binPath=", rf"C:\windows\system32\drivers\ormcam.sys",
                  "type=", "kernel", "start=", "demand"), "the driver cannot be installed")
    try:
        set_value(PARAMETERS, "Cameras", cameras)
        start_driver()
        yield
    finally:
        stop_driver()
        wine.run("sc", "delete", SERVICE)


@contextlib.contextmanager
def cameras(description, count=1):
    """The driver, with its cameras listed by the system."""
    with driver(description), listed_devices(*(camera(index) for index in range(count))):
        yield


@contextlib.contextmanager
def system_version(name):
    wine.set_version(name)
    try:
        yield
    finally:
        wine.set_version("winxp")
