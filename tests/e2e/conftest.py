"""Fixtures of the end-to-end tests, which run inside the lab."""

import os
import re
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import pytest
import tool
from driver.display import Display
from driver.machine import ACCOUNTS, AGENT, DAEMON, Machine
from driver.program import Program

PICTURES = Path(os.environ.get("LAB_BUILD", "")) / "e2e"
REPORT_OF_BASH = re.compile(r'/bin/bash: line 1: +\d+ (Done|Broken pipe) +/bin/echo "[^"]*"$', re.M)
FAILED = pytest.StashKey[bool]()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item: pytest.Item, call: pytest.CallInfo[None]) -> Iterator[None]:
    outcome: Any = yield
    if call.when == "call":
        item.stash[FAILED] = outcome.get_result().failed


@pytest.fixture
def machine() -> Machine:
    """A machine in the state right after the agent was installed."""
    result = Machine()
    result.reset()
    return result


@pytest.fixture
def running_agent(machine: Machine) -> None:
    """For configure-agent: both jobs are loaded, over settings that differ from the requested ones."""
    tool.prepare(machine, AGENT, DAEMON)


@pytest.fixture(scope="session")
def display() -> Iterator[Display]:
    result = Display()
    yield result
    result.close()


def check_no_password_is_printed(program: Program, kills_commands: bool) -> None:
    """Except by bash: when a command is killed, it reports the command line on its error stream."""
    for stream in (program.output, program.errors):
        text = REPORT_OF_BASH.sub("", stream) if kills_commands else stream
        for account in ACCOUNTS.values():
            lines = [line for line in text.splitlines() if account.password in line]
            assert lines == [], f"the password of {account.name} is printed"


@pytest.fixture
def start(
    request: pytest.FixtureRequest, machine: Machine, display: Display, tmp_path: Path
) -> Iterator[Callable[..., Program]]:
    """Starts the program: start(edition=..., user=..., arguments=...). What it printed must not
    hold a password. A failed test leaves a picture of the screen in build/e2e/."""
    programs: list[Program] = []

    def start_program(**options: Any) -> Program:
        folder = tmp_path / str(len(programs))
        folder.mkdir()
        programs.append(Program(display, folder, **options))
        return programs[-1]

    yield start_program
    if request.node.stash.get(FAILED, False):
        name = "".join(c if c.isalnum() else "_" for c in request.node.name)
        display.screenshot(PICTURES / f"{name}.png")
        for program in programs:
            print(f"status {program.poll()}\n{program.output}\n{program.errors}")
    for program in programs:
        program.kill()
    for program in programs:
        check_no_password_is_printed(program, machine.kills_commands)
