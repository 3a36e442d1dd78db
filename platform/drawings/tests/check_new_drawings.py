#!/usr/bin/python3
"""Open DXF files with ezdxf, an independent reader, and audit them.

Usage: check_new_drawings.py [--strict] FILE.dxf...

Prints one line per file, "OK <file>" or "FAIL <file>", followed by what the
audit found or fixed. A file fails on any audit error; with --strict also on any
fix, since ezdxf silently repairs some faults (a wrong owner, for one) that
other programs reject. Exit status 0 when every file passed, 1 otherwise, 2 on
bad usage or when ezdxf cannot be imported.

Besides the audit, a file fails when the current dimension style named by
$DIMSTYLE is missing, or when a value set in that style's record disagrees with
the header variable of the same name: a new drawing's header mirrors its
current style, so a mismatch means one of the two was written wrong.
"""
import math
import sys

try:
    import ezdxf
except ImportError:
    print("ezdxf is not importable", file=sys.stderr)
    sys.exit(2)


def same_value(a, b):
    if isinstance(a, float) or isinstance(b, float):
        try:
            return math.isclose(float(a), float(b), rel_tol=1e-12, abs_tol=1e-12)
        except (TypeError, ValueError):
            return False
    return a == b


def style_mismatches(doc):
    problems = []
    name = doc.header.get("$DIMSTYLE")
    if name is None:
        return ["no $DIMSTYLE in the header"]
    if not doc.dimstyles.has_entry(name):
        return [f"current dimension style {name!r} is not in the DIMSTYLE table"]
    style = doc.dimstyles.get(name)
    for attrib, value in style.dxfattribs().items():
        # Handles and the angle stored in degrees have no like-valued header twin.
        if not attrib.startswith("dim") or attrib.endswith("_handle") or attrib == "dimjogang":
            continue
        var = "$" + attrib.upper()
        if var not in doc.header:
            continue
        header_value = doc.header[var]
        if not same_value(value, header_value):
            problems.append(f"{var}: header {header_value!r}, style {name!r} {value!r}")
    return problems


def check(path, strict):
    try:
        doc = ezdxf.readfile(path)
    except Exception as exc:  # any failure to load is a failed check
        return False, [f"cannot load: {type(exc).__name__}: {exc}"]
    auditor = doc.audit()
    lines = [f"error: {e.message}" for e in auditor.errors]
    lines += [f"fixed: {f.message}" for f in auditor.fixes]
    mismatches = style_mismatches(doc)
    lines += [f"mismatch: {m}" for m in mismatches]
    ok = not auditor.has_errors and not mismatches and not (strict and auditor.fixes)
    return ok, lines


def main(args):
    strict = "--strict" in args
    paths = [a for a in args if a != "--strict"]
    if not paths:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    failed = 0
    for path in paths:
        ok, lines = check(path, strict)
        print(("OK " if ok else "FAIL ") + path)
        for line in lines:
            print("    " + line)
        failed += 0 if ok else 1
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
