"""What the checks of the command's verbs have in common."""

import subprocess
from pathlib import Path


def run(*command):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True,
                          timeout=200, check=False)


def recorded(command, folder, *program):
    """A recording of a program with the picture of every frame."""
    file = Path(folder, f"{Path(program[-1]).stem}-recorded.kstl")
    done = run(command, "record", "--pictures", "--force", "-o", file, "--", *program)
    assert done.returncode == 0, done.stderr
    return file
