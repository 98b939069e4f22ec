"""What the public headers declare for export, and how compilers name it. The names come from a
compiler, clang, which knows both schemes: Microsoft's and that of GCC."""
import collections
import json
import pathlib
import subprocess

TESTS = pathlib.Path(__file__).resolve().parent.parent
HEADERS = TESTS.parent / "include"

MICROSOFT = "x86_64-pc-windows-msvc"
GCC_WINDOWS = "x86_64-w64-mingw32"
GCC_LINUX = "x86_64-linux-gnu"

EXPORT_ATTRIBUTES = {"DLLImportAttr", "VisibilityAttr"}
FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl"}

# owner is the class, None for flat functions; kind is that of the syntax tree.
Declaration = collections.namedtuple("Declaration", "kind owner name symbol polymorphic")


def output_of(*command, stdin=None):
    return subprocess.run(command, input=stdin, capture_output=True, check=True, text=True).stdout


def _attributes(node):
    return {inner["kind"] for inner in node.get("inner", ()) if inner["kind"].endswith("Attr")}


def _walk(node, owner=None):
    """The exported functions below a node of the syntax tree."""
    if node["kind"] == "CXXRecordDecl":
        owner = node
    of_class = owner is not None and "VisibilityAttr" in _attributes(owner)
    if node["kind"] in FUNCTIONS and not node.get("isImplicit"):
        if of_class or _attributes(node) & EXPORT_ATTRIBUTES:
            yield node, owner
    for inner in node.get("inner", ()):
        if "kind" in inner:
            yield from _walk(inner, owner)


def declarations(target):
    """All declarations for export, with their symbols on a target."""
    builtin = output_of("clang++", "-print-resource-dir").strip() + "/include"
    tree = output_of(
        "clang++", f"--target={target}", "-std=c++17", "-fsyntax-only", "-Xclang", "-ast-dump=json",
        "-ffreestanding", "-nostdinc", "-isystem", str(TESTS / "msabi/include"),
        "-isystem", builtin, f"-I{HEADERS}", "-x", "c++", "-",
        stdin="#include <pgkit/pgkit.h>\n")
    for node, owner in _walk(json.loads(tree)):
        polymorphic = owner is not None and owner["definitionData"].get("isPolymorphic", False)
        yield Declaration(node["kind"], owner and owner["name"], node["name"], node["mangledName"],
                          polymorphic)


def microsoft_symbols():
    """The symbols that a program of Microsoft's ABI asks for."""
    symbols = set()
    for declaration in declarations(MICROSOFT):
        symbol = declaration.symbol
        if declaration.kind == "CXXDestructorDecl":
            # The syntax tree names another variant than the one that is called.
            access = "U" if declaration.polymorphic else "Q"
            symbol = f"??1{declaration.owner}@@{access}EAA@XZ"
        symbols.add(symbol)
        if declaration.polymorphic:
            symbols.add(f"??_7{declaration.owner}@@6B@")
    return symbols


def gcc_symbols(target):
    """The symbols that GCC makes of the declarations."""
    symbols = set()
    for declaration in declarations(target):
        owner = f"{len(declaration.owner)}{declaration.owner}" if declaration.owner else ""
        symbols.add(declaration.symbol)
        # Constructors and destructors come in variants for complete objects and for bases,
        # destructors also in one that frees the object.
        if declaration.kind == "CXXConstructorDecl":
            symbols.add(declaration.symbol.replace(f"{owner}C1", f"{owner}C2"))
        if declaration.kind == "CXXDestructorDecl":
            symbols.add(declaration.symbol.replace(f"{owner}D1", f"{owner}D2"))
        if declaration.polymorphic:
            symbols |= {f"_ZN{owner}D0Ev", f"_ZTV{owner}", f"_ZTI{owner}"}
            if target == GCC_LINUX:  # part of the type information, elsewhere not shown
                symbols.add(f"_ZTS{owner}")
    return symbols
