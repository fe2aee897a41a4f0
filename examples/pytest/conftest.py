"""A bench for code that talks to corvane-mcp: the server, and the stand-in for Corvane.app with a
scenario, in a home of their own that is gone after the test.

The programs are found in PATH, or where CORVANE_MCP and CORVANE_STANDIN say."""

import json
import os
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

import pytest

SCENARIOS = Path(__file__).parent.parent / "scenarios"


def server_program():
    program = os.environ.get("CORVANE_MCP") or shutil.which("corvane-mcp")
    assert program, "corvane-mcp is not in PATH, and CORVANE_MCP does not say where it is"
    return Path(program).resolve()


def stand_in_program():
    """Beside the server in a build, below libexec in an installation."""
    inside = Path("Corvane.app", "Contents", "MacOS", "Corvane")
    folder = server_program().parent
    installed = folder.parent / "libexec" / "corvane-mcp"
    places = [folder / inside, installed / inside]
    if "CORVANE_STANDIN" in os.environ:
        places.insert(0, Path(os.environ["CORVANE_STANDIN"]))
    for place in places:
        if place.exists():
            return place
    raise FileNotFoundError(f"the stand-in is not in {places}")


class Answer:
    """What a tool answered."""

    def __init__(self, result):
        self.is_error = result.get("isError", False)
        self.text = result["content"][0]["text"]

    @property
    def request_id(self):
        return re.search(r"requestId: +([0-9a-f-]{36})", self.text)[1]

    @property
    def result(self):
        """The result file that an answer of get_result quotes."""
        return json.JSONDecoder().raw_decode(self.text[self.text.index("\n\n{") + 2 :])[0]


class Bench:
    def __init__(self, home, scenario):
        self.home = home
        self.scenario = scenario
        # CFFIXED_USER_HOME is what HOME is elsewhere for programs of macOS. The scenario decides
        # whether there is an app, so the server starts none.
        self.environment = os.environ | {
            "HOME": str(home),
            "CFFIXED_USER_HOME": str(home),
            "CORVANE_MCP_SUPPRESS_LAUNCH": "1",
        }
        self.environment.pop("XDG_DATA_HOME", None)
        self.shared = home / (
            "Library/Application Support/Corvane"
            if sys.platform == "darwin"
            else ".local/share/Corvane"
        )
        self.start_app()
        self.server = subprocess.Popen(
            [server_program()],
            env=self.environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
            encoding="utf-8",
        )
        self.calls = 0
        client = {"name": "bench", "version": "1"}
        self.ask("initialize", protocolVersion="2024-11-05", capabilities={}, clientInfo=client)

    def start_app(self):
        """Starts the app; also after it has crashed."""
        program = stand_in_program()
        self.app = subprocess.Popen(
            [program, "--home", self.home, "--scenario", self.scenario], env=self.environment
        )
        # The server looks for what it has published.
        self.wait_until(lambda: (self.shared / "AgentMCP" / "context.json").exists())

    def ask(self, method, **params):
        self.calls += 1
        message = {"jsonrpc": "2.0", "id": self.calls, "method": method, "params": params}
        print(json.dumps(message), file=self.server.stdin, flush=True)
        while True:
            reply = json.loads(self.server.stdout.readline())
            if reply.get("id") == self.calls:
                return reply["result"]

    def call(self, tool, **arguments):
        return Answer(self.ask("tools/call", name=tool, arguments=arguments))

    def run(self, project, test):
        """Has a test run, and gives the request's id at once."""
        arguments = {"projectName": project, "testNames": [test], "buildFirst": False}
        return self.call("run_test", **arguments).request_id

    def follow(self, request_id):
        """The result of a request that has ended."""
        while True:
            answer = self.call("get_result", requestId=request_id, waitSeconds=20)
            assert not answer.is_error, answer.text
            if answer.result["terminal"]:
                return answer.result

    def look(self, request_id):
        """What get_result says now."""
        return self.call("get_result", requestId=request_id)

    def let_time_pass(self, request_id, seconds):
        """Makes the result of a request look that much older: nobody wants to wait for minutes."""
        file = self.shared / "AgentResults" / f"{request_id}.json"
        then = time.time() - seconds
        os.utime(file, (then, then))

    @staticmethod
    def wait_until(condition, seconds=20):
        end = time.monotonic() + seconds
        while not condition():
            assert time.monotonic() < end, "waited in vain"
            time.sleep(0.01)

    @staticmethod
    def holds(condition, seconds):
        """Whether a condition goes on to hold for so long."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if not condition():
                return False
            time.sleep(0.01)
        return True

    def close(self):
        self.server.stdin.close()
        self.server.wait()
        self.app.terminate()
        self.app.wait()


@pytest.fixture
def bench(request, tmp_path):
    """A Bench with the scenario that the test is marked with."""
    scenario = SCENARIOS / request.node.get_closest_marker("scenario").args[0]
    bench = Bench(tmp_path, scenario)
    yield bench
    bench.close()


def pytest_configure(config):
    config.addinivalue_line("markers", "scenario(file): what the stand-in acts")
