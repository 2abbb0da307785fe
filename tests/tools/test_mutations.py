"""script/mutate: what it reports in a small tree, and whether its table fits this one."""

import subprocess
import sys
from pathlib import Path

import mutate
import pytest
from sample_tree import write_tree

MUTATIONS = mutate.read_table(mutate.TABLE)
# Tests that each look for a word in one file.
CMAKE = """cmake_minimum_required(VERSION 3.25)
project(Sample LANGUAGES NONE)
enable_testing()
foreach(name unit window e2e.login)
  add_test(NAME ${name} COMMAND grep -q ${name} "${CMAKE_SOURCE_DIR}/words")
endforeach()
add_subdirectory(tests/unit)
add_subdirectory(tests/window)
"""
TABLE = """[words]
unit = ["unit", ""]
login = ["e2e.login", ""]
unread = ["nobody", "", "no test reads it"]
read = ["window", "", "believed to make no difference"]

["CMakeLists.txt"]
broken = ["enable_testing()", "message(FATAL_ERROR)"]
"""
SOURCES = {
    "CMakeLists.txt": CMAKE,
    "tests/unit/CMakeLists.txt": "",
    "tests/window/CMakeLists.txt": "",
    "words": "unit window e2e.login nobody",
    "table.toml": TABLE,
}


@pytest.mark.parametrize("mutation", MUTATIONS, ids=[mutation.name for mutation in MUTATIONS])
def test_the_original_text_occurs_once_and_is_changed(mutation: mutate.Mutation) -> None:
    assert (mutate.ROOT / mutation.file).read_text(encoding="utf-8").count(mutation.original) == 1
    assert mutation.replacement != mutation.original


@pytest.mark.parametrize("options, status, report", [
    (["--list", "--only", "un"], 0, ["unit  (words)", "unread  (words)"]),
    (["--only", "un"], 0, [
        "unit: caught by unit", "unread: SURVIVED no test reads it",
        "2 mutations, 1 of which may survive, 0 unexpected"]),
    (["--quick"], 1, [
        "unit: caught by unit", "login: SURVIVED (unexpected)", "unread: SURVIVED no test reads it",
        "read: caught by window (unexpected)", "broken: caught by the build",
        "5 mutations, 2 of which may survive, 2 unexpected"]),
    (["--only", "login"], 0, [
        "login: caught by e2e.login", "1 mutations, 0 of which may survive, 0 unexpected"]),
    (["--only", "none"], 1, ["0 mutations, 0 of which may survive, 0 unexpected"]),
])
def test_mutations_are_caught_or_survive(
        tmp_path: Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture[str],
        options: list[str], status: int, report: list[str]) -> None:
    tree = tmp_path / "tree"
    write_tree(tree, SOURCES)
    subprocess.run(["git", "init", "--quiet", tree], check=True)
    monkeypatch.setattr(mutate, "ROOT", tree)
    monkeypatch.setattr(mutate, "TABLE", tree / "table.toml")
    monkeypatch.setattr(mutate, "WORK", tmp_path / "work")
    monkeypatch.setattr(sys, "argv", ["script/mutate", *options])
    assert mutate.main() == status
    lines = capsys.readouterr().out.splitlines()
    assert [line.split(" s  ")[-1] for line in lines] == report
    assert {name: (tree / name).read_text() for name in SOURCES} == SOURCES
