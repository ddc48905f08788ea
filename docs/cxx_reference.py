"""A directive for the pages of the C++ reference: `cxx-header:: vecmath.hpp` lists what a header declares.

It reads what Doxygen made of the header. Overloads of a name and their noexcept twins, `exp` and `try_exp`, stand in one
entry, under the docstring of the first of them; each has its own line in index and search. What has no docstring, and
stands in no group that has one, is an error of the build.
"""
import os
import re
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from docutils import nodes
from docutils.statemachine import StringList
from sphinx.util import logging
from sphinx.util.docutils import SphinxDirective

logger = logging.getLogger(__name__)


def plain(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def escaped(text):
    return re.sub(r"([\\*`|_])", r"\\\1", text)


def inline(element):
    """The text of a paragraph as reStructuredText, where marks need blanks or punctuation around them."""
    text = escaped(element.text or "")
    for child in element:
        words = plain(child)
        if child.tag == "computeroutput":
            mark = f"``{words}``"
        elif child.tag == "ref" and child.get("kindref") == "member" and "_8h_" in child.get("refid"):
            mark = f":c:func:`{words}`" if words.endswith(")") else f"``{words}``"
        elif child.tag in ("ref", "bold", "emphasis", "ulink"):
            mark = inline(child)
        else:
            raise ValueError(f"no form for <{child.tag}> in a sentence")
        tail = escaped(child.tail or "")
        text += ("" if re.search(r"(^|[\s(])$", text) else "\\ ") + mark + ("" if re.match(r"$|[\s).,;:]", tail) else "\\ ") + tail
    return " ".join(text.split())


def tight(text):
    """Doxygen's `span< const T >` as the headers have it."""
    return re.sub(r"(?<=[\w>*]) >", ">", text.replace("< ", "<"))


def code(text):
    return [".. code-block:: cpp", "", *("   " + line for line in text.strip("\n").splitlines()), ""]


def block(element):
    """Lines of reStructuredText of a description: paragraphs, lists, code, tables, parameters."""
    lines = []
    if element is None:
        return lines
    for para in element.iter("para") if element.tag != "para" else [element]:
        if para is not element and para not in list(element):
            continue  # of a list or a table, which its owner writes
        sentence = ElementTree.Element("para")
        sentence.text = para.text

        def flush():
            nonlocal sentence
            if text := inline(sentence):
                lines.extend([text, ""])
            sentence = ElementTree.Element("para")

        for child in para:
            if child.tag == "verbatim":
                flush()
                lines.extend(code(child.text))
            elif child.tag == "programlisting":
                flush()
                lines.extend(code("\n".join("".join(" " if part.tag == "sp" else part.text or "" for part in line.iter()
                                                    if part.tag != "codeline") for line in child)))
            elif child.tag == "itemizedlist":
                flush()
                for item in child:
                    first, *rest = block(item)
                    lines.extend([f"* {first}", *("  " + line for line in rest)])
                lines.append("")
            elif child.tag == "table":
                flush()
                lines.extend([".. list-table::", "   :header-rows: 1", ""])
                for row in child.findall("row"):
                    for number, entry in enumerate(row):
                        text = " ".join(block(entry)).strip()
                        lines.append(f"   {'*' if number == 0 else ' '} - {text}")
                lines.append("")
            elif child.tag == "parameterlist":
                flush()
                for item in child:
                    names = ", ".join(plain(name) for name in item.iter("parametername"))
                    lines.extend([f":param {names}: {' '.join(block(item.find('parameterdescription'))).strip()}"])
                lines.append("")
            else:
                sentence.append(child)
                continue
            sentence.text, child.tail = child.tail, None
        flush()
    return lines


def docstring(element):
    return block(element.find("briefdescription")) + block(element.find("detaileddescription"))


def template(element):
    parameters = element.find("templateparamlist")
    if parameters is None:
        return ""
    each = [" ".join(filter(None, (plain(p.find("type")), plain(p.find("declname"))))) +
            (f" = {plain(p.find('defval'))}" if p.find("defval") is not None else "") for p in parameters]
    return f"template<{', '.join(each)}> "


def bracketed(requirement):
    return requirement if requirement.startswith("(") else f"({requirement})"


def signature(member):
    """A function as Sphinx takes it: the requirement stands behind the template's parameters or the function's."""
    requirement = plain(member.find("requiresclause"))
    words = template(member)
    arguments = plain(member.find("argsstring"))
    if requirement and words:
        words += f"requires {bracketed(requirement)} "
    if member.get("explicit") == "yes":
        words += "explicit "
    returned = re.sub(r"^(friend|inline)\s+", "", plain(member.find("type")))
    if member.get("static") == "yes" and not returned.startswith("static"):
        words += "static "
    arguments = re.sub(r"\s*=\s*(default|delete)$", "", arguments).replace(" override", "")
    words += tight(f"{returned} {plain(member.find('name'))}{arguments}")
    if requirement and not template(member):
        words += f" requires {bracketed(requirement)}"
    return " ".join(words.split())


class Entities:
    """What Doxygen found in a header, in its order."""

    def __init__(self, folder, header):
        self.folder, self.header = Path(folder), header
        self.seen = []
        for path in sorted(self.folder.glob("*.xml")):
            root = ElementTree.parse(path).getroot()
            for compound in root.iter("compounddef"):
                name = plain(compound.find("compoundname"))
                if compound.get("kind") == "file" and name == header:
                    self.file = compound
                elif compound.get("kind") in ("class", "struct", "concept") and self.here(compound) and name.count("::") == 1:
                    self.seen.append((self.line(compound), compound, None))
                elif compound.get("kind") == "namespace" and name == "qkr":
                    self.seen += self.members(compound)
        self.seen.sort(key=lambda entity: entity[0])

    def here(self, element):
        location = element.find("location")
        return location is not None and location.get("file").endswith("/" + self.header)

    @staticmethod
    def line(element):
        return int(element.find("location").get("line"))

    def members(self, compound):
        """(line, member, section) of the public members."""
        found = []
        for section in compound.findall("sectiondef"):
            group = section if section.get("kind") == "user-defined" else None
            found += [(self.line(member), member, group) for member in section.findall("memberdef")
                      if member.get("prot") == "public" and self.here(member) and member.get("kind") != "friend"]
        return sorted(found, key=lambda entity: entity[0])


class Page:
    """The lines of reStructuredText of a header."""

    def __init__(self, entities):
        self.entities, self.lines, self.undocumented = entities, [], []
        self.put(0, block(entities.file.find("briefdescription")) + block(entities.file.find("detaileddescription")))
        self.put(0, [".. cpp:namespace:: qkr", ""])
        self.all(entities.seen, 0, "qkr")

    def put(self, depth, lines):
        self.lines += ["   " * depth + line if line else "" for line in lines]

    def entry(self, depth, directive, signatures, text):
        start = f".. cpp:{directive}:: "
        self.put(depth, [start + signatures[0], *(" " * len(start) + other for other in signatures[1:]), ""])
        self.put(depth + 1, text)

    def all(self, entities, depth, owner):
        section = None
        while entities:
            (_, element, group), *entities = entities
            if group is not None and group is not section:
                self.put(depth, [f".. rubric:: {plain(group.find('header'))}", "", *block(group.find("description"))])
            section = group
            covered = group is not None and bool(plain(group.find("description")))
            name = plain(element.find("name"))
            if element.get("kind") == "function":
                overloads = [element]
                while entities and self.belongs(entities[0], name, group):
                    overloads.append(entities.pop(0)[1])
                self.function(overloads, depth, owner, covered)
            else:
                self.other(element, depth, owner, covered)

    @staticmethod
    def belongs(entity, name, group):
        _, element, its_group = entity
        return (its_group is group and element.get("kind") == "function" and not docstring(element) and
                plain(element.find("name")).removeprefix("try_") == name.removeprefix("try_"))

    def function(self, overloads, depth, owner, covered):
        name, text = plain(overloads[0].find("name")), docstring(overloads[0])
        self.entry(depth, "function", [signature(member) for member in
                                       sorted(overloads, key=lambda m: plain(m.find("name")).startswith("try_"))], text)
        # Everybody knows what these are for.
        special = name == "operator=" or name.startswith("~") or name == owner.split("::")[-1].split("<")[0] and all(
            plain(m.find("argsstring")).startswith(("()", f"({name} &&", f"(const {name} &")) for m in overloads)
        if not (text or covered or special):
            self.undocumented.append(f"{owner}::{name}")

    def other(self, element, depth, owner, covered):
        kind, text = element.get("kind"), docstring(element)
        name = plain(element.find("name")) or plain(element.find("compoundname")).removeprefix("qkr::")
        if not (text or covered):
            self.undocumented.append(f"{owner}::{name}")
        if kind in ("class", "struct"):
            requirement = plain(element.find("requiresclause"))
            words = template(element) + (f"requires {bracketed(requirement)} " if requirement else "") + tight(name)
            bases = [tight(plain(base)).removeprefix("qkr::") for base in element.findall("basecompoundref")]
            words += " : public " + ", public ".join(bases) if bases else ""
            self.entry(depth, kind, [words], text)
            self.all(self.entities.members(element), depth + 1, name)
        elif kind == "concept":
            self.entry(depth, "concept", [template(element) + name], text)
        elif kind == "enum":
            self.entry(depth, "enum-class" if element.get("strong") == "yes" else "enum",
                       [f"{name} : {plain(element.find('type'))}".removesuffix(" : ")], text)
            for value in element.findall("enumvalue"):
                self.entry(depth + 1, "enumerator", [f"{plain(value.find('name'))} {plain(value.find('initializer'))}"],
                           docstring(value))
        elif kind == "typedef":
            meaning = plain(element.find("type")).removeprefix("typedef ")
            self.entry(depth, "type", [f"{name} = {tight(meaning)}"], text)
        elif kind == "variable":
            words = f"{plain(element.find('type'))} {name}{plain(element.find('argsstring'))}"
            self.entry(depth, "var", [words], text)
        else:
            raise ValueError(f"no form for a {kind}: {name}")


class CxxHeader(SphinxDirective):
    required_arguments = 1

    def run(self):
        self.env.note_reread()  # whenever the site is made: the headers may have changed
        page = Page(Entities(os.environ["QKR_DOXYGEN_XML"], self.arguments[0]))
        for name in page.undocumented:
            logger.warning("%s: %s has no docstring", self.arguments[0], name)
        result = nodes.section()
        result.document = self.state.document
        self.state.nested_parse(StringList(page.lines, source=self.arguments[0]), self.content_offset, result)
        return result.children


def setup(app):
    app.add_directive("cxx-header", CxxHeader)
    return {"parallel_read_safe": True}
