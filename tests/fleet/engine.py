"""Runs Ansible as an administrator does and reads what it prints."""

import json
import os
import re
import subprocess
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

from driver.paths import REPOSITORY
from macs import TOOL

TASK = "configuration_utility.agent.settings"
RESULT = re.compile(
    r"^(ok|changed|fatal): \[(\w+)\](?:: (FAILED|UNREACHABLE)! => (\{.*\}))?$", re.MULTILINE
)


@dataclass(frozen=True)
class Outcome:
    """What Ansible prints for one machine: ok, changed, FAILED or UNREACHABLE, and the result."""

    status: str
    result: dict[str, object] = field(default_factory=dict)

    @property
    def message(self) -> str:
        return str(self.result.get("msg", ""))


@dataclass(frozen=True)
class Run:
    """One run of ansible-playbook."""

    status: int
    output: str

    @property
    def outcomes(self) -> dict[str, Outcome]:
        return {
            name: Outcome(failure or word, json.loads(result or "{}"))
            for word, name, failure, result in RESULT.findall(self.output)
        }

    @property
    def statuses(self) -> dict[str, str]:
        return {name: outcome.status for name, outcome in self.outcomes.items()}


class Ansible:
    """The collection, built and installed as users get it, in a folder of its own."""

    def __init__(self, folder: Path):
        self._folder = folder
        self.environment = os.environ | {
            "ANSIBLE_COLLECTIONS_PATH": str(folder),
            "ANSIBLE_NOCOLOR": "1",
            "LC_ALL": "C.UTF-8",
        }
        self._galaxy("build", REPOSITORY / "ansible", "--output-path", folder)
        (archive,) = folder.glob("*.tar.gz")
        self._galaxy("install", "--offline", archive, "--collections-path", folder)

    def _galaxy(self, *words: object) -> None:
        self.run("ansible-galaxy", "collection", *map(str, words)).check_returncode()

    def run(self, *command: str) -> subprocess.CompletedProcess[str]:
        """Runs one of Ansible's commands to its end."""
        return subprocess.run(
            command,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            env=self.environment,
            text=True,
            check=False,
            timeout=240,
        )

    def playbook(self, become: bool = True, **arguments: Any) -> Path:
        """A play of the one task, for all machines."""
        task = {TASK: {"executable": str(TOOL)} | arguments}
        play = {"hosts": "macs", "gather_facts": False, "become": become, "tasks": [task]}
        file = self._folder / "play.yml"
        file.write_text(json.dumps([play]))
        return file

    def set_variables(self, name: str, **variables: object) -> Path:
        """Sets variables of one machine; delete the returned file to forget them."""
        file = self._folder / "host_vars" / f"{name}.yml"
        file.parent.mkdir(exist_ok=True)
        file.write_text(json.dumps(variables))
        return file

    def apply(self, *options: str, become: bool = True, **arguments: object) -> Run:
        """Runs the task with these arguments on all machines."""
        play = self.playbook(become, **arguments)
        done = self.run("ansible-playbook", "--forks=20", *options, str(play))
        return Run(done.returncode, done.stdout)

    def start(self, **arguments: Any) -> subprocess.Popen[bytes]:
        """Starts the same run in its own process group."""
        return subprocess.Popen(
            ["ansible-playbook", "--forks=20", self.playbook(**arguments)],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            env=self.environment,
            start_new_session=True,
        )
