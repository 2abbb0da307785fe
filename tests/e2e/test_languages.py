"""The language on its way through the real program: stored, shown, chosen, and stored again. The unit and
window tests have the whole table of editions and languages."""

from collections.abc import Callable

import pytest
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, SERVER_PLIST, Machine
from driver.program import Program
from expected_commands import apply_by_alice, profile_check, server_plist

Start = Callable[..., Program]


@pytest.mark.parametrize(
    ("edition", "stored", "steps", "language", "installed"),
    [
        ("Quorvix", "es", 0, "es", True),
        ("Zentavo", "it", 0, "fr", False),
        ("Fennrow", "de", 0, "en", True),
        ("Tollwick", "", 1, "de", False),
        ("Quorvix", "fr", -1, "en", False),
    ],
)
def test_the_stored_language_is_kept_replaced_by_the_editions_own_or_by_a_chosen_one(
    machine: Machine,
    start: Start,
    edition: str,
    stored: str,
    steps: int,
    language: str,
    installed: bool,
) -> None:
    row = EDITIONS[edition]
    others = [other.profile for other in EDITIONS.values() if other != row]
    machine.install_profiles(*others, *([row.profile] if installed else []))
    machine.write_server_plist(server_plist(stored, "192.0.2.10", "4000", not installed))
    program = start(edition=edition)
    window = program.log_in()
    if steps:
        window.choose("selectLanguage", steps)
    window.click("Apply_button")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist(language, "192.0.2.10", "4000", installed)
    login = profile_check("alice", ACCOUNTS["alice"], row)
    assert machine.journal() == login + apply_by_alice(row, stops=())
    assert machine.loaded() == {DAEMON, AGENT}


@pytest.mark.parametrize(
    ("edition", "system", "kept"),
    [("Zentavo", "fr_FR.UTF-8", "fr"), ("Tollwick", "de_DE.UTF-8", "en")],
)
def test_without_a_stored_language_the_systems_counts_if_it_is_english_or_french(
    start: Start, edition: str, system: str, kept: str
) -> None:
    program = start(edition=edition, language=system)
    window = program.log_in()
    window.fill("servername", "::1")
    window.press("Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist(kept, "::1", "6000", False)
