"""Fixtures of the tests that run next to many machines: lab/fleet COUNT -- pytest ..."""

from pathlib import Path

import pytest
from engine import Ansible
from macs import Mac, find_macs, on_each


@pytest.fixture(scope="session")
def all_macs() -> list[Mac]:
    return find_macs()


@pytest.fixture
def macs(all_macs: list[Mac]) -> list[Mac]:
    """All machines, each in the state right after the agent was installed."""
    on_each(all_macs, Mac.reset)
    return all_macs


@pytest.fixture(scope="session")
def ansible(tmp_path_factory: pytest.TempPathFactory) -> Ansible:
    return Ansible(Path(tmp_path_factory.mktemp("ansible")))
