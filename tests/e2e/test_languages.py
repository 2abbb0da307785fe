"""Every edition with every stored language: shown, applied unchanged, and stored again."""

import pytest
from expected_commands import (
    check_agent,
    check_daemon,
    console_lookup,
    profile_check,
    server_plist,
    start_agent,
    start_daemon,
)
from driver.editions import EDITIONS
from driver.machine import ACCOUNTS, AGENT, DAEMON, SERVER_PLIST

# What each edition makes of a stored language.
STORED = ("en", "fr", "it", "de", "es", "EN", "")
KEPT = {
    "Quorvix": ("en", "fr", "it", "de", "es", "en", "en"),
    "Zentavo": ("en", "fr", "fr", "fr", "fr", "fr", "en"),
    "Fennrow": ("en", "en", "en", "en", "en", "en", "en"),
    "Tollwick": ("en", "de", "de", "de", "de", "de", "en"),
}
ROWS = [
    pytest.param(edition, stored, kept, index % 2 == 0, id=f"{edition}-{stored or 'none'}")
    for index, edition in enumerate(KEPT)
    for stored, kept in zip(STORED, KEPT[edition], strict=True)
]


@pytest.mark.parametrize(("edition", "stored", "kept", "even"), ROWS)
def test_the_stored_language_is_kept_or_replaced_by_the_editions_own(
    machine, start, edition, stored, kept, even
):
    # The profile is there for every other row, so that each edition sees both.
    installed = even == (STORED.index(stored) % 2 == 0)
    row = EDITIONS[edition]
    others = [other.profile for other in EDITIONS.values() if other != row]
    machine.install_profiles(*others, *([row.profile] if installed else []))
    machine.write_server_plist(server_plist(stored, "192.0.2.10", "4000", not installed))
    program = start(edition=edition)
    program.log_in().click("Apply_button")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist(kept, "192.0.2.10", "4000", installed)
    alice = ACCOUNTS["alice"]
    assert machine.journal() == [
        *profile_check("alice", alice, row),
        *console_lookup("alice", alice),
        *check_agent("alice", "alice", 501),
        *check_daemon("alice", alice),
        *check_daemon("alice", alice),
        *start_daemon("alice", alice),
        *check_agent("alice", "alice", 501),
        *start_agent("alice", "alice", 501),
    ]
    assert machine.loaded() == {DAEMON, AGENT}


@pytest.mark.parametrize(
    ("edition", "system", "kept"),
    [
        ("Zentavo", "de_DE.UTF-8", "en"),
        ("Zentavo", "fr_FR.UTF-8", "fr"),
        ("Tollwick", "de_DE.UTF-8", "en"),
        ("Tollwick", "fr_FR.UTF-8", "de"),
        ("Quorvix", "es_ES.UTF-8", "en"),
        ("Fennrow", "fr_FR.UTF-8", "en"),
    ],
)
def test_without_a_stored_language_the_systems_counts_if_it_is_english_or_french(
    machine, start, edition, system, kept
):
    program = start(edition=edition, language=system)
    window = program.log_in()
    window.fill("servername", "::1")
    window.press("Return")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist(kept, "::1", "6000", False)


@pytest.mark.parametrize(
    ("edition", "stored", "steps", "chosen"),
    [
        ("Quorvix", "en", 1, "fr"),
        ("Quorvix", "en", 2, "it"),
        ("Quorvix", "en", 3, "de"),
        ("Quorvix", "en", 4, "es"),
        ("Quorvix", "es", -4, "en"),
        ("Zentavo", "fr", -1, "en"),
        ("Tollwick", "en", 1, "de"),
    ],
)
def test_a_chosen_language_is_stored(machine, start, edition, stored, steps, chosen):
    machine.write_server_plist(server_plist(stored, "192.0.2.10", "4000", False))
    program = start(edition=edition)
    window = program.log_in()
    window.choose("selectLanguage", steps)
    window.click("Apply_button")
    assert program.wait() == 0
    assert SERVER_PLIST.read_bytes() == server_plist(chosen, "192.0.2.10", "4000", False)
