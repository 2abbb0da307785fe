"""The layer check finds each kind of violation, and nothing in a tree without one."""

from pathlib import Path

import layers
import pytest
from sample_tree import write_tree

TABLE = """
| layer | what | files |
|---|---|---|
| 1 | program entry | `app/main.mm` |
| 2 | window | `app/Window.h` (Objective-C) |
| 3 | operations | `agent/jobs.h`, `agent/plist.h` |
| 4 | mechanism | `agent/shell.h` |

| `app/main.mm`, `app/Window*.mm`, `agent/Window+Jobs.mm` | windows |
"""
SOURCES = {
    "docs/architecture.md": TABLE,
    "app/main.mm": '#import <AppKit/AppKit.h>\n#import "app/Window.h"\n#include "agent/jobs.h"\n',
    "app/Window.h": "#import <AppKit/AppKit.h>\n",
    "app/Window.mm": '#import "app/Window.h"\n#include "agent/plist.h"\n',
    "agent/Window+Jobs.mm": '#import "app/Window.h"\n#include "agent/jobs.h"\n',
    "agent/jobs.h": "#include <string>\n",
    "agent/jobs.cpp": '#include "agent/jobs.h"\n#include "agent/shell.h"\n',
    "agent/plist.h": "",
    "agent/shell.h": "#include <sys/wait.h>\n",
    "agent/shell.cpp": '#include "agent/shell.h"\n',
}


@pytest.fixture(name="tree")
def _tree(tmp_path: Path) -> Path:
    write_tree(tmp_path, SOURCES)
    return tmp_path


def test_a_tree_that_follows_the_table_has_no_finding(tree: Path) -> None:
    assert layers.check(tree) == []


@pytest.mark.parametrize("path, line, finding", [
    ("agent/shell.cpp", '#include "agent/jobs.h"',
     "agent/shell.cpp: includes agent/jobs.h, which is not in a lower layer than agent/shell.h"),
    ("agent/shell.h", '#import "app/Window.h"',
     "agent/shell.h: includes app/Window.h, which is not in a lower layer than agent/shell.h"),
    ("agent/jobs.cpp", '#include "agent/plist.h"',
     "agent/jobs.cpp: includes agent/plist.h, which is not in a lower layer than agent/jobs.h"),
    ("agent/Window+Jobs.mm", '  #  include <app/Window.h>\n#include "agent/new.h"',
     "agent/Window+Jobs.mm: includes agent/new.h, which is not in the layer table"),
    ("agent/jobs.cpp", '#include "../app/Window.h"',
     "agent/jobs.cpp: includes ../app/Window.h, which is not in the layer table"),
    ("agent/jobs.cpp", '#include "plist.h"',
     "agent/jobs.cpp: includes plist.h, which is not in the layer table"),
    ("agent/jobs.cpp", "#include <app/new.h>",
     "agent/jobs.cpp: includes app/new.h, which is not in the layer table"),
    ("agent/new.h", "", "agent/new.h: is not in the layer table"),
    ("cli/new.h", "", "cli/new.h: is not in the layer table"),
    ("agent/new.cpp", "",
     "agent/new.cpp: is not in the layer table and has no header that is"),
    ("agent/jobs.mm", "", "docs/architecture.md: does not name agent/jobs.mm"),
    ("agent/jobs.h", "#import <Foundation/Foundation.h>",
     "agent/jobs.h: is not plain C++, as the layer table states"),
])
def test_a_violation_is_found(tree: Path, path: str, line: str, finding: str) -> None:
    file = tree / path
    file.parent.mkdir(exist_ok=True)
    file.write_text(SOURCES.get(path, "") + line + "\n", encoding="utf-8")
    assert finding in layers.check(tree)


def test_an_objective_c_header_that_became_plain_is_found(tree: Path) -> None:
    (tree / "app/Window.h").write_text("", encoding="utf-8")
    assert layers.check(tree) == ["app/Window.h: is not Objective-C, as the layer table states"]


def test_a_listed_file_that_does_not_exist_is_found(tree: Path) -> None:
    (tree / "agent/plist.h").unlink()
    (tree / "app/Window.mm").unlink()
    assert layers.check(tree) == [
        "docs/architecture.md: lists agent/plist.h, which does not exist"]


def test_a_document_without_the_table_is_found(tree: Path) -> None:
    (tree / "docs/architecture.md").write_text("# Architecture\n", encoding="utf-8")
    assert layers.check(tree) == ["docs/architecture.md: has no layer table"]
