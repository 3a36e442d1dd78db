#!/usr/bin/python3
"""Checks dimension style facts of a DXF file with ezdxf, an independent reader.

usage: dimstyle_check.py FILE FACT...

Facts (names without blanks):
  $DIMSTYLE=ISO-25                 a header variable
  style:NAME.dimasz=3              an attribute that the style record holds
  style:NAME.annotative=1          the style's annotative flag (AcadAnnotative data)
  style:NAME=absent | present      whether the table holds the style
  entity:HANDLE.dimstyle=NAME      an attribute of an entity
  overrides:HANDLE=dimasz:3,dimtxt:3.5   exactly these DSTYLE overrides ("" for none)
  leader:HANDLE.vertex-1=x,y       a leader's vertex by index (negative from the end), to 1e-6

Numbers compare as numbers, everything else as text. Prints one line per fact
that does not hold and fails if there is any."""
import sys

import ezdxf


def same(actual, expected):
    try:
        return abs(float(actual) - float(expected)) < 1e-9
    except (TypeError, ValueError):
        return str(actual) == expected


def annotative(style):
    if not style.has_xdata("AcadAnnotative"):
        return 0
    flags = [value for code, value in style.get_xdata("AcadAnnotative") if code == 1070]
    return flags[-1] if flags else 0


def attribute_of(e, attribute):
    """The entity's attribute, or its default where the file leaves it out."""
    value = e.dxf.get(attribute)
    return e.dxf.get_default(attribute) if value is None else value


def entity(doc, handle):
    e = doc.entitydb.get(handle.upper())
    if e is None:
        raise KeyError("no entity " + handle)
    return e


def check(doc, fact):
    """None when the fact holds, else what was found."""
    key, _, expected = fact.partition("=")
    if key.startswith("$"):
        actual = doc.header.get(key)
    elif key.startswith("style:") and "." not in key[6:]:
        actual = "present" if doc.dimstyles.has_entry(key[6:]) else "absent"
    elif key.startswith("style:"):
        name, _, attribute = key[6:].rpartition(".")
        if not doc.dimstyles.has_entry(name):
            return "no style " + name
        style = doc.dimstyles.get(name)
        # Absent codes of a style record mean the imperial defaults, which are
        # not ezdxf's defaults: only what the record holds is compared.
        actual = annotative(style) if attribute == "annotative" else style.dxf.get(attribute)
    elif key.startswith("entity:"):
        handle, _, attribute = key[7:].partition(".")
        actual = attribute_of(entity(doc, handle), attribute)
    elif key.startswith("leader:"):
        handle, _, attribute = key[7:].partition(".")
        vertices = list(entity(doc, handle).vertices)
        actual = vertices[int(attribute[len("vertex"):])]
        wanted = [float(c) for c in expected.split(",")]
        return None if all(abs(a - w) < 1e-6 for a, w in zip(actual, wanted)) else repr(tuple(actual))
    elif key.startswith("overrides:"):
        e = entity(doc, key[10:])
        found = e.get_acad_dstyle(doc.dimstyles.get(e.dxf.dimstyle))
        wanted = dict(item.split(":", 1) for item in expected.split(",") if item)
        if set(found) == set(wanted) and all(same(found[k], wanted[k]) for k in wanted):
            return None
        return str(found)
    else:
        return "unknown fact"
    return None if same(actual, expected) else repr(actual)


def main():
    path, facts = sys.argv[1], sys.argv[2:]
    doc = ezdxf.readfile(path)
    failed = 0
    for fact in facts:
        try:
            problem = check(doc, fact)
        except Exception as e:  # a fact that cannot even be looked at does not hold
            problem = "%s: %s" % (type(e).__name__, e)
        if problem is not None:
            failed += 1
            print("FAIL %s: %s, found %s" % (path, fact, problem))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
