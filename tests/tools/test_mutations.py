"""The table of script/mutate belongs to the tree as it is: a row that no longer fits plants nothing."""

import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools/mutation_testing"))

import mutate  # noqa: E402  pylint: disable=wrong-import-position

MUTATIONS = mutate.read_table(mutate.TABLE)


@pytest.mark.parametrize("mutation", MUTATIONS, ids=[mutation.name for mutation in MUTATIONS])
def test_the_original_text_occurs_once_and_is_changed(mutation: mutate.Mutation) -> None:
    assert (ROOT / mutation.file).read_text(encoding="utf-8").count(mutation.original) == 1
    assert mutation.replacement != mutation.original
