"""Compares what a shared library exports with what its headers declare, both ways.

usage: check_exports.py LIBRARY INCLUDE_FOLDER STEM NM

STEM names the headers: a folder ("vx") or a header without its ending
("talm/base"). Everything declared with an ..._API macro must be exported,
and nothing else may be.
"""

import pathlib
import re
import subprocess
import sys


def declarations(header_text):
    """(names of functions and variables, names of classes) that the text declares as exported."""
    text = re.sub(r"/\*.*?\*/|//[^\n]*", "", header_text, flags=re.S)
    text = re.sub(r"^\s*#[^\n]*(\\\n[^\n]*)*", "", text, flags=re.M)
    scopes, names, classes = [], set(), set()
    position = 0
    token = re.compile(
        r"namespace\s+(?P<namespace>[\w:]+)\s*\{"
        r"|class\s+\w+_API\s+(?P<class>\w+)[^{;]*\{"
        r"|(?P<declaration>(extern\s+)?\b(VX|TALM_BASE|TALM_CONFIG)_API\b[^;]*;)"
        r"|(?P<open>\{)|(?P<close>\})")
    while match := token.search(text, position):
        position = match.end()
        prefix = "".join(scope + "::" for scope in scopes if scope)
        if match["namespace"]:
            scopes.append(match["namespace"])
        elif match["class"]:
            classes.add(prefix + match["class"])
            scopes.append("")
        elif match["declaration"]:
            declaration = match["declaration"]
            pointer = re.search(r"\(\s*\*\s*(\w+)\s*\)\s*\(", declaration)
            function = re.search(r"(\w+)\s*\(", re.sub(r"\w+_API", "", declaration))
            variable = re.search(r"(\w+)\s*(\[[^\]]*\]\s*)*;$", declaration)
            if declaration.startswith("extern"):
                name = (pointer or variable)[1]
            else:
                name = function[1]
            names.add(prefix + name)
        elif match["open"]:
            scopes.append("")
        elif scopes:
            scopes.pop()
    return names, classes


def exports(nm, library):
    listing = subprocess.run([nm, "-D", "--defined-only", "--demangle", library],
                             check=True, capture_output=True, text=True).stdout
    return {line.split(" ", 2)[2] for line in listing.splitlines()}


def belongs_to(symbol, classes):
    bare = re.sub(r"^(vtable|typeinfo|typeinfo name|VTT) for ", "", symbol)
    return any(bare == name or bare.startswith(name + "::") for name in classes)


def main(library, include, stem, nm):
    folder = pathlib.Path(include)
    if (folder / stem).is_dir():
        headers = [*(folder / stem).glob("*.h"), *(folder / stem).glob("*.hpp")]
    else:
        headers = [path for ending in (".h", ".hpp") if (path := folder / (stem + ending)).exists()]
    names, classes = set(), set()
    for header in headers:
        more_names, more_classes = declarations(header.read_text(encoding="utf-8"))
        names |= more_names
        classes |= more_classes
    if not names:
        sys.exit("no declaration was found: is this check looking at the right headers?")

    exported = exports(nm, library)
    bare = {re.sub(r"\(.*", "", symbol.replace("[abi:cxx11]", "")) for symbol in exported}
    missing = sorted(name for name in names if name not in bare)
    extra = sorted(symbol for symbol in exported
                   if re.sub(r"\(.*", "", symbol.replace("[abi:cxx11]", "")) not in names
                   and not belongs_to(symbol, classes))
    for name in missing:
        print("declared but not exported:", name)
    for symbol in extra:
        print("exported but not declared:", symbol)
    print(f"{len(names)} names and {len(classes)} classes declared, {len(exported)} symbols exported")
    return 1 if missing or extra else 0


sys.exit(main(*sys.argv[1:]))
