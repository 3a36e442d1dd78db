#!/usr/bin/python3
"""Open a DXF file with ezdxf, an independent reader, audit it and list blocks.

Usage: check_blocks.py FILE.dxf [BLOCK...]

Prints one "AUDIT error: ..." or "AUDIT fixed: ..." line per audit finding (a
fix counts, since ezdxf silently repairs faults that other programs reject),
then, for each named block (every block when none is named), "BLOCK <name>"
followed by one line per entity as ezdxf sees it:
"ENTITY <type> <layer> <color> <linetype> <lineweight>" (linetype upper-cased,
"-" for an absent lineweight), or "MISSING <name>". Exit status 0 when the file
loads, 1 when it does not, 2 on bad usage or when ezdxf cannot be imported.
"""
import re
import sys

try:
    import ezdxf
except ImportError:
    print("ezdxf is not importable", file=sys.stderr)
    sys.exit(2)


# ezdxf 0.18 reads the SEQEND of a POLYLINE inside an R12 block without an owner
# and deletes it on audit; it does so for R12 files that CAD programs and ezdxf itself
# write as well, so in R12 files this finding says nothing about the file.
R12_SEQEND_QUIRK = re.compile(r"Deleted SEQEND\(#[0-9A-F]+\) entity with invalid owner handle #None\.")


def describe(entity):
    dxf = entity.dxf
    lineweight = dxf.get("lineweight")
    return " ".join([
        "ENTITY",
        entity.dxftype(),
        dxf.get("layer", "0"),
        str(dxf.get("color", 256)),
        dxf.get("linetype", "BYLAYER").upper(),
        "-" if lineweight is None else str(lineweight),
    ])


def main(args):
    if not args:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    path, names = args[0], args[1:]
    try:
        doc = ezdxf.readfile(path)
    except Exception as exc:  # any failure to load is a failed check
        print(f"cannot load {path}: {type(exc).__name__}: {exc}")
        return 1
    auditor = doc.audit()
    for e in auditor.errors:
        print(f"AUDIT error: {e.message}")
    for f in auditor.fixes:
        if doc.dxfversion <= "AC1009" and R12_SEQEND_QUIRK.fullmatch(f.message):
            continue
        print(f"AUDIT fixed: {f.message}")
    for name in names or [b.name for b in doc.blocks]:
        block = doc.blocks.get(name)
        if block is None:
            print(f"MISSING {name}")
            continue
        print(f"BLOCK {block.name}")
        for entity in block:
            print(describe(entity))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
