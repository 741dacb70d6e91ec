"""A headless Chromium, driven over its DevTools protocol."""

import asyncio
import base64
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import urllib.request

from tornado.websocket import websocket_connect

#: Starting takes a second or two; on a busy machine many.
PATIENCE = 60


class Browser:
    """One page of one browser. What it does takes effect before a call returns.

    Attributes:
        errors: what the page's console was told as an error, and exceptions that nobody caught.
        requests: addresses that the page asked for, but for itself and what it holds.
    """

    def __init__(self):
        self.errors, self.requests = [], []
        self._folder = tempfile.mkdtemp(prefix="morvanex-chromium-")
        self._loop = asyncio.new_event_loop()
        self._number = 0
        # The sandbox needs rights that a container does not give; the pages are our own.
        self._process = subprocess.Popen(
            ["chromium", "--headless", "--no-sandbox", f"--user-data-dir={self._folder}/data", "--remote-debugging-port=0",
             "--remote-allow-origins=*", "--enable-unsafe-swiftshader", "--hide-scrollbars", "--window-size=1000,800",
             "--disable-background-networking", "about:blank"],
            env={**os.environ, "HOME": self._folder}, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )  # fmt: skip
        try:
            self._socket = self._run(websocket_connect, self._address(), max_message_size=1 << 28)
            for domain in ("Page", "Runtime", "Log", "Network", "Accessibility"):
                self.call(f"{domain}.enable")
        except BaseException:
            self.close()
            raise

    def close(self):
        self._process.terminate()
        self._process.wait()
        self._loop.close()
        shutil.rmtree(self._folder, ignore_errors=True)

    def call(self, method, **parameters):
        """Calls a method of the protocol, and hears the events that come meanwhile; its result."""
        self._number += 1
        message = json.dumps({"id": self._number, "method": method, "params": parameters})
        self._run(self._socket.write_message, message)
        while True:
            answer = json.loads(self._run(self._socket.read_message))
            if answer.get("id") == self._number:
                assert "error" not in answer, (method, answer["error"])
                return answer["result"]
            self._hear(answer)

    def open(self, file, width=1000, height=800, dark=False, media=""):
        """Opens a file in a window of that size, and waits until it is read and its 3D view has drawn or failed."""
        self.errors, self.requests = [], []
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=width < 600)
        self.call(
            "Emulation.setEmulatedMedia", media=media,
            features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"},
                      {"name": "prefers-reduced-motion", "value": "reduce"}],
        )  # fmt: skip
        self.call("Page.navigate", url=pathlib.Path(file).resolve().as_uri())
        self.wait("document.readyState === 'complete' && (!document.getElementById('view') || document.documentElement.dataset.view)")
        self.settle()

    def run(self, script):
        """The value of an expression in the page; a promise is waited for."""
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        assert "exceptionDetails" not in answer, answer["exceptionDetails"]
        return answer["result"].get("value")

    def wait(self, condition):
        """Until an expression holds."""
        end = time.monotonic() + PATIENCE
        while not self.run(f"Boolean({condition})"):
            assert time.monotonic() < end, f"never: {condition}"
            time.sleep(0.05)

    def settle(self):
        """Until two pictures have been drawn."""
        self.run("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(() => done(1))))")

    def key(self, key, code=0, text=""):
        """Presses a key and lets it go."""
        for kind in ("keyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key=key, code=key, windowsVirtualKeyCode=code,
                      **({"text": text} if text and kind == "keyDown" else {}))  # fmt: skip

    def click(self, selector):
        """Clicks into the middle of an element with the mouse."""
        x, y = self.run(
            f"(() => {{ const e = document.querySelector({selector!r}); e.scrollIntoView({{block: 'center'}});"
            "const r = e.getBoundingClientRect(); return [r.x + r.width / 2, r.y + r.height / 2]; })()"
        )
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def picture(self, selector=None):
        """A PNG of an element, or of the whole page."""
        self.settle()
        where = f"document.querySelector({selector!r})" if selector else "document.documentElement"
        clip = self.run(
            f"(() => {{ const r = {where}.getBoundingClientRect();"
            "return {x: r.x + scrollX, y: r.y + scrollY, width: r.width, height: r.height, scale: 1}; })()"
        )
        answer = self.call("Page.captureScreenshot", format="png", clip=clip, captureBeyondViewport=True)
        return base64.b64decode(answer["data"])

    def names(self, role):
        """The names of the elements that a screen reader finds in that role."""
        nodes = self.call("Accessibility.getFullAXTree")["nodes"]
        return [node["name"]["value"] for node in nodes if node.get("role", {}).get("value") == role and not node["ignored"]]

    def _run(self, function, *arguments, **named):
        async def work():
            return await function(*arguments, **named)

        return self._loop.run_until_complete(asyncio.wait_for(work(), PATIENCE))

    def _address(self):
        """Of the page's socket: the browser writes its port into a file once it listens."""
        file = pathlib.Path(self._folder, "data", "DevToolsActivePort")
        end = time.monotonic() + PATIENCE
        while not file.exists() or "\n" not in file.read_text():
            assert self._process.poll() is None, "chromium has ended"
            assert time.monotonic() < end, "chromium does not listen"
            time.sleep(0.05)
        port = file.read_text().split()[0]
        with urllib.request.urlopen(f"http://127.0.0.1:{port}/json") as pages:
            return next(page["webSocketDebuggerUrl"] for page in json.load(pages) if page["type"] == "page")

    def _hear(self, event):
        method, parameters = event.get("method"), event.get("params", {})
        if method == "Runtime.consoleAPICalled" and parameters["type"] in ("error", "assert"):
            self.errors.append(str([value.get("value") for value in parameters["args"]]))
        elif method == "Runtime.exceptionThrown":
            self.errors.append(json.dumps(parameters["exceptionDetails"])[:500])
        elif method == "Log.entryAdded" and parameters["entry"]["level"] == "error":
            self.errors.append(parameters["entry"]["text"])
        elif method == "Network.requestWillBeSent":
            address = parameters["request"]["url"]
            if not address.startswith(("data:", "blob:", "about:", "file://")):
                self.requests.append(address)
