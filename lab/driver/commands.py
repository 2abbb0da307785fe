"""Commands that end by themselves."""

import subprocess
from typing import Any

DEFAULTS: dict[str, Any] = {"capture_output": True, "text": True, "check": False, "timeout": 60}


def run(*command: object, **options: Any) -> subprocess.CompletedProcess[str]:
    """Runs a command to its end, with nothing to read unless `input` is given. It may fail."""
    if "input" not in options:
        options["stdin"] = subprocess.DEVNULL
    return subprocess.run([str(word) for word in command], **DEFAULTS | options)
