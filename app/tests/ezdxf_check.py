#!/usr/bin/python3
"""Reads DXF files written by vexhost with ezdxf, an independent reader, and
compares them with the files they were made from.

usage: ezdxf_check.py ORIGINAL WRITTEN [--lossy]
       ezdxf_check.py --new WRITTEN   (a drawing of ours alone: no audit errors)

Fails when ezdxf cannot read WRITTEN, when its audit finds errors that it does not
find in ORIGINAL, or when the counts of table records, entities and objects differ
(--lossy: WRITTEN may hold fewer, as when saving to R12 leaves things out)."""
import collections
import sys

import ezdxf
from ezdxf import recover


def load(path):
    try:
        doc = ezdxf.readfile(path)
    except ezdxf.DXFStructureError:
        doc, _ = recover.readfile(path)
    return doc


def census(doc):
    c = collections.Counter()
    for table in (doc.layers, doc.linetypes, doc.styles, doc.dimstyles, doc.appids, doc.views, doc.ucs, doc.viewports):
        c["table " + table.__class__.__name__] = len(list(table))
    for e in doc.entitydb.values():
        if e.is_alive:
            c[e.dxftype()] += 1
    return c


def audit_errors(doc):
    auditor = doc.audit()
    return collections.Counter(str(e.code) for e in auditor.errors)


def main():
    args = [a for a in sys.argv[1:] if not a.startswith("--")]
    lossy = "--lossy" in sys.argv
    if "--new" in sys.argv:
        doc = ezdxf.readfile(args[0])
        errors = audit_errors(doc)
        print(("FAIL %s\n  audit errors: %s" % (args[0], dict(errors))) if errors else "OK %s" % args[0])
        return 1 if errors else 0
    original, written = args
    a = load(original)
    try:
        # R12 has stricter names than later versions: ezdxf's recover mode reads
        # the names that its plain reader refuses (escaped characters).
        try:
            b = load(written)
        except ezdxf.DXFValueError:
            if not lossy:
                raise
            b = recover.readfile(written)[0]
    except Exception as e:  # any failure to read what we wrote is the finding
        print("FAIL %s\n  ezdxf cannot read it: %s: %s" % (written, type(e).__name__, e))
        return 1
    problems = []
    new_errors = audit_errors(b) - audit_errors(a)
    if new_errors:
        problems.append("audit errors not in the original: %s" % dict(new_errors))
    ca, cb = census(a), census(b)
    for key in sorted(set(ca) | set(cb)):
        if ca[key] != cb[key] and not (lossy and cb[key] <= ca[key]):
            problems.append("%s: %d in the original, %d written" % (key, ca[key], cb[key]))
    if problems:
        print("FAIL %s" % written)
        for p in problems[:20]:
            print("  " + p)
        return 1
    print("OK %s" % written)
    return 0


if __name__ == "__main__":
    sys.exit(main())
