#!/usr/bin/python3
"""Print the typed entities of DXF files as ezdxf, an independent reader, sees them.

Usage: dump_entities.py [--audit] FILE.dxf...

For every LINE, CIRCLE, ARC, POINT, SOLID, LWPOLYLINE, INSERT, TEXT, MTEXT and
LEADER (in model space, paper space and block definitions alike) prints a line
"FILE path" and then one line "handle key value" per value: "type" and the
entity's properties under the names below, lists flattened into "key.index"
(a point's x is "start.0"). Numbers are floats (booleans 1 or 0), angles are in
degrees as ezdxf gives them, strings are decoded text in UTF-8. With --audit each file is also audited, and what
the audit found or fixed is printed to stderr: exit status 1 when it found or
fixed anything (ezdxf silently repairs faults that other programs reject), 2 on
bad usage or when ezdxf cannot be imported.
"""
import re
import sys

try:
    import ezdxf
except ImportError:
    print("ezdxf is not importable", file=sys.stderr)
    sys.exit(2)


def text(s):
    # ezdxf leaves \U+XXXX escapes of UTF-8 files as written (it decodes them in
    # older files); they name the same characters either way.
    return re.sub(r"\\U\+([0-9A-Fa-f]{4})", lambda m: chr(int(m.group(1), 16)), s)


def point(v):
    v = tuple(v)
    return [float(v[0]), float(v[1]), float(v[2]) if len(v) > 2 else 0.0]


def properties(e):
    t = e.dxftype()
    d = e.dxf
    if t == "LINE":
        return {"start": point(d.start), "end": point(d.end)}
    if t in ("CIRCLE", "ARC"):
        p = {"center": point(d.center), "radius": d.radius}
        if t == "ARC":
            p.update(start_angle=d.start_angle, end_angle=d.end_angle)
        return p
    if t == "POINT":
        return {"location": point(d.location)}
    if t == "SOLID":
        corners = [d.get("vtx%d" % i) for i in range(4)]
        if corners[3] is None:  # a triangle leaves out its fourth corner
            corners[3] = corners[2]
        return {"corners": [point(c) for c in corners]}
    if t == "LWPOLYLINE":
        vertices = [list(v) for v in e.get_points("xyseb")]
        # ezdxf gives 0 for a width a vertex leaves out; then the constant width applies.
        if not any(v[2] or v[3] for v in vertices):
            for v in vertices:
                v[2] = v[3] = d.const_width
        return {
            "vertices": vertices,
            "closed": bool(e.closed),
            "const_width": d.const_width,
            "elevation": d.elevation,
        }
    if t == "INSERT":
        return {
            "name": d.name,
            "insert": point(d.insert),
            "scale": [d.xscale, d.yscale, d.zscale],
            "rotation": d.rotation,
        }
    if t == "TEXT":
        return {
            "insert": point(d.insert),
            "height": d.height,
            "text": text(d.text),
            "rotation": d.rotation,
            "style": d.style,
        }
    if t == "MTEXT":
        return {
            "insert": point(d.insert),
            "height": d.char_height,
            "width": d.width,
            "attachment": d.attachment_point,
            "text": text(e.text),
            "style": d.style,
            "rotation": e.get_rotation(),
        }
    if t == "LEADER":
        return {
            "vertices": [point(v) for v in e.vertices],
            "arrowhead": bool(d.has_arrowhead),
            # Without code 75 a leader has no hook line (its last segment is as drawn).
            "hookline": bool(d.get("has_hookline", 0)),
            "annotation_type": d.annotation_type,
            "annotation": d.get("annotation_handle", ""),
            "dimstyle": d.dimstyle,
        }
    return None


def flat(key, value, out):
    if isinstance(value, (list, tuple)):
        for i, v in enumerate(value):
            flat(f"{key}.{i}", v, out)
    elif isinstance(value, (bool, int, float)):
        out.append((key, repr(float(value))))
    else:
        if "\n" in value:  # a value is the rest of its line
            raise ValueError(f"line break in {key}")
        out.append((key, value))


def main(args):
    sys.stdout.reconfigure(encoding="utf-8")
    audit = "--audit" in args
    paths = [a for a in args if a != "--audit"]
    if not paths:
        print(__doc__, file=sys.stderr)
        return 2
    status = 0
    for path in paths:
        doc = ezdxf.readfile(path)
        if audit:
            auditor = doc.audit()
            for entry in auditor.errors + auditor.fixes:
                print(f"{path}: {entry.message}", file=sys.stderr)
                status = 1
        print(f"FILE {path}")
        for e in doc.entitydb.values():
            if e.is_alive and (p := properties(e)) is not None:
                out = [("type", e.dxftype())]
                for key, value in p.items():
                    flat(key, value, out)
                for key, value in out:
                    print(e.dxf.handle, key, value)
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
