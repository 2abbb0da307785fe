"""Measures the Ansible task against plain parallel ssh. Runs next to the machines of lab/fleet.

Every run opens new connections. CPU and memory are the controller's: of Ansible or ssh and
everything that they start, not of the machines, which share this computer's processors.
"""

import ctypes
import os
import resource
import shlex
import signal
import subprocess
import sys
import tempfile
import threading
import time
from dataclasses import dataclass
from itertools import count
from pathlib import Path
from statistics import median

from driver.machine import ACCOUNTS
from engine import Ansible
from macs import TOOL, Mac, find_macs

PR_SET_CHILD_SUBREAPER = 36
ALICE = ACCOUNTS["alice"]
# What is done to all machines, and the verb of configure-agent for it.
OPERATIONS = {"change": "apply", "no change": "apply", "check": "check"}
GROWTH = (50, 200, 1000)
HOSTS, INVENTORY = Path("/etc/hosts"), Path("/etc/ansible/hosts")
servers = (f"server{number}.example.com" for number in count())


@dataclass(frozen=True)
class Cost:
    """What a run took: seconds, processor seconds, bytes."""

    wall: float
    cpu: float
    memory: int = 0


def descendants(pid: int) -> list[int]:
    """All processes that a process started and that still run."""
    found: list[int] = []
    for task in Path(f"/proc/{pid}/task").glob("*"):
        try:
            children = [int(word) for word in (task / "children").read_text().split()]
        except OSError:
            continue
        for child in children:
            found += [child, *descendants(child)]
    return found


def memory_now() -> int:
    """The memory of everything that this process started, shared pages divided."""
    total = 0
    for pid in descendants(os.getpid()):
        try:
            rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
        except OSError:
            continue
        total += int(rollup.split("\nPss:")[1].split()[0]) * 1024
    return total


def end_connections() -> None:
    """Ends the ssh processes that keep connections open, and counts them in."""
    for pid in descendants(os.getpid()):
        try:
            os.kill(pid, signal.SIGTERM)
        except ProcessLookupError:
            pass
    try:
        while True:
            os.wait()
    except ChildProcessError:
        pass


def cpu_of_children() -> float:
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def measure(command: list[str], environment: dict[str, str], watch_memory: bool = False) -> Cost:
    """Runs a command that must succeed."""
    end, peak = threading.Event(), [0]

    def watch() -> None:
        while not end.wait(0.1):
            peak[0] = max(peak[0], memory_now())

    watcher = threading.Thread(target=watch)
    cpu, begin = cpu_of_children(), time.monotonic()
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen(
            command, env=environment, stdin=subprocess.DEVNULL, stdout=output, stderr=output
        )
        if watch_memory:
            watcher.start()
        status = process.wait()
        wall = time.monotonic() - begin
        end.set()
        if watch_memory:
            watcher.join()
        end_connections()
        if status != 0:
            output.seek(0)
            sys.exit(f"{command[0]}: status {status}\n{output.read().decode()[-2000:]}")
    return Cost(wall, cpu_of_children() - cpu, peak[0])


def ansible_command(ansible: Ansible, verb: str, server: str, forks: int) -> list[str]:
    play = ansible.playbook(server=server)
    check = ["--check"] if verb == "check" else []
    return ["ansible-playbook", f"--forks={forks}", *check, str(play)]


def ssh_command(macs: list[Mac], verb: str, server: str, forks: int) -> list[str]:
    tool = shlex.join([str(TOOL), verb, "--json", "--server", server])
    remote = shlex.quote(f"sudo -S -p '' {tool}")
    one = f'echo {ALICE.password} | ssh {ALICE.name}@"$1" {remote}'
    names = "\\n".join(mac.name for mac in macs)
    parallel = f"xargs -P {forks} -n 1 /bin/sh -c {shlex.quote(one)} -"
    return ["/bin/sh", "-c", f"printf '{names}\\n' | {parallel}"]


def settled(macs: list[Mac], server: str) -> bool:
    return all(mac.settings().get("server") == server for mac in macs)


def row(macs: list[Mac], ansible: Ansible, forks: int, operation: str, runs: int) -> str:
    """One line of the table. The two engines alternate."""
    verb = OPERATIONS[operation]
    costs: dict[str, list[Cost]] = {"ansible": [], "ssh": []}
    server = str(macs[0].settings()["server"])

    def run(engine: str, watch_memory: bool = False) -> Cost:
        nonlocal server
        if operation == "change":
            server = next(servers)
        if engine == "ansible":
            command = ansible_command(ansible, verb, server, forks)
        else:
            command = ssh_command(macs, verb, server, forks)
        cost = measure(command, ansible.environment, watch_memory)
        assert settled(macs, server)
        return cost

    for _ in range(runs):
        for engine, spent in costs.items():
            spent.append(run(engine))
    memory = run("ansible", watch_memory=True).memory
    wall = {engine: median(cost.wall for cost in spent) for engine, spent in costs.items()}
    cpu = {
        engine: median(cost.cpu for cost in spent) / len(macs) for engine, spent in costs.items()
    }
    return (
        f"| {len(macs)} | {forks} | {operation} | {wall['ansible']:.1f} s | {wall['ssh']:.1f} s "
        f"| {cpu['ansible']:.2f} s | {cpu['ssh']:.2f} s | {memory / 1e6:.0f} MB |"
    )


def growth(macs: list[Mac], ansible: Ansible, forks: int) -> None:
    """Check mode on more names than machines: every name has a connection of its own."""
    original = HOSTS.read_text(), INVENTORY.read_text()
    server = str(macs[0].settings()["server"])
    for names in GROWTH:
        aliases = "".join(
            f"198.51.100.{number % len(macs) + 1} mac{number + 1}\n"
            for number in range(len(macs), names)
        )
        HOSTS.write_text(original[0] + aliases)
        INVENTORY.write_text(original[1].replace(f"[1:{len(macs)}]", f"[1:{names}]"))
        command = ansible_command(ansible, "check", server, forks)
        cost = measure(command, ansible.environment, watch_memory=True)
        print(
            f"| {names:,} | {forks} | {cost.wall:.0f} s | {cost.wall / names * 1000:.0f} ms "
            f"| {cost.cpu / names:.2f} s | {cost.memory / 1e6:.0f} MB |",
            flush=True,
        )


def main() -> None:
    what, runs, *forks = sys.argv[1:]
    ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1)
    macs = find_macs()
    with tempfile.TemporaryDirectory() as folder:
        ansible = Ansible(Path(folder))
        # The first run of all also fills caches.
        measure(ansible_command(ansible, "apply", next(servers), 50), ansible.environment)
        if what == "growth":
            growth(macs, ansible, int(forks[0]))
            return
        for number in map(int, forks):
            for operation in OPERATIONS:
                print(row(macs, ansible, number, operation, int(runs)), flush=True)


main()
