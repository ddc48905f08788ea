"""The programs in a page build against the install tree, end well, and print what the page says they print.

check_programs.py PAGE STAGE C_COMPILER CXX_COMPILER LANGUAGE...: the install tree, or `installed` for what the system finds
by itself; the languages that the page is to have, in the order of the alphabet. A block without main() is what stands in
main().
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

page, stage, c_compiler, cxx_compiler, *languages = sys.argv[1:]
environment = dict(os.environ)
if stage != "installed":
    package_file = next(pathlib.Path(stage).rglob("qkr.pc"))
    environment |= {"PKG_CONFIG_PATH": str(package_file.parent), "LD_LIBRARY_PATH": str(package_file.parent.parent)}


def output(*command):
    ran = subprocess.run(command, env=environment, capture_output=True, text=True)
    if ran.returncode:
        sys.exit(f"{' '.join(command)}\n{ran.stdout}{ran.stderr}")
    return ran.stdout


flags = output("pkg-config", "--cflags", "--libs", "qkr").split()
commands = {
    "c": [c_compiler, "-std=c11", "-Wall", "-Wextra", "-Werror"],
    "cpp": [cxx_compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror"],
    "python": None,
}
headers = {
    "c": "#include <qkr/qkr.h>\n",
    "cpp": "#include <cstdio>\n#include <qkr/qkr.hpp>\n#include <vector>\n",
}
# What a program prints follows it, after at most a few words, in a block of text.
programs = re.findall(r"```(c|cpp|python)\n(.*?)```(?:[^`]*?```text\n(.*?)```)?", pathlib.Path(page).read_text(), re.S)
if sorted({language for language, *_ in programs}) != languages:
    sys.exit(f"{page} is to hold programs in: " + " ".join(languages))

with tempfile.TemporaryDirectory() as folder:
    for language, text, expected in programs:
        source = pathlib.Path(folder, f"program.{language}")
        if compiler := commands[language]:
            whole = "main(" in text
            source.write_text(text if whole else f"{headers[language]}int main(void) {{\n{text}}}\n")
            program = str(source.with_suffix(".out"))
            output(*compiler, *([] if whole else ["-Wno-unused"]), str(source), "-o", program, *flags)
            printed = output(program)
        else:
            source.write_text(text)
            printed = output("/usr/bin/python3", str(source))
        if expected and printed != expected:
            sys.exit(f"the {language} program prints\n{printed}{page} says\n{expected}")
    print(f"{len(programs)} programs")
