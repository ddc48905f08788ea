"""The programs in a page, one in each of the languages named, build against the install tree and print what the
page says they print."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

page, stage, c_compiler, cxx_compiler, *languages = sys.argv[1:]
package_file = next(pathlib.Path(stage).rglob("qkr.pc"))
library_path = str(package_file.parent.parent)
environment = dict(os.environ, PKG_CONFIG_PATH=str(package_file.parent), LD_LIBRARY_PATH=library_path)


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
# Each program is followed, after at most a few words, by a block with its output.
programs = re.findall(r"```(c|cpp|python)\n(.*?)```[^`]*?```text\n(.*?)```", pathlib.Path(page).read_text(), re.S)
if sorted(language for language, *_ in programs) != sorted(languages):
    sys.exit(f"{page} is to hold one program in each language: " + " ".join(languages))

with tempfile.TemporaryDirectory() as folder:
    for language, text, expected in programs:
        source = pathlib.Path(folder, f"first.{language}")
        source.write_text(text)
        if compiler := commands[language]:
            program = str(source.with_suffix(".out"))
            output(*compiler, str(source), "-o", program, *flags)
            printed = output(program)
        else:
            printed = output("/usr/bin/python3", str(source))
        if printed != expected:
            sys.exit(f"the {language} program prints\n{printed}{page} says\n{expected}")
        print(f"{language}: as told")
