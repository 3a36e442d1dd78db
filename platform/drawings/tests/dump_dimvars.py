#!/usr/bin/python3
"""Prints the dimension variables that ezdxf reads from a DXF file, one per line:
STYLE <tab> style name <tab> variable <tab> value   (only codes present in the record)
HEADER <tab> variable <tab> value                    (only header variables present)
OVERRIDE <tab> entity handle <tab> variable <tab> value (a dimension's or leader's own value)
References are printed as handles (variables ending in _handle) or as names."""
import sys

import ezdxf
from ezdxf.entities.dimstyle import acdb_dimstyle


def main():
    doc = ezdxf.readfile(sys.argv[1])
    out = sys.stdout
    for style in doc.dimstyles:
        for name in sorted(acdb_dimstyle.attribs):
            if not name.startswith("dim") or name in ("dimfit", "dimunit"):
                continue
            if style.dxf.hasattr(name):
                out.write("STYLE\t%s\t%s\t%s\n" % (style.dxf.name, name, style.dxf.get(name)))
    for entity in doc.entitydb.values():
        if entity.dxftype() not in ("DIMENSION", "ARC_DIMENSION", "LARGE_RADIAL_DIMENSION", "LEADER"):
            continue
        style = doc.dimstyles.get(entity.dxf.get("dimstyle", "Standard"))
        if style is None:
            continue
        try:
            overrides = entity.get_acad_dstyle(style)
        except Exception:  # ezdxf gives up on some references; nothing to compare then
            continue
        for name, value in sorted(overrides.items()):
            if name.startswith("dim") and not name.endswith("_handle"):
                out.write("OVERRIDE\t%s\t%s\t%s\n" % (entity.dxf.handle, name, value))
    for key in doc.header.varnames():
        if key.startswith("$DIM") and key not in ("$DIMSTYLE", "$DIMASO", "$DIMSHO", "$DIMASSOC", "$DIMFIT", "$DIMUNIT"):
            value = doc.header.get(key)
            if isinstance(value, (tuple, list)):
                continue
            out.write("HEADER\t%s\t%s\n" % (key[1:].lower(), value))


if __name__ == "__main__":
    main()
