"""A directive for the pages of the Python reference: `python-module:: qkr.fft` lists what a module offers.

Names and types come from the stubs of python/qkr; docstrings and defaults from the module, or from the sources in C++,
where the docstrings of ufuncs and streams stand. Nothing is imported, so no library is needed. The errors of a ufunc are
those that the C headers tell. What has no docstring is an error of the build.
"""
import ast
import copy
import re
from pathlib import Path

from docutils import nodes
from docutils.statemachine import StringList
from sphinx.ext.napoleon import Config, NumpyDocstring
from sphinx.util import logging
from sphinx.util.docutils import SphinxDirective

logger = logging.getLogger(__name__)
top = Path(__file__).resolve().parents[1]
package = top / "python" / "qkr"
literal = r'"((?:\\.|[^"\\])*)"'
element_types = {"s": "float32", "d": "float64", "c": "complex64", "z": "complex128"}


def cpp(folder):
    """The sources of an extension, literals that follow one another joined, also those that macros stand for."""
    text = "\n".join(path.read_text() for path in sorted((top / "python" / "src" / folder).glob("*.cpp")))
    for name, value in re.findall(r"^#define ([A-Z]+) (\".*\")$", text, re.M):
        text = re.sub(rf"\b{name}\b", lambda _: value, text)
    return re.sub(r'(?<!\\)"\s*"', "", text)


def unescaped(text):
    return ast.literal_eval(f'"{text}"')


def stream_docstrings():
    """Of the methods and properties of a stream, with the arguments of the methods."""
    text = cpp("random")
    strings = map(unescaped, re.findall(literal, text))
    methods = (re.match(r"(\w+)(\(\$self.*?\))\n--\n\n(.*)", string, re.S) for string in strings)
    properties = re.findall(rf'{{"(\w+)", \w+, nullptr,\s*{literal}}}', text)
    return ({m[1]: (m[2].replace("$self", "self"), m[3]) for m in methods if m} |
            {name: (None, unescaped(doc)) for name, doc in properties})


def prototypes():
    """Of each vector function: how many arrays it reads and writes, and the errors that its header tells."""
    result = {}
    for path in (top / "include" / "qkr").glob("vecmath*.h"):
        for group in re.findall(r"/\*\*(?:(?!/\*\*@}).)*", path.read_text(), re.S):
            errors = re.search(r"Largest error: ([\d.]+) ulp \(float ([\d.]+)\)", group)
            for name, arguments in re.findall(r"QKR_API void (\w+)\(int32_t n, ([^)]*)\)", group):
                inputs = arguments.count("const ")
                result[name] = inputs, arguments.count("*") - inputs, errors
    return result


def ufuncs():
    """Signature and docstring by name."""
    text, of_c, result = cpp("ufuncs"), prototypes(), {}
    rows = [(name, doc + "\n\nNotes\n-----\nThe C functions: " + ", ".join(functions.split()).replace(",,", ",") + ".")
            for name, doc, functions in re.findall(rf"QKR_UFUNC\(\s*(\w+),\s*{literal},([\s\w,]*)\)", text)]
    rows += re.findall(rf'\brow\(\s*"(\w+)",\s*{literal}', text)
    for name, doc in rows:
        summary, notes = unescaped(doc.replace("\n", "\\n")).split("\n\nNotes\n-----\n")
        functions = re.findall(r"_vxm\w+", notes)
        inputs, outputs, _ = of_c[functions[0]]
        types = ", ".join(element_types[function[4]] for function in functions)
        errors = {function[4]: of_c[function][2] for function in functions}
        told = [f"{errors[double][2]} ulp in {element_types[single]} and {errors[double][1]} in {element_types[double]}"
                for single, double in ("sd", "cz") if errors.get(double)]
        summary += f"\n\nTypes: {types}." + (f" Largest error: {', '.join(told)}." if told else "")
        arguments = "x" if inputs == 1 else "x1, x2"
        result[name] = (f"({arguments}, /, out={None if outputs == 1 else (None, None)}, *, where=True, casting='same_kind', "
                        "order='K', dtype=None, subok=True)", f"{summary}\n\nNotes\n-----\n{notes}")
    return result


class Spelled(ast.NodeTransformer):
    """Types with what the stub's private names stand for."""

    def __init__(self, stub):
        self.meaning = {}
        for node in stub.body:
            if isinstance(node, ast.Assign) and node.targets[0].id.startswith("_"):
                call = isinstance(node.value, ast.Call)  # a type variable, for its bound
                self.meaning[node.targets[0].id] = ast.Name(node.value.keywords[0].value.value) if call else node.value
            elif isinstance(node, ast.ClassDef) and [ast.unparse(base) for base in node.bases] == ["TypedDict"]:
                self.meaning[node.name] = ast.Name("dict")

    def visit_Name(self, node):
        return self.meaning.get(node.id, node)


def members(node):
    return {child.name: child for child in reversed(node.body) if isinstance(child, (ast.FunctionDef, ast.ClassDef))}


class Module:
    def __init__(self, name):
        file = name.partition(".")[2] or "__init__"
        self.name, self.lines, self.undocumented = name, [], []
        self.source, self.stub = (ast.parse((package / f"{file}.{suffix}").read_text()) for suffix in ("py", "pyi"))
        self.spelled = Spelled(self.stub)
        self.of_c = {"qkr": ufuncs, "qkr.random": stream_docstrings}.get(name, dict)()
        self.stubs, self.sources = members(self.stub), members(self.source)
        if name == "qkr.random":
            base = ast.parse((package / "_random.pyi").read_text())
            self.stubs["_Stream"] = members(base)["Stream"]
            self.stubs["_Stream"].name = "_Stream"
            self.spelled.meaning |= Spelled(base).meaning

    def text(self, docstring):
        """reStructuredText of a docstring: NumPy's sections, `names` and functions of C as links."""
        def link(match):
            of_c, name = match.groups()
            return f":c:func:`{of_c}`" if of_c else f":py:obj:`{name}`" if name in self.linked else f"``{name}``"

        docstring = re.sub(r"(?<!\w)`?(_vx[ms]\w+|__vx\w+|qkr_\w+)`?|(?<![`\w:])`([^`]+)`(?!`)", link, docstring)
        return str(NumpyDocstring(docstring, Config(napoleon_use_ivar=True))).splitlines()

    def entry(self, depth, kind, words, docstring, options=()):
        pad = "   " * depth
        self.lines += [f"{pad}.. py:{kind}:: {words}", *(f"{pad}   :{option}" for option in options), ""]
        self.lines += [pad + "   " + line for line in self.text(docstring)] + [""]

    def type(self, node):
        return ast.unparse(self.spelled.visit(copy.deepcopy(node)))

    def signature(self, stub, source):
        """The stub's, with the source's defaults."""
        stub = self.spelled.visit(copy.deepcopy(stub))
        arguments = stub.args
        for mine, theirs in (arguments.defaults, source.defaults), (arguments.kw_defaults, source.kw_defaults):
            for k in range(1, 1 + min(len(mine), len(theirs))):
                if isinstance(mine[-k], ast.Constant) and mine[-k].value is ...:
                    mine[-k] = theirs[-k]
        first = (arguments.posonlyargs + arguments.args)[:1]
        if first and first[0].arg in ("self", "cls"):
            (arguments.posonlyargs or arguments.args).pop(0)
        returns = f" -> {ast.unparse(stub.returns)}" if stub.returns and stub.name != "__init__" else ""
        return f"({ast.unparse(arguments)}){returns}".replace("_np.", "numpy.")

    def function(self, name, stub, source, depth=0, owner=""):
        decorators = [ast.unparse(d) for d in stub.decorator_list]
        declared, docstring = self.of_c.get(name, (None, None)) if source is None else (None, ast.get_docstring(source))
        if not docstring:
            self.undocumented.append(f"{owner}{name}")
        if "property" in decorators:
            return self.entry(depth, "property", name, docstring or "", [f"type: {self.type(stub.returns)}"])
        arguments = source.args if source else ast.parse(f"def f{declared or '()'}: ...").body[0].args
        self.entry(depth, "method" if owner else "function", name + self.signature(stub, arguments), docstring or "",
                   ["classmethod:"] if "classmethod" in decorators else ())

    def own(self, stub):
        """What a class has by itself or from private bases: pairs of stub and source; and its public bases."""
        found, public = [(stub, self.sources.get(stub.name))], []
        for base in stub.bases:
            if isinstance(base, ast.Name) and base.id in self.stubs:
                if base.id.startswith("_"):
                    more, further = self.own(self.stubs[base.id])
                    found, public = found + more, public + further
                else:
                    public.append(base.id)
        return found, public

    def constructor(self, stub):
        found, public = self.own(stub)
        for its_stub, source in found:
            if "__init__" in members(its_stub):
                return self.signature(members(its_stub)["__init__"], members(source)["__init__"].args)
        return self.constructor(self.stubs[public[0]]) if public else ""

    def class_(self, name, stub):
        found, public = self.own(stub)
        docstring = self.sources[name] and ast.get_docstring(self.sources[name])
        if not docstring:
            self.undocumented.append(name)
        bases = ", ".join(f"`{base}`" for base in public)
        self.entry(0, "class", name + self.constructor(stub), (f"Base: {bases}.\n\n" if bases else "") + (docstring or ""))
        done = set()
        for its_stub, source in found:
            for child in its_stub.body:
                own_name = getattr(child, "name", None) or getattr(getattr(child, "target", None), "id", "_")
                if own_name.startswith("_") or own_name in done:
                    continue
                done.add(own_name)
                if isinstance(child, ast.FunctionDef):
                    self.function(own_name, child, members(source)[own_name] if source else None, 1, f"{name}.")
                else:
                    self.entry(1, "attribute", own_name, "", [f"type: {self.type(child.annotation)}"])

    def write(self):
        constants = {node.target.id for node in ast.parse((package / "_ufuncs.pyi").read_text()).body
                     if isinstance(node, ast.AnnAssign)}
        exported = next(ast.literal_eval(node.value) for node in self.stub.body
                        if isinstance(node, ast.Assign) and node.targets[0].id == "__all__")
        self.public = sorted({*exported, *(name for name in self.stubs if not name.startswith("_"))})
        classes = [node for node in self.stubs.values() if isinstance(node, ast.ClassDef)]
        self.linked = {*self.public, "qkr.random", "qkr.fft", "qkr.signal",
                       *(prefix + member for node in classes for member in members(node) for prefix in ("", f"{node.name}."))}
        of_others = {alias.name: node.module for node in self.source.body if isinstance(node, ast.ImportFrom)
                     for alias in node.names}
        same = {node.targets[0].id: node.value.id for node in self.source.body
                if isinstance(node, ast.Assign) and isinstance(node.value, ast.Name)}
        self.lines += [f".. py:module:: {self.name}", "", *self.text(ast.get_docstring(self.source)), ""]
        for name in self.public:
            if name in of_others:
                self.entry(0, "function", name, f"NumPy's own, ``{of_others[name]}.{name}``.")
            elif self.name == "qkr" and name in constants:
                if name not in self.of_c:
                    self.undocumented.append(name)
                self.entry(0, "function", name + self.of_c.get(name, ("()", ""))[0], self.of_c.get(name, ("", ""))[1])
            elif isinstance(self.stubs[name], ast.ClassDef):
                self.class_(name, self.stubs[name])
            elif name in same:
                signature = self.signature(self.stubs[name], self.sources[same[name]].args)
                self.entry(0, "function", name + signature, f"Another name of `{same[name]}`.")
            else:
                self.function(name, self.stubs[name], self.sources[name])


class PythonModule(SphinxDirective):
    required_arguments = 1

    def run(self):
        self.env.note_reread()  # whenever the site is made: the sources may have changed
        module = Module(self.arguments[0])
        module.write()
        for name in module.undocumented:
            logger.warning("%s.%s has no docstring", module.name, name)
        result = nodes.section()
        result.document = self.state.document
        self.state.nested_parse(StringList(module.lines, source=module.name), self.content_offset, result)
        return result.children


def setup(app):
    app.add_directive("python-module", PythonModule)
    return {"parallel_read_safe": True}
