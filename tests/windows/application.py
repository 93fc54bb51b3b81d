"""An application that uses the library, played by caller.exe."""

import queue
import re
import shutil
import threading

import wine

CALLER = wine.BUILD / "tests/windows/caller.exe"
LIBRARY = wine.BUILD / "src/frame/ormidex.dll"
# An answer takes milliseconds; a machine busy with other work may take its time.
ANSWER_WITHIN_S = 60


class Application:
    """A process with the library loaded, unless load=False. Use as a context."""

    def __init__(self, load=True, variables=None, cwd=None):
        wine.SCRATCH.mkdir(exist_ok=True)
        self.library = wine.SCRATCH / "ormidex.dll"
        if not self.library.exists():
            shutil.copy(LIBRARY, self.library)
        self.boxes = []
        self._process = wine.start(CALLER, wine.windows_path(self.library), variables=variables,
                                   cwd=cwd or wine.SCRATCH)
        self._lines = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()
        if load:
            answer = self.ask("load")
            if answer != "loaded":
                self.end()
                raise AssertionError(f"the library does not load: {answer} {self.boxes}")

    def _read(self):
        for line in self._process.stdout:
            self._lines.put(line.rstrip("\r\n"))
        self._lines.put(None)

    def send(self, command):
        """Sends a command without waiting for the answer."""
        self._process.stdin.write(command + "\n")
        self._process.stdin.flush()

    def answer(self, command="", within=ANSWER_WITHIN_S):
        while True:
            try:
                line = self._lines.get(timeout=within)
            except queue.Empty:
                raise AssertionError(f"no answer to '{command}' within {within} s") from None
            if line is None:
                raise AssertionError(f"the application ended during '{command}'")
            box = re.fullmatch(r'box "(.*)" "(.*)" (\d+)', line)
            if box is None:
                return line
            self.boxes.append({"title": box[1], "text": box[2], "buttons": int(box[3])})

    def ask(self, command, within=ANSWER_WITHIN_S):
        self.send(command)
        return self.answer(command, within)

    def call(self, name, *arguments, within=ANSWER_WITHIN_S):
        """Calls an exported function; the result is its status."""
        command = " ".join(["call", name, *map(str, arguments)])
        answer = self.ask(command, within)
        if not answer.isdigit():
            raise AssertionError(f"'{command}': {answer}")
        return int(answer)

    def variable(self, name):
        return int(self.ask(f"get {name}"))

    def count(self):
        """(status, number of cameras)"""
        self.ask("set n 4660")
        status = self.call("OrmidexGetNumberDevices", '"any"', "&n")
        return status, self.variable("n")

    def open(self, index=0, handle="h"):
        return self.call("OrmidexInitialize", '"any"', index, f"&{handle}")

    def close(self, handle="h"):
        return self.call("OrmidexUninitialize", f"&{handle}")

    def end(self):
        """Lets the process end by itself; its exit code."""
        try:
            self.send("exit")
            self._process.stdin.close()
        except (BrokenPipeError, ValueError):
            pass
        try:
            return self._process.wait(timeout=ANSWER_WITHIN_S)
        except Exception:
            self._process.kill()
            self._process.wait()
            raise AssertionError("the application does not end") from None

    def __enter__(self):
        return self

    def __exit__(self, kind, *_):
        if self._process.poll() is None:
            if kind is None:
                self.end()
            else:
                self._process.kill()
                self._process.wait()
