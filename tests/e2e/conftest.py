"""Fixtures of the end-to-end tests, which run inside the lab."""

import os
from pathlib import Path

import pytest
from driver.machine import Machine
from driver.screen import Display, Program

PICTURES = Path(os.environ.get("LAB_BUILD", "")) / "e2e"
FAILED = pytest.StashKey[bool]()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    outcome = yield
    if call.when == "call":
        item.stash[FAILED] = outcome.get_result().failed


@pytest.fixture
def machine():
    """A machine in the state right after the agent was installed."""
    result = Machine()
    result.reset()
    return result


@pytest.fixture(scope="session")
def display():
    result = Display()
    yield result
    result.close()


@pytest.fixture
def start(request, machine, display, tmp_path):
    """Starts the program: start(edition=..., user=..., arguments=...). A failed test leaves a
    picture of the screen and the program's output in build/e2e/."""
    programs = []

    def start_program(**options):
        programs.append(Program(display, tmp_path, **options))
        return programs[-1]

    yield start_program
    if request.node.stash.get(FAILED, False):
        name = "".join(c if c.isalnum() else "_" for c in request.node.name)
        display.screenshot(PICTURES / f"{name}.png")
        for program in programs:
            print(f"status {program.poll()}\n{program.output}\n{program.errors}")
    for program in programs:
        program.kill()
