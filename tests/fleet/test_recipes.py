"""The recipes of docs/fleet.md, run exactly as they are there."""

import plistlib
import re
import sqlite3
import subprocess
from collections.abc import Iterator
from pathlib import Path

import pytest
from driver.commands import run
from driver.machine import ACCOUNTS, SERVER_PLIST
from driver.paths import REPOSITORY
from engine import Ansible, Run
from macs import ALL_JOBS, TOOL, Mac, on_each

SERVER = "mdm.example.com"
PASSWORD = ACCOUNTS["alice"].password
PATH = "PATH=/usr/bin:/bin:/usr/sbin:/sbin"
# In a Mac's bundle the program is two folders further down.
ON_A_MAC = TOOL.parent / "Contents/MacOS"


def recipes(heading: str) -> list[str]:
    """The code blocks of a section."""
    text = (REPOSITORY / "docs/fleet.md").read_text()
    section = text.split(f"\n## {heading}\n")[1].split("\n## ")[0]
    return re.findall(r"^```\w+\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)


@pytest.fixture(autouse=True)
def paths_of_a_mac(macs: list[Mac]) -> None:
    links = f"mkdir -p '{ON_A_MAC}' && ln -sf '{TOOL}' '{ON_A_MAC}/'"
    on_each(macs, lambda mac: mac.shell(links))


@pytest.fixture
def mac(macs: list[Mac]) -> Mac:
    return macs[0]


def run_as_engine(mac: Mac, script: str, *parameters: str) -> subprocess.CompletedProcess[str]:
    """Runs a script as an MDM's agent does: from a file, as root, with hardly any environment."""
    file = mac.path("/tmp/recipe")
    file.write_text(script)
    file.chmod(0o700)
    return run(*mac.enter, "env", "-i", PATH, "/tmp/recipe", *parameters)


def test_shellcheck_finds_nothing_in_the_scripts(tmp_path: Path) -> None:
    text = (REPOSITORY / "docs/fleet.md").read_text()
    scripts = re.findall(r"^```sh\n(#!.*?)^```$", text, re.DOTALL | re.MULTILINE)
    assert len(scripts) == 7
    for number, script in enumerate(scripts):
        (tmp_path / f"{number}.sh").write_text(script)
    subprocess.run(["shellcheck", *tmp_path.iterdir()], check=True)


def is_pointed(mac: Mac, **settings: object) -> bool:
    return mac.loaded() == ALL_JOBS and settings.items() <= mac.settings().items()


@pytest.fixture
def bare(mac: Mac) -> Iterator[Mac]:
    """A Mac without the agent."""
    with mac.without_agent():
        yield mac


@pytest.mark.parametrize(("tool", "differs", "agrees"), [("Munki", 0, 1), ("Kandji", 1, 0)])
def test_the_check_of_munki_and_kandji_asks_for_the_script_until_it_has_run(
    mac: Mac, tool: str, differs: int, agrees: int
) -> None:
    check, script = recipes(tool)
    assert run_as_engine(mac, check).returncode == differs
    assert mac.settings() == {}
    assert run_as_engine(mac, script).returncode == 0
    assert is_pointed(mac, server=SERVER)
    assert run_as_engine(mac, check).returncode == agrees


def test_munki_leaves_a_mac_without_the_agent_alone(bare: Mac) -> None:
    assert run_as_engine(bare, recipes("Munki")[0]).returncode == 1


def test_kandji_reports_a_remediation_that_is_not_effective(mac: Mac) -> None:
    audit, remediation = recipes("Kandji")
    mac.add_fault("always launchctl exit=1 ^/bin/launchctl load -w /Library/LaunchDaemons")
    assert run_as_engine(mac, remediation).returncode == 1
    assert run_as_engine(mac, audit).returncode == 1


def test_jamfs_script_takes_the_server_and_perhaps_the_port_from_its_parameters(mac: Mac) -> None:
    script, _ = recipes("Jamf")
    its_own = ("/", "mac1", "alice")
    assert run_as_engine(mac, script, *its_own, "192.0.2.10", "4000").returncode == 0
    assert is_pointed(mac, server="192.0.2.10", port=4000)
    assert run_as_engine(mac, script, *its_own, SERVER, "", "", "").returncode == 0
    assert is_pointed(mac, server=SERVER, port=4000)
    assert run_as_engine(mac, script, *its_own, "two words").returncode == 64


def test_jamfs_extension_attribute_follows_the_mac(mac: Mac) -> None:
    script, attribute = recipes("Jamf")
    assert run_as_engine(mac, attribute).stdout == "<result>not as requested</result>\n"
    run_as_engine(mac, script, "/", "mac1", "alice", SERVER)
    assert run_as_engine(mac, attribute).stdout == "<result>as requested</result>\n"


def test_jamfs_extension_attribute_names_a_missing_agent(bare: Mac) -> None:
    attribute = recipes("Jamf")[1]
    assert run_as_engine(bare, attribute).stdout == "<result>agent not installed</result>\n"


def test_plain_ssh_applies_on_each_mac_of_the_list_and_names_those_that_failed(
    macs: list[Mac], tmp_path: Path
) -> None:
    (script,) = recipes("Plain ssh")
    (tmp_path / "point-agent").write_text(script)
    names = [f"alice@{mac.name}" for mac in macs] + ["alice@mac199"]
    (tmp_path / "list").write_text("".join(f"{name}\n" for name in names))
    command = ["/bin/bash", "point-agent", SERVER, "list"]
    done = run(*command, cwd=tmp_path, input=f"{PASSWORD}\n")
    lines = done.stdout.split("\n")
    expected = [f"{name}: status 0" for name in names[:-1]] + [f"{names[-1]}: status 255"]
    assert sorted(lines) == sorted(["", "", *expected]), done.stderr
    assert all(is_pointed(mac, server=SERVER) for mac in macs)
    # Neither on a command line here or there, nor in a file.
    assert all(PASSWORD not in "\n".join(mac.commands()) for mac in macs)
    assert all(PASSWORD not in file.read_text() for file in tmp_path.iterdir())


def test_ansibles_play_and_commands(macs: list[Mac], ansible: Ansible, tmp_path: Path) -> None:
    play, commands = recipes("Ansible")
    (tmp_path / "point-agent.yml").write_text(play)
    names = "".join(f"{mac.name} ansible_user=alice\n" for mac in macs)
    (tmp_path / "inventory").write_text(f"[macs]\n{names}")
    check, apply = commands.splitlines()
    steps = [(check, "changed", False), (apply, "changed", True), (apply, "ok", True)]
    for command, status, is_done in steps:
        done = run(
            *("/bin/bash", "-c", command),
            cwd=tmp_path,
            env=ansible.environment | {"ANSIBLE_INVENTORY": "inventory"},
            input=f"{PASSWORD}\n",
            check=True,
            timeout=120,
            # Without a terminal, the password is read from the standard input.
            start_new_session=True,
        )
        assert Run(0, done.stdout).statuses == {mac.name: status for mac in macs}, done.stdout
        assert all(is_pointed(mac, server=SERVER, port=6000) == is_done for mac in macs)


def test_osquerys_query_finds_the_settings_in_a_table_of_the_file(mac: Mac) -> None:
    (query,) = recipes("osquery")
    run_as_engine(mac, recipes("Kandji")[1])
    database = sqlite3.connect(":memory:")
    database.execute("CREATE TABLE plist (key TEXT, subkey TEXT, value TEXT, path TEXT)")
    content = plistlib.loads(mac.path(SERVER_PLIST).read_bytes())
    rows = [(key, "", str(value), str(SERVER_PLIST)) for key, value in content.items()]
    database.executemany("INSERT INTO plist VALUES (?, ?, ?, ?)", rows)
    found = dict(database.execute(query).fetchall())
    assert found == {"server": SERVER, "port": "6000", "language": "en"}
