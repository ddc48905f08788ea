"""docs/inside.md: every file that it names exists, and every folder with sources of the library has its line."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
text = (root / "docs" / "inside.md").read_text()
named = {name for name in re.findall(r"`([\w./]+)`", text) if "/" in name}
made = {"build", "out"}
sources = [path for top in root.iterdir() if top.is_dir() and top.name not in made
           for path in top.rglob("*") if path.suffix in {".h", ".cpp"}]
folders = {f"{path.parent.relative_to(root)}/" for path in sources}
# A line for tests, bench and the like stands for what lies below, too.
whole = {"tests", "bench", "tools", "examples", "include", "python"}
faults = [f"names {name}, which does not exist" for name in sorted(named) if not (root / name).exists()]
faults += [f"has no line for {folder}" for folder in sorted(folders - named) if folder.partition("/")[0] not in whole]
faults += ["is longer than 100 lines"] * (text.count("\n") > 100)
print(f"{len(named)} places named, {len(folders)} folders with sources")
sys.exit("\n".join("docs/inside.md " + fault for fault in faults) or (0 if named and folders else "nothing found"))
