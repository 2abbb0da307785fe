"""The Ansible task on a few machines: real ansible-core, real ssh, real sudo."""

import json
from importlib.util import module_from_spec, spec_from_file_location
from pathlib import Path
from typing import Any

import pytest
from driver.machine import ACCOUNTS, SERVER_PLIST
from driver.paths import REPOSITORY
from engine import TASK, Ansible
from macs import AGENT_FOLDER, ALL_JOBS, Mac, each

OLD, NEW = "192.0.2.10", "mdm.example.com"
SETTINGS = AGENT_FOLDER / "ZentavoVardex/SystemAgent/settings"
FIRST = ("--limit", "mac1")
CHANGES = ("launchctl load", "launchctl unload", "/bin/rm")


def test_the_first_run_changes_each_mac_and_the_second_does_nothing(
    macs: list[Mac], ansible: Ansible
) -> None:
    first = ansible.apply(server=OLD, port=4000, language="fr")
    assert (first.status, first.statuses) == (0, each(macs, "changed")), first.output
    for mac in macs:
        assert mac.loaded() == ALL_JOBS
        wanted = {"server": OLD, "port": 4000, "language": "fr"}
        assert wanted.items() <= mac.settings().items()
    done = [(len(mac.commands()), mac.path(SERVER_PLIST).stat().st_mtime_ns) for mac in macs]

    second = ansible.apply(server=OLD, port=4000, language="fr")
    assert (second.status, second.statuses) == (0, each(macs, "ok")), second.output
    for mac, (commands, time) in zip(macs, done, strict=True):
        assert mac.path(SERVER_PLIST).stat().st_mtime_ns == time
        assert [c for c in mac.commands()[commands:] if any(word in c for word in CHANGES)] == []


def test_check_mode_shows_the_difference_and_changes_nothing(
    macs: list[Mac], ansible: Ansible
) -> None:
    ansible.apply(server=OLD)
    before = [(mac.path(SERVER_PLIST).read_bytes(), len(mac.commands())) for mac in macs]

    run = ansible.apply("--check", "--diff", server=NEW, port=7000)
    assert (run.status, run.statuses) == (0, each(macs, "changed")), run.output
    for line in (f'-    "server": "{OLD}"', f'+    "server": "{NEW}"', '+    "port": 7000'):
        assert run.output.count(line) == len(macs), run.output
    for mac, (content, commands) in zip(macs, before, strict=True):
        assert mac.path(SERVER_PLIST).read_bytes() == content
        assert [c for c in mac.commands()[commands:] if any(word in c for word in CHANGES)] == []

    run = ansible.apply("--check", "--diff", server=OLD)
    assert (run.status, run.statuses) == (0, each(macs, "ok")), run.output
    assert "--- before" not in run.output


def test_values_that_are_not_named_stay_and_a_change_shows_its_difference(
    macs: list[Mac], ansible: Ansible
) -> None:
    ansible.apply(server=OLD, port=4000, language="fr")
    run = ansible.apply("--diff", server=NEW)
    assert run.statuses == each(macs, "changed"), run.output
    assert run.output.count(f'+    "server": "{NEW}"') == len(macs), run.output
    for mac in macs:
        assert {"server": NEW, "port": 4000, "language": "fr"}.items() <= mac.settings().items()


def test_force_applies_where_everything_is_as_requested(macs: list[Mac], ansible: Ansible) -> None:
    ansible.apply(server=OLD)
    assert ansible.apply("--check", server=OLD, force=True).statuses == each(macs, "changed")
    commands = [len(mac.commands()) for mac in macs]
    assert ansible.apply(server=OLD, force=True).statuses == each(macs, "changed")
    for mac, count in zip(macs, commands, strict=True):
        assert any("launchctl unload" in command for command in mac.commands()[count:])


def test_reset_deletes_the_old_settings_files(macs: list[Mac], ansible: Ansible) -> None:
    run = ansible.apply(server=OLD, reset=True)
    assert run.statuses == each(macs, "changed"), run.output
    for mac in macs:
        assert [file.name for file in mac.path(SETTINGS).iterdir()] == ["daemon.settings.xml"]


@pytest.mark.parametrize(
    ("arguments", "message"),
    [
        ({"server": "$(touch /tmp/made)"}, "server"),
        ({"server": "a'; touch /tmp/made; '"}, "server"),
        ({"server": "--force"}, "server"),
        ({"server": OLD, "language": "$(touch /tmp/made)"}, "language"),
        ({"server": OLD, "port": "x"}, "port"),
        ({}, "missing required arguments: server"),
        ({"server": OLD, "password": "x"}, "Unsupported parameters"),
    ],
    ids=["command", "quote", "option", "language", "port", "nothing", "unknown"],
)
def test_bad_values_are_refused_by_name_and_reach_no_shell(
    macs: list[Mac], ansible: Ansible, arguments: dict[str, Any], message: str
) -> None:
    run = ansible.apply(*FIRST, **arguments)
    assert run.statuses == {"mac1": "FAILED"}, run.output
    assert message in run.outcomes["mac1"].message
    assert not macs[0].path("/tmp/made").exists()
    assert macs[0].settings() == {}


def test_without_become_the_message_asks_for_root(ansible: Ansible) -> None:
    outcome = ansible.apply(*FIRST, become=False, server=OLD).outcomes["mac1"]
    assert (outcome.status, outcome.message) == ("FAILED", "must be run as root")


def test_a_mac_without_the_utility_says_what_is_missing(ansible: Ansible) -> None:
    missing = "/Applications/Utilities/None.app/configure-agent"
    outcome = ansible.apply(*FIRST, server=OLD, executable=missing).outcomes["mac1"]
    expected = f"cannot run {missing}: install the utility on this Mac, or set 'executable'"
    assert (outcome.status, outcome.message) == ("FAILED", expected)


def test_a_program_that_gives_no_report_fails_with_its_output(ansible: Ansible) -> None:
    outcome = ansible.apply(*FIRST, server=OLD, executable="/bin/echo").outcomes["mac1"]
    expected = f"/bin/echo gave no report; status 0, output: apply --json --server {OLD}"
    assert (outcome.status, outcome.message) == ("FAILED", expected)


def test_one_mac_without_the_agent_keeps_no_other_from_being_done(
    macs: list[Mac], ansible: Ansible
) -> None:
    with macs[1].without_agent():
        run = ansible.apply(server=OLD)
    assert run.statuses == each(macs, "changed") | {macs[1].name: "FAILED"}, run.output
    assert "not installed" in run.outcomes[macs[1].name].message


def test_no_output_or_log_holds_the_password(
    macs: list[Mac], ansible: Ansible, tmp_path: Path
) -> None:
    log = tmp_path / "log"
    ansible.environment["ANSIBLE_LOG_PATH"] = str(log)
    try:
        run = ansible.apply("-vvvv", "--diff", server=OLD)
    finally:
        del ansible.environment["ANSIBLE_LOG_PATH"]
    assert "ESTABLISH SSH CONNECTION" in run.output
    password = ACCOUNTS["alice"].password
    assert password not in run.output
    assert password not in log.read_text()
    for mac in macs:
        assert password not in "\n".join(mac.commands())


def test_the_macs_have_no_python(macs: list[Mac], ansible: Ansible) -> None:
    for mac in macs:
        assert mac.run("find", "/usr/bin", "/usr/local/bin", "-name", "python3*") == ""
    assert ansible.apply(server=OLD).status == 0


def arguments_of_the_plugin() -> dict[str, dict[str, object]]:
    source = REPOSITORY / "ansible/plugins/action/settings.py"
    spec = spec_from_file_location("settings", source)
    assert spec and spec.loader
    module = module_from_spec(spec)
    spec.loader.exec_module(module)
    arguments: dict[str, dict[str, object]] = module.ARGUMENTS
    return arguments


def test_the_documentation_has_the_options_of_the_task(ansible: Ansible) -> None:
    shown = ansible.run("ansible-doc", "--json", TASK)
    options = json.loads(shown.stdout)[TASK]["doc"]["options"]
    documented = {
        name: {key: option[key] for key in ("type", "required", "default") if key in option}
        for name, option in options.items()
    }
    assert documented == arguments_of_the_plugin()
