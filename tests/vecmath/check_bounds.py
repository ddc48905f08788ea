"""The error bound in a function's docstring is that of its row in the source; --write brings it there."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
ROW = re.compile(r"^QKR_(?:COMPLEX_)?FUNCTION\w*\((\w+), \w+, \w+, ([\d.]+),", re.MULTILINE)
GROUP = re.compile(r"/\*\* @name.*?/\*\*@\}\*/", re.DOTALL)
SENTENCE = re.compile(r"Largest error: .*? ulp \(float .*?\)\.")

bounds = {name: bound for file in (root / "vecmath").rglob("*.cpp") for name, bound in ROW.findall(file.read_text())}
faults, told = [], set()


def checked(group):
    """The group of declarations with the sentence that belongs to it."""
    text = group[0]
    in_double, in_single = ({bounds[name] for name in re.findall(rf"\b_vxm{letters}[A-Z]\w*_HA\b", text) if name in bounds}
                            for letters in ("[dz]", "[sc]"))
    if not in_double and not in_single and not SENTENCE.search(text):
        return text
    names = set(re.findall(r"\b_vxm[dszc][A-Z]\w*_HA\b", text))
    if len(in_double) != 1 or len(in_single) != 1:
        faults.append(f"{sorted(names)} share a docstring but not a bound")
        return text
    right = f"Largest error: {in_double.pop()} ulp (float {in_single.pop()})."
    told.update(names)
    if SENTENCE.findall(text) != [right]:
        faults.append(f"{sorted(names)}: the docstring does not say '{right}'")
    return SENTENCE.sub(right, text)


for header in sorted((root / "include" / "qkr").glob("vecmath*.h")):
    text = header.read_text()
    corrected = GROUP.sub(checked, text)
    if "--write" in sys.argv[2:] and corrected != text:
        header.write_text(corrected)
faults += [f"{name} has no docstring with its bound" for name in sorted(bounds.keys() - told)]
print(f"{len(bounds)} bounds")
sys.exit("\n".join(faults) or (0 if bounds else "no rows found"))
