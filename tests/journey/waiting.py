"""Waiting without sleeping blindly."""

import time


def wait_until(condition, what: str, limit: float = 10.0, nudge=None):
    """Polls until the condition holds and returns its value; fails after the limit (seconds).

    `nudge` is called about four times a second meanwhile.
    """
    start = last = time.monotonic()
    while not (value := condition()):
        now = time.monotonic()
        if now - start > limit:
            raise TimeoutError(f"{what}: not within {limit} s")
        if nudge and now - last > 0.25:
            nudge()
            last = now
        time.sleep(0.01)
    return value
