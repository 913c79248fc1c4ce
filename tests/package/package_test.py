#!/usr/bin/env python3
"""Checks of what is built and installed:

    package_test.py runpaths READELF FOLDER             the RUNPATHs of all programs and libraries
    package_test.py install READELF CMAKE BUILD HOST    installs, moves and plays
    package_test.py play SCRIPT                         what the script says without a trace
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

PLAYER = "kestrail-playback_g"


def output_of(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def run_paths(readelf, folder):
    """The search paths that programs and shared libraries below the folder carry, by file."""
    paths = {}
    for file in folder.rglob("*"):
        if file.is_symlink() or not file.is_file() or file.suffix in (".o", ".a"):
            continue
        with file.open("rb") as start:
            if start.read(4) != b"\x7fELF":
                continue
        found = re.findall(r"\(R(?:UN)?PATH\).*\[(.*)\]", output_of(readelf, "-dW", file))
        if found:
            paths[file] = found[0]
    return paths


def check_run_paths(readelf, folder):
    paths = run_paths(readelf, folder)
    assert any(file.name == PLAYER for file in paths), f"no player with a RUNPATH in {folder}"
    for file, path in paths.items():
        # An empty entry is the folder that the program is started in.
        assert all(path.split(":")), f"{file}: empty entry in {path}"
    return paths


def check_install(readelf, cmake, build, host):
    with tempfile.TemporaryDirectory() as name:
        top = Path(name)
        output_of(cmake, "--install", build, "--prefix", top / "first")
        (top / "first").rename(top / "moved")
        paths = check_run_paths(readelf, top / "moved")
        [player] = [file for file in paths if file.name == PLAYER]
        links = Path(paths[player].replace("$ORIGIN", str(player.parent)))
        for link in sorted(links.iterdir()):
            assert link.exists(), f"{link} leads to {link.readlink()}, which is not there"
            # The stand-in instead, so that it plays without a display.
            link.unlink()
            link.symlink_to(host / link.name)
        log = top / "log"
        lines = output_of(player, build / "samples/scene-short.kstl", cwd="/",
                          env={"KESTRAIL_HOST_LOG": str(log)})
        assert "Host Library Loaded: libGLESv2.so" in lines, lines
        assert "eglSwapBuffers(" in log.read_text(), log.read_text()


def check_play(script):
    with tempfile.TemporaryDirectory() as folder:
        for trace in (folder, folder + "/missing.kstl"):
            done = subprocess.run([script, trace], capture_output=True, text=True, check=False)
            assert done.returncode != 0 and trace in done.stderr and not done.stdout, done


def main():
    check = {"runpaths": check_run_paths, "install": check_install, "play": check_play}
    check[sys.argv[1]](sys.argv[2], *[Path(argument) for argument in sys.argv[3:]])


if __name__ == "__main__":
    main()
