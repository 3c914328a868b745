"""What the areas that measure themselves share: builds of the library, small programs beside it, and the result."""

import json
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
ARM = "arm-linux-gnueabihf-"
EMULATOR = ["qemu-arm", "-L", "/usr/arm-linux-gnueabihf"]
quick = "--quick" in sys.argv


def run(command, **options):
    """The output of a command; what it says on standard error is shown only if it fails."""
    result = subprocess.run(command, text=True, capture_output=True, **options)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{result.stdout}{result.stderr}")
    return result.stdout


def install(*groups):
    run([f"{ROOT}/scripts/install-packages", *groups])


def library(preset, folder=None, *options):
    """The folder of the library, built with a preset, in its usual folder or in another one of build/."""
    build = f"{ROOT}/build/{folder or preset}"
    run(["cmake", "--preset", preset, "-B", build, "--log-level=WARNING", *options], cwd=ROOT)
    run(["cmake", "--build", build, "--target", "qvLog"])
    return build


def program(source, output, libraries, prefix=""):
    """Links a source with folders (of our library) and names (of installed ones)."""
    compiler = f"{prefix}{'g++' if source.endswith('.cpp') else 'gcc'}"
    flags = []
    for each in libraries:
        flags += [f"-L{each}", "-lqvLog", f"-Wl,-rpath,{each}"] if "/" in each else [f"-l{each}"]
    os.makedirs(os.path.dirname(output), exist_ok=True)
    run([compiler, "-O2", f"-I{ROOT}", source, "-o", output, "-Wl,--no-as-needed", *flags])
    return output


class Result:
    """The measures of an area, printed at the end."""

    def __init__(self):
        self.measures = []

    def add(self, row, name, value, unit):
        self.measures.append({"row": row, "name": name, "value": value, "unit": unit})

    def print(self):
        json.dump({"measures": self.measures}, sys.stdout, indent=1)
