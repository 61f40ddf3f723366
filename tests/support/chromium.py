"""Headless Chromium, driven by the DevTools protocol over a pipe: needs nothing but Debian's chromium.

    with Chromium() as browser:
        tab = browser.tab(width=1280, height=900)
        tab.open("file:///...")
        tab.run("document.title")
        tab.screenshot("page.png")
"""
import base64
import json
import os
import pathlib
import select
import shutil
import subprocess
import tempfile
import time


class PageError(Exception):
    """A script of the page, or one that was run in it, has failed."""


class Chromium:
    def __init__(self, program: str | None = None):
        program = program or shutil.which("chromium")
        if not program:
            raise FileNotFoundError("chromium")
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        commands_read, self.commands = os.pipe()
        self.answers, answers_write = os.pipe()
        os.set_inheritable(commands_read, True)
        os.set_inheritable(answers_write, True)
        # The browser reads commands from 3 and answers on 4.
        shell = f'exec 3<&{commands_read} 4>&{answers_write}; exec "$@"'
        self.process = subprocess.Popen(
            ["bash", "-c", shell, "bash", program, "--headless=new", "--remote-debugging-pipe", "--no-sandbox",
             "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run", "--disable-background-networking",
             "--disable-component-update", "--disable-extensions", "--force-color-profile=srgb", "--hide-scrollbars",
             f"--user-data-dir={self.profile.name}", "about:blank"],
            close_fds=False, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "HOME": self.profile.name})
        os.close(commands_read)
        os.close(answers_write)
        self.buffer = b""
        self.last = 0
        self.replies = {}
        self.tabs = {}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.call("Browser.close")
            self.process.wait(timeout=10)
        except (OSError, EOFError, PageError, subprocess.TimeoutExpired):
            self.process.kill()
            self.process.wait()
        os.close(self.commands)
        os.close(self.answers)
        self.profile.cleanup()

    def receive(self):
        """Takes in one message: the answer to a call, or an event of a tab."""
        while b"\0" not in self.buffer:
            if not select.select([self.answers], [], [], 60)[0]:
                raise TimeoutError("chromium does not answer")
            more = os.read(self.answers, 1 << 16)
            if not more:
                raise EOFError("chromium has ended")
            self.buffer += more
        text, self.buffer = self.buffer.split(b"\0", 1)
        message = json.loads(text)
        if "id" in message:
            self.replies[message["id"]] = message
        elif message.get("sessionId") in self.tabs:
            self.tabs[message["sessionId"]].take(message["method"], message["params"])

    def call(self, method: str, session: str | None = None, **parameters):
        self.last += 1
        number = self.last
        message = {"id": number, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while number not in self.replies:
            self.receive()
        reply = self.replies.pop(number)
        if "error" in reply:
            raise PageError(f"{method}: {reply['error']['message']}")
        return reply["result"]

    def tab(self, width: int = 1280, height: int = 900, dark: bool = False) -> "Tab":
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        return Tab(self, target, session, width, height, dark)


class Tab:
    """A page. `requests` has the address of everything that it asked for, `problems` what its scripts complained of."""

    def __init__(self, browser: Chromium, target: str, session: str, width: int, height: int, dark: bool):
        self.browser, self.target, self.session = browser, target, session
        self.requests: list[str] = []
        self.problems: list[str] = []
        self.loaded = False
        browser.tabs[session] = self
        for domain in ("Page", "Runtime", "Network", "Log"):
            self.call(f"{domain}.enable")
        self.resize(width, height)
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def call(self, method: str, **parameters):
        return self.browser.call(method, self.session, **parameters)

    def take(self, event: str, what: dict):
        if event == "Network.requestWillBeSent":
            self.requests.append(what["request"]["url"])
        elif event == "Network.webSocketCreated":
            self.requests.append(what["url"])
        elif event == "Runtime.exceptionThrown":
            details = what["exceptionDetails"]
            self.problems.append(details.get("exception", {}).get("description") or details["text"])
        elif event == "Log.entryAdded" and what["entry"]["level"] == "error":
            self.problems.append(what["entry"]["text"])
        elif event == "Runtime.consoleAPICalled" and what["type"] in ("error", "assert"):
            self.problems.append(str(what["args"]))
        elif event == "Page.loadEventFired":
            self.loaded = True

    def resize(self, width: int, height: int):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def open(self, address: str):
        self.loaded = False
        self.call("Page.navigate", url=address)
        while not self.loaded:
            self.browser.receive()

    def run(self, script: str):
        """The value of an expression; of a promise, what it comes to."""
        result = self.call("Runtime.evaluate", expression=script, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in result:
            details = result["exceptionDetails"]
            raise PageError(details.get("exception", {}).get("description") or details["text"])
        return result["result"].get("value")

    def wait(self, condition: str, seconds: float = 20):
        end = time.monotonic() + seconds
        while not (value := self.run(condition)):
            if time.monotonic() > end:
                raise PageError(f"not within {seconds} seconds: {condition}")
            time.sleep(0.02)
        return value

    def key(self, name: str, text: str = "", modifiers: int = 0):
        """Presses a key; `modifiers` is 2 for Ctrl."""
        code = {"Enter": 13, "Escape": 27, "Delete": 46, "Tab": 9, "ArrowDown": 40, "ArrowUp": 38, "ArrowLeft": 37,
                "ArrowRight": 39, "Home": 36, "End": 35}.get(name, ord(name[0].upper()))
        given = {"key": name, "windowsVirtualKeyCode": code, "modifiers": modifiers}
        self.call("Input.dispatchKeyEvent", type="keyDown", **given, **({"text": text} if text else {}))
        self.call("Input.dispatchKeyEvent", type="keyUp", **given)

    def type(self, text: str):
        self.call("Input.insertText", text=text)

    def screenshot(self, path: str | pathlib.Path):
        image = self.call("Page.captureScreenshot", format="png")["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(image))

    def close(self):
        self.browser.call("Target.closeTarget", targetId=self.target)
