"""Polling for a condition."""

import time
from collections.abc import Callable
from typing import TypeVar

Value = TypeVar("Value")


def wait_until(condition: Callable[[], Value | None], what: str, limit: float = 10.0) -> Value:
    """Polls until the condition holds and returns its value; fails after the limit (seconds)."""
    end = time.monotonic() + limit
    while not (value := condition()):
        if time.monotonic() > end:
            raise TimeoutError(f"{what}: not within {limit} s")
        time.sleep(0.01)
    return value
