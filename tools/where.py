#!/usr/bin/python3
"""Where the exported names stand: their declaration in include/, and their row or definition in the sources.

where.py NAME...   both places of each name, as FILE:LINE; part of a name stands for all names that contain it
where.py --check   names that do not stand whole in exactly one row or definition of the sources
"""
import bisect
import re
import subprocess
import sys
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[1]
ROOMS = ("service", "vecmath", "streams", "distributions", "sigfft", "dft", "convcorr", "library")


def declared_name(declaration):
    """'void *(*i_malloc)(size_t)', 'extern int table[4]' or 'int32_t f(int32_t n)': the name that it declares."""
    declaration = re.sub(r"__attribute__\s*\(\(.*?\)\)", "", declaration)
    for pattern in (r"\(\s*\*\s*(\w+)\s*\)\s*\(", r"(\w+)\s*\(", r"(\w+)\s*(?:\[[^]]*\]\s*)*$"):
        if found := re.search(pattern, declaration):
            return found[1]
    sys.exit(f"no name found in: {declaration}")


def declarations(compiler="cc", include=REPOSITORY / "include"):
    """Name -> (header, line) of all that the public headers declare with QKR_API."""
    # QKR_API stands in the preprocessed text under a name of its own, so that it can be told from other attributes.
    source = "#include <qkr/api.h>\n#undef QKR_API\n#define QKR_API exported_here\n#include <qkr/qkr.h>\n"
    preprocessed = subprocess.run([compiler, "-E", "-x", "c", "-I", include, "-"], input=source, text=True,
                                  stdout=subprocess.PIPE, check=True).stdout
    text, starts, places = "", [], []  # without the compiler's line markers, and where its lines come from
    file, line = "", 0
    for row in preprocessed.splitlines(keepends=True):
        if marker := re.match(r'# (\d+) "([^"]*)"', row):
            line, file = int(marker[1]), marker[2]
        else:
            starts.append(len(text))
            places.append((Path(file), line))
            text += row
            line += 1
    return {declared_name(" ".join(found[1].split())): places[bisect.bisect(starts, found.start()) - 1]
            for found in re.finditer(r"\bexported_here\b([^;{]*)", text)}


def blank(found):
    return re.sub(r"[^\n]", " ", found[0])


def rows(path):
    """(word, line) of each word that a file defines, or names in a row of a macro, outside all functions."""
    text = re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', blank, path.read_text(), flags=re.S)
    text = re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", blank, text, flags=re.M)
    depth, transparent, statement, line = 0, [], [], 1
    for token in re.findall(r"\n|\w+|[^\s\w]", text):
        if token == "\n":
            line += 1
        elif token == "{":
            # Only the braces of a namespace, or of what stands alone after extern "C", have definitions in them.
            scope = depth == 0 and (statement[:1] == ["namespace"] or statement == ["extern"])
            transparent.append(scope)
            depth += not scope
            statement = statement if depth else []
        elif token == "}":
            depth -= not (transparent.pop() if transparent else False)
            statement = statement if depth else []
        elif depth == 0:
            if token == ";":
                statement = []
                continue
            if re.match(r"[A-Za-z_]\w*$", token) and "=" not in statement and statement[:1] != ["static_assert"]:
                yield token, line
            statement.append(token)
            # A row of a macro ends with its bracket.
            if token == ")" and re.match(r"[A-Z][A-Z0-9_]+$", statement[0]) and statement.count("(") == statement.count(")"):
                statement = []


def sources():
    """Name -> [(file, line), ...] of all rows and definitions of the rooms."""
    found = {}
    for room in ROOMS:
        for path in sorted((REPOSITORY / room).rglob("*.cpp")):
            for word, line in rows(path):
                found.setdefault(word, []).append((path, line))
    return found


def place(path, line):
    return f"{path.resolve().relative_to(REPOSITORY)}:{line}"


def text_at(path, line):
    return path.read_text().splitlines()[line - 1].strip()


def docstring(path, line):
    """The line where the comment starts that documents a declaration, or the group that it stands in."""
    lines = path.read_text().splitlines()
    return next((number for number in range(line, 0, -1)
                 if re.match(r"\s*/\*\*(?!<)", lines[number - 1]) or number == line and "/**<" in lines[number - 1]), line)


def main(words):
    declared, defined = declarations(), sources()
    if words == ["--check"]:
        missing = sorted(name for name in declared if name not in defined)
        several = {name: defined[name] for name in declared if len(defined.get(name, [])) > 1}
        for name in missing:
            print(f"stands whole in no row of the sources: {name} ({place(*declared[name])})")
        for name, places in several.items():
            print(f"stands in several rows: {name} ({', '.join(place(*p) for p in places)})")
        print(f"{len(declared)} exported names, {len(missing)} missing, {len(several)} in several rows")
        sys.exit(1 if missing or several or not declared else 0)
    if not words:
        sys.exit(__doc__)
    for word in words:
        names = [word] if word in declared else [name for name in declared if word in name]
        if not names:
            sys.exit(f"no exported name is or contains {word}")
        for name in names:
            path, line = declared[name]
            print(f"{name}\n  documented at {place(path, docstring(path, line))}")
            for label, (path, line) in [("declared", declared[name])] + [("row", p) for p in defined.get(name, [])]:
                print(f"  {label:<8} at {place(path, line)}: {text_at(path, line)}")


if __name__ == "__main__":
    main(sys.argv[1:])
