"""The check of the documents finds stale links and names, and nothing else."""

import subprocess
from pathlib import Path

import documents
import pytest
from sample_tree import write_tree

TEXT = """
# A part, and more
[readme](../README.md#part), [here](#a-part-and-more), [web](https://example.org/none),
`app/main.mm`, `app/`, `app/Window*.mm`, `app/Window+Apply`, `script/build Zentavo`, `and/or`, `build/apps/x`
"""


@pytest.fixture(name="tree")
def _tree(tmp_path: Path) -> Path:
    empty = dict.fromkeys(("app/main.mm", "app/Window+Apply.mm", "script/build"), "")
    write_tree(tmp_path, empty | {"README.md": "## Part\n", "docs/a.md": TEXT})
    subprocess.run(["git", "init", "-q"], cwd=tmp_path, check=True)
    return tmp_path


def test_a_tree_whose_names_exist_has_no_finding(tree: Path) -> None:
    assert documents.check(tree) == []


@pytest.mark.parametrize("text, finding", [
    ("[a](b.md)", "docs/a.md: links to b.md, which does not exist"),
    ("[a](#part)", "docs/a.md: links to #part, which does not exist"),
    ("[a](../README.md#parts)", "docs/a.md: links to ../README.md#parts, which does not exist"),
    ("`app/none.mm`", "docs/a.md: names app/none.mm, which does not exist"),
    ("`script/tests -R unit`", "docs/a.md: names script/tests, which does not exist"),
    ("`app/None*.mm`", "docs/a.md: names app/None*.mm, which does not exist"),
])
def test_a_stale_name_is_found(tree: Path, text: str, finding: str) -> None:
    (tree / "docs/a.md").write_text(text, encoding="utf-8")
    assert documents.check(tree) == [finding]
