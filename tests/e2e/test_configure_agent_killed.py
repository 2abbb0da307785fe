"""configure-agent killed at moments spread over its run. The next run repairs everything."""

import time
from itertools import cycle

import pytest
import tool
from driver.machine import SERVER_PLIST, Machine
from expected_commands import RESET_FILES
from tool import BOTH, DAEMON_SETTINGS, NEW_SERVER, OLD_SERVER, SETTINGS, apply_to, run, stored

KILLS = 110
GOLDEN_RATIO = 0.618  # its multiples cover a run evenly, early and late moments alternating


@pytest.mark.usefixtures("running_agent")
def test_killed_at_any_moment_it_leaves_a_complete_file_and_the_next_run_repairs_everything(
    machine: Machine,
) -> None:
    began = time.monotonic()
    assert run(*apply_to(NEW_SERVER, "--reset")).status == 0
    length = time.monotonic() - began
    previous = NEW_SERVER
    stopped = 0
    for number, server in zip(range(KILLS), cycle([OLD_SERVER, NEW_SERVER])):
        for name in RESET_FILES:
            (SETTINGS / name).write_text("installed")
        process = tool.start(*apply_to(server, "--reset"))
        time.sleep(length * (number * GOLDEN_RATIO % 1))
        process.kill()
        process.communicate()
        assert SERVER_PLIST.read_bytes() in (stored(previous), stored(server))
        stopped += machine.loaded() != BOTH
        began = time.monotonic()
        repaired = run(*apply_to(server, "--reset"))
        if repaired.report["changed"]:  # as long as the next run, unless the machine's load changes
            length = time.monotonic() - began
        assert (repaired.status, repaired.report["problems"]) == (0, []), f"killed at {number}"
        assert SERVER_PLIST.read_bytes() == stored(server)
        assert machine.loaded() == BOTH
        assert DAEMON_SETTINGS.read_text().startswith("<?xml")
        if repaired.report["before"]["unfinished"]:
            assert not any((SETTINGS / name).exists() for name in RESET_FILES)
        third = run(*apply_to(server, "--reset"))
        assert (third.status, third.report["changed"]) == (0, False)
        previous = server
    assert stopped > KILLS / 10  # the kills came while jobs were stopped
