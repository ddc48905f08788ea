"""Doxygen makes the reference without a warning, and every exported name has its entry there.

check_reference.py DOXYFILE OUT_DIR C_COMPILER, from the top folder
"""
import subprocess
import sys
import xml.etree.ElementTree as xml
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import where

doxyfile, out, compiler = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
out.mkdir(parents=True, exist_ok=True)
index = out / "names.xml"
index.unlink(missing_ok=True)
settings = f"{doxyfile.read_text()}\nOUTPUT_DIRECTORY = {out}\nGENERATE_TAGFILE = {index}\n"
made = subprocess.run(["doxygen", "-"], input=settings, text=True)
if made.returncode:
    sys.exit("doxygen failed")
pages = {member.findtext("name"): member.findtext("anchorfile") for member in xml.parse(index).iter("member")}
declared = where.declarations(compiler)
absent = [name for name in declared if not (out / "html" / (pages.get(name) or "no page")).is_file()]
print(f"{len(declared)} exported names, {len(absent)} without an entry in {out}/html/index.html")
sys.exit("\n".join(absent) or (0 if declared else "the headers declare nothing"))
