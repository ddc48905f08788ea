"""Every name that a public header exports has a docstring: one of its own, or that of a group around it."""
import pathlib
import re
import sys

INSIDE = r"(?:(?!\*/).)*?"  # of a comment
GROUP = re.compile(rf"/\*\*{INSIDE}\w{INSIDE}(?:\*/\s*/\*\*\s*)?@\{{.*?@\}}", re.S)
DOCUMENTED = re.compile(rf"/\*\*{INSIDE}\*/\s*(?:extern\s+)?QKR_API\b", re.S)

undocumented, total = [], 0
for header in sorted(pathlib.Path(sys.argv[1]).glob("*.h")):
    text = re.sub(r"#\s*define[^\n]*", "", header.read_text())
    total += len(re.findall(r"\bQKR_API\b", text))
    rest = DOCUMENTED.sub("", GROUP.sub("", text))
    undocumented += [f"{header.name}: {line.strip()}" for line in re.findall(r"^[^\n*]*\bQKR_API\b[^\n]*", rest, re.M)]
print(f"{total} exported declarations")
sys.exit("\n".join(undocumented) or (0 if total else "no headers found"))
