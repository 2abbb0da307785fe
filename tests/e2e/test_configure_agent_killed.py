"""configure-agent killed at moments all over its run. The next run repairs everything."""

import time
from itertools import cycle

import tool
from driver.editions import EDITIONS
from driver.machine import AGENT, DAEMON, SERVER_PLIST, Machine
from expected_commands import RESET_FILES, server_plist
from tool import NEW_SERVER, apply_to, run

SETTINGS = EDITIONS["Zentavo"].settings
DAEMON_SETTINGS = SETTINGS / "daemon.settings.xml"
BOTH = {AGENT, DAEMON}
KILLS = 110


def stored(server: str) -> bytes:
    return server_plist("fr", server, "4000", False)


def test_killed_at_any_moment_it_leaves_a_whole_file_and_the_next_run_repairs_everything(
    machine: Machine
) -> None:
    tool.forget_runs()
    machine.write_server_plist(stored("192.0.2.1"))
    machine.load(AGENT, DAEMON)
    began = time.monotonic()
    assert run(*apply_to(NEW_SERVER, "--reset")).status == 0
    length = time.monotonic() - began
    previous = NEW_SERVER
    stopped = 0
    for number, server in zip(range(KILLS), cycle(["192.0.2.1", NEW_SERVER])):
        for name in RESET_FILES:
            (SETTINGS / name).write_text("installed")
        process = tool.start(*apply_to(server, "--reset"))
        time.sleep(length * number / KILLS)
        process.kill()
        process.communicate()
        assert SERVER_PLIST.read_bytes() in (stored(previous), stored(server))
        stopped += machine.loaded() != BOTH
        repaired = run(*apply_to(server, "--reset"))
        assert (repaired.status, repaired.report["problems"]) == (0, []), f"killed at {number}"
        assert SERVER_PLIST.read_bytes() == stored(server)
        assert machine.loaded() == BOTH
        assert DAEMON_SETTINGS.read_text().startswith("<?xml")
        if repaired.report["before"]["unfinished"]:
            assert not any((SETTINGS / name).exists() for name in RESET_FILES)
        third = run(*apply_to(server, "--reset"))
        assert (third.status, third.report["changed"]) == (0, False)
        previous = server
    assert stopped > KILLS / 10  # the moments were those in which it matters
