"""The commands of a page do what it says: each line of its blocks of `sh` ends well, and prints the block of text behind.

check_start.py PAGE          with the packages installed, from a folder of its own
check_start.py PAGE --tree   before they are: PKG_CONFIG_PATH and the like lead to library and module, and the programs
                             are those of the source tree
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

page, *tree = sys.argv[1:]
programs = pathlib.Path(__file__).resolve().parents[2] / "examples" / "first"
text = pathlib.Path(page).read_text()
steps = re.findall(r"```sh\n(.*?)```(?:\s*```text\n(.*?)```)?", text, re.S)
shown = re.findall(r"```\{literalinclude\} \S+/(\S+)\n", text)
with tempfile.TemporaryDirectory() as folder:
    for commands, expected in steps:
        if tree:
            commands = re.sub(r"/usr/share/doc/\S+/examples", str(programs), commands)
        print(commands, end="", flush=True)
        ran = subprocess.run(["sh", "-ec", commands], cwd=folder, env=os.environ, text=True, stdout=subprocess.PIPE)
        print(ran.stdout, end="")
        if ran.returncode or ran.stdout != expected:
            sys.exit(f"status {ran.returncode}; {page} says\n{expected}")
unused = [program for program in shown if not any(program in commands for commands, _ in steps)]
sys.exit(f"shown and not run: {unused}" if unused else 0 if steps and shown else f"{page} has no programs")
