"""What configuring a build folder does to bundles that are there already."""

import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def test_the_bundle_of_a_renamed_edition_is_removed(tmp_path: Path) -> None:
    (tmp_path / "apps/Old Configuration Utility.app/Resources").mkdir(parents=True)
    kept = tmp_path / "apps/Zentavo Configuration Utility.app/kept"
    kept.parent.mkdir()
    kept.touch()
    subprocess.run(["cmake", "-S", ROOT, "-B", tmp_path, "-G", "Ninja", "-DBUILD_TESTING=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    assert not (tmp_path / "apps/Old Configuration Utility.app").exists()
    assert kept.exists()
