"""Runs configure-agent on a Mac and turns its report into the result of a task."""

from __future__ import annotations

import json
import shlex
from typing import Any

from ansible.plugins.action import ActionBase

ARGUMENTS: dict[str, dict[str, Any]] = {
    "server": {"type": "str", "required": True},
    "port": {"type": "int"},
    "language": {"type": "str"},
    "reset": {"type": "bool", "default": False},
    "force": {"type": "bool", "default": False},
    "executable": {
        "type": "str",
        "default": "/Applications/Utilities/Zentavo Configuration Utility.app"
        "/Contents/MacOS/configure-agent",
    },
}
REPORT_KEYS = {"changed", "before", "after", "wanted", "problems"}
AS_REQUESTED, NOT_AS_REQUESTED = 0, 1
# What a shell returns for a file that is not executable, or missing.
NOT_STARTED = (126, 127)


def command(verb: str, arguments: dict[str, Any]) -> str:
    """The command line for the shell of the Mac. No value is interpreted there."""
    words = [arguments["executable"], verb, "--json", "--server", arguments["server"]]
    for name in ("port", "language"):
        if arguments[name] is not None:
            words += [f"--{name}", str(arguments[name])]
    if verb == "apply":
        words += [f"--{name}" for name in ("reset", "force") if arguments[name]]
    return shlex.join(words)


def find_report(output: str) -> dict[str, Any] | None:
    """The report is the last line. On a terminal, all other output comes before it."""
    for line in reversed(output.splitlines()):
        try:
            report = json.loads(line)
        except ValueError:
            continue
        if isinstance(report, dict) and REPORT_KEYS <= report.keys():
            return report
    return None


def failure_without_report(executable: str, status: int, output: str) -> str:
    if status in NOT_STARTED:
        return f"cannot run {executable}: install the utility on this Mac, or set 'executable'"
    said = " ".join(output.split()) or "nothing"
    return f"{executable} gave no report; status {status}, output: {said}"


class ActionModule(ActionBase):
    """Runs check in check mode, apply otherwise."""

    _supports_check_mode = True
    _supports_async = False
    TRANSFERS_FILES = False

    def run(
        self, tmp: str | None = None, task_vars: dict[str, Any] | None = None
    ) -> dict[str, Any]:
        result = super().run(tmp, task_vars)
        _, arguments = self.validate_argument_spec(ARGUMENTS)
        checks = self._task.check_mode
        answer = self._low_level_execute_command(
            command("check" if checks else "apply", arguments)
        )
        status = answer["rc"]
        report = find_report(answer["stdout"])
        if report is None:
            output = answer["stdout"].strip() or answer["stderr"]
            message = failure_without_report(arguments["executable"], status, output)
            return result | {"failed": True, "rc": status, "msg": message}
        result |= report | {"failed": False, "rc": status}
        if status not in ((AS_REQUESTED, NOT_AS_REQUESTED) if checks else (AS_REQUESTED,)):
            problems = "; ".join(report["problems"]) or f"configure-agent: status {status}"
            result |= {"failed": True, "msg": problems}
        elif checks and arguments["force"]:
            result["changed"] = True
        if self._task.diff and report["before"]:
            result["diff"] = {"before": report["before"], "after": report["after"]}
        return result
