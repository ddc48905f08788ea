"""The site is made without a warning, every name of C, C++ and Python has its entry there, and no link within it is
broken.

check_site.py OUT_DIR C_COMPILER, from the top folder; the pages go to OUT_DIR, what they are made from beside it
"""
import ast
import html.parser
import os
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
import zlib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import where

out, compiler = Path(sys.argv[1]).resolve(), sys.argv[2]
made_from = out.with_name(out.name + "_made_from")
shutil.rmtree(out, ignore_errors=True)
made_from.mkdir(parents=True, exist_ok=True)


def run(*command, text=None, **environment):
    if subprocess.run(command, input=text, text=True, env=dict(os.environ, **environment)).returncode:
        sys.exit(f"{command[0]} failed")


run("doxygen", "-", text=f"{Path('docs/Doxyfile').read_text()}\nOUTPUT_DIRECTORY = {made_from}\n")
run("/usr/bin/python3", "-m", "sphinx", "-q", "-W", "--keep-going", "-d", made_from / "doctrees", "docs", out,
    QKR_DOXYGEN_XML=str(made_from / "xml"))

# Four lines of heading; then, compressed, "name domain:role priority place title" each.
inventory = zlib.decompress((out / "objects.inv").read_bytes().split(b"\n", 4)[4]).decode()
entries = {re.match(r"(.+?) \w+:\w+ ", line)[1] for line in inventory.splitlines()}
declared = set(where.declarations(compiler))
# In C++ what Doxygen found: members of the namespace and of its public classes.
for path in (made_from / "xml").glob("*qkr*.xml"):
    compound = ElementTree.parse(path).getroot().find("compounddef")
    if compound.get("kind") in ("namespace", "class", "struct") and compound.get("prot") != "private":
        owner = re.sub("<.*", "", compound.findtext("compoundname"))
        declared |= {f"{owner}::{member.findtext('name')}" for member in compound.iter("memberdef")
                     if member.get("prot") == "public" and member.get("kind") != "friend"}
# In Python what the stubs offer: what they list, and the public members of their public classes.
in_python = set()
for module, stub in {"qkr": "__init__", "qkr.random": "random", "qkr.fft": "fft", "qkr.signal": "signal",
                     "qkr.random.Stream": "_random"}.items():
    for node in ast.parse(Path(f"python/qkr/{stub}.pyi").read_text()).body:
        if isinstance(node, ast.Assign) and node.targets[0].id == "__all__":
            in_python |= {f"{module}.{name}" for name in ast.literal_eval(node.value)}
        elif isinstance(node, ast.ClassDef) and node.name[0] != "_" and node.name != "Lock":
            owner = module if stub == "_random" else f"{module}.{node.name}"
            named = (getattr(child, "name", None) or ast.unparse(child.target) for child in node.body
                     if isinstance(child, (ast.FunctionDef, ast.AnnAssign)))
            in_python |= {owner, *(f"{owner}.{name}" for name in named if not name.startswith("_"))}
declared |= in_python
faults = [f"{name} has no entry" for name in sorted(declared) if name not in entries]


class Page(html.parser.HTMLParser):
    """Where a page can be entered, and where it leads."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), set()
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id":
                self.anchors.add(value)
            elif name in ("href", "src") and "://" not in value and not value.startswith(("mailto:", "data:")):
                self.links.add(value)


pages = {path: Page(path) for path in out.rglob("*.html")}
for path, page in pages.items():
    for link in page.links:
        file, _, anchor = link.partition("#")
        target = (path.parent / file.partition("?")[0]).resolve() if file else path
        if not target.exists() or anchor and target in pages and anchor not in pages[target].anchors:
            faults.append(f"{path.relative_to(out)}: {link} leads nowhere")
print(f"{len(pages)} pages, {len(declared - in_python)} names of C and C++, {len(in_python)} of Python; {len(faults)} faults")
sys.exit("\n".join(faults) or (0 if declared > in_python else "the headers declare nothing"))
