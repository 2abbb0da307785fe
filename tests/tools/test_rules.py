"""The rules and words of script/lint: each violation is found, and nothing in a tree without one."""

import shutil
import subprocess
from pathlib import Path

import pytest
from sample_tree import write_tree

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = """#!/usr/bin/env bash
# Tells a test -e from a [ -e in words: <key>Label</key>, then <string>.
set -euo pipefail

[[ $1 == -* ]] && exit
(($# == 2)) \\
  || exit 1
cat < "$1" >> "$2" 2> /dev/null <<'PLIST'
    </array>
PLIST
exec 8<> "$(< "$1")" 9>&-
echo >&2
"""
SOURCES = {
    "CMakeLists.txt": "project(Sample VERSION 1.0.0 LANGUAGES CXX)\n",
    "CHANGELOG.md": "## 1.0.0\n",
    "app/Window.h": "@interface Window\n@end\n",
    "app/Window+Jobs.mm": "@implementation Window (Jobs)\n@end\n",
    "agent/jobs.h": "enum class Job { Loaded, Missing };\nconstexpr int kJobs = 2;\n",
    "script/sample": SCRIPT,
    "script/retired_words.txt": "# a comment\ngadgets?\ttool\n",
    "script/technical_words.txt": "ba\n",
}


@pytest.fixture(name="tree")
def _tree(tmp_path: Path) -> Path:
    write_tree(tmp_path, SOURCES)
    for name in ("script/lint", "tools/usage.sh"):
        (tmp_path / name).parent.mkdir(exist_ok=True)
        shutil.copy2(ROOT / name, tmp_path / name)
    (tmp_path / "script/bootstrap").write_text("#!/bin/bash\nset -euo pipefail\n")
    (tmp_path / "script/bootstrap").chmod(0o755)
    subprocess.run(["git", "init", "--quiet", tmp_path], check=True)
    return tmp_path


def findings(tree: Path, check: str = "rules") -> str:
    command = [str(tree / "script/lint"), check]
    done = subprocess.run(command, text=True, capture_output=True, check=False)
    assert done.returncode == (1 if done.stdout else 0), done.stderr
    return done.stdout


@pytest.mark.parametrize("check", ["rules", "words"])
def test_a_tree_that_follows_the_rules_has_no_finding(tree: Path, check: str) -> None:
    assert findings(tree, check) == ""


@pytest.mark.parametrize("path, line, finding", [
    ("app/window.cpp", "#if defined(__APPLE__)", "no platform conditionals in the product"),
    ("cli/tool.cpp", "// for GNUstep", "no mention of GNUstep in the product"),
    ("platform/alert.mm", "  } catch (...) {", "no C++ try or catch in Objective-C++"),
    ("script/sample", "[ -n $1 ] && exit", "tests are written in [[ ]]"),
    ("script/sample", "if ! test -e $1; then exit; fi", "tests are written in [[ ]]"),
    ("script/sample", "cat <$1", "a space belongs between a redirection and its file"),
    ("script/sample", "cat >$1", "a space belongs between a redirection and its file"),
    ("script/sample", "cat >>file", "a space belongs between a redirection and its file"),
    ("script/sample", "cat 2>/dev/null", "a space belongs between a redirection and its file"),
    ("script/sample", "cat &>/dev/null", "a space belongs between a redirection and its file"),
    ("script/sample", 'echo "$(<"$1")"', "a space belongs between a redirection and its file"),
    ("script/sample", "[[ $# -gt 1 ]]", "numbers are compared in (( ))"),
    ("script/sample", "[[ $1 = x ]]", "strings are compared with =="),
    ("script/sample", "true ||\n  false", "a line starts with || or &&"),
    ("lab/other", "#!/bin/sh\nset -eu", "scripts start with set -euo pipefail"),
    ("settings/Reader.cpp", "int read();", "a file is named in snake_case"),
    ("tests/testReader.py", "pass", "a file is named in snake_case"),
    ("agent/jobs.h", "enum class Kind {\n  kOne,  ///< the first\n};", "enumerators of an enum class"),
])
def test_a_violation_is_found(tree: Path, path: str, line: str, finding: str) -> None:
    file = tree / path
    file.parent.mkdir(exist_ok=True)
    with file.open("a", encoding="utf-8") as text:
        text.write(f"{line}\n")
    found = findings(tree)
    assert path in found and f"  {finding}" in found


def test_a_version_without_an_entry_in_the_changelog_is_found(tree: Path) -> None:
    (tree / "CHANGELOG.md").write_text("## 0.9.0\n", encoding="utf-8")
    assert "CHANGELOG.md has no entry for the version" in findings(tree)


def test_a_file_without_a_newline_at_its_end_is_found(tree: Path) -> None:
    (tree / "docs.md").write_text("one\ntwo", encoding="utf-8")
    assert "docs.md\n  a file ends with a newline" in findings(tree)


# In two parts, because this file is checked as well.
WRONG = "reci" "eve"


@pytest.mark.parametrize("path, text, finding", [
    ("docs/a.md", f"It will {WRONG} one.", f"docs/a.md:1: {WRONG} ==> "),
    ("resources/en.lproj/a.strings", WRONG, f"a.strings:1: {WRONG} ==> "),
    (f"app/{WRONG}.h", "", f"{WRONG} ==> "),
    ("app/jobs.cpp", "// the other Gadgets", "the other Gadgets\n  use instead: tool"),
    ("app/gadget_map.h", "", "app/gadget_map.h"),
    ("script/retired_words.txt", "(\tnot a valid pattern", "use instead: not a valid pattern"),
])
def test_a_word_that_is_not_used_here_is_found(
        tree: Path, path: str, text: str, finding: str) -> None:
    write_tree(tree, {path: f"{text}\n"})
    assert finding in findings(tree, "words")
