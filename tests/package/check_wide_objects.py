"""Objects compiled above the baseline show the linker nothing but the bodies of their level: an inline function
left visible there might be the copy that every processor gets to run."""
import re
import subprocess
import sys

level, *objects = sys.argv[1:]
BODY = re.compile(rf"T qkr::{level}::\w+_body\(.*\)")

lines = subprocess.run(["nm", "--defined-only", "--demangle", *objects], capture_output=True, text=True,
                       check=True).stdout.splitlines()
symbols = [line.split(maxsplit=1)[1] for line in lines if re.match(r"[0-9a-f]{16} ", line)]
visible = [symbol for symbol in symbols if symbol[0] in "uvw" or symbol[0].isupper()]
print(f"{len(objects)} objects, {len(visible)} visible symbols")
if not visible:
    sys.exit("no function bodies found")
sys.exit("\n".join(symbol for symbol in visible if not BODY.fullmatch(symbol)) or 0)
