#!/usr/bin/env python3
"""Puts each fault of faults.txt, alone, into a copy of the tree and tells which of the engine's tests see it.

  try-faults.py [WORD...]    all of them, or those with one of the words in their names

Builds in build/faults; a second run goes on from there. Ends with 0 when every fault is seen, with 1 when one is
not, and with 2 when one cannot be tried: the list has to follow the code.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
TREE = ROOT / "build/faults/tree"
BUILD = ROOT / "build/faults/build"
TESTS = BUILD / "tests/quarnelchess/test-quarnelchess"
LIMIT_S = 600  # for tests that take less than a minute


def read_faults():
    """Blocks of a name, a file, the text as it stands ("- ") and the one that takes its place ("+ ")."""
    for block in (HERE / "faults.txt").read_text().strip().split("\n\n"):
        name, file, *lines = block.split("\n")
        yield name, file, *("\n".join(line[2:] for line in lines if line[0] == sign) for sign in "-+")


def copy_tree():
    command = ["git", "-C", ROOT, "ls-files", "-co", "--exclude-standard", "-z"]
    for name in filter(None, subprocess.check_output(command, text=True).split("\0")):
        source, copy = ROOT / name, TREE / name
        if not source.is_file() or (copy.is_file() and source.read_bytes() == copy.read_bytes()):
            continue
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, copy)


def configure():
    if shutil.which("ccache"):
        os.environ.setdefault("CMAKE_CXX_COMPILER_LAUNCHER", "ccache")
    options = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DQUARNEL_DESKTOP=OFF", "-DQUARNEL_BENCH=OFF"]
    subprocess.check_call(["cmake", "-S", TREE, "-B", BUILD, *options], stdout=subprocess.DEVNULL)


def builds():
    command = ["cmake", "--build", BUILD, "-j2", "--target", "test-quarnelchess"]
    return subprocess.run(command, stdout=subprocess.DEVNULL).returncode == 0


def failed_tests(pattern):
    try:
        run = subprocess.run([TESTS, f"--gtest_filter={pattern}"], capture_output=True, text=True, timeout=LIMIT_S)
    except subprocess.TimeoutExpired:
        return ["no end"]
    return sorted(set(re.findall(r"^\[  FAILED  \] (\w+\.\w+)", run.stdout, re.M))) or ["crash"] * bool(run.returncode)


def outcome(file, before, after):
    path = TREE / file
    text = path.read_text() if path.is_file() else ""
    if text.count(before) != 1:
        return "CANNOT BE TRIED: its text is not there once"
    path.write_text(text.replace(before, after))
    try:
        if not builds():
            return "CANNOT BE TRIED: does not compile"
        seen, signature = failed_tests("-Signature.*"), failed_tests("Signature.*")
    finally:
        path.write_text(text)
    return ", ".join(seen) or ("the signature alone" if signature else "SURVIVED")


def main(words):
    copy_tree()
    configure()
    if not builds() or failed_tests("*"):
        print("try-faults: the tests are red without any fault", file=sys.stderr)
        return 2
    outcomes = {}
    for name, *fault in read_faults():
        if not words or any(word in name for word in words):
            outcomes[name] = outcome(*fault)
            print(f"  {name}: {outcomes[name]}", flush=True)
    untried, survived, alone = (
        sum(o.startswith(start) for o in outcomes.values()) for start in ("CANNOT", "SURVIVED", "the signature"))
    print(f"{len(outcomes)} faults: {len(outcomes) - untried - survived - alone} seen by a test of their kind, "
          f"{alone} by the signature alone, {survived} survived, {untried} not tried")
    return 2 if untried else 1 if survived else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
