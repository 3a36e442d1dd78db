#!/usr/bin/python3
"""Remakes samples/dimstyles.dxf, the drawing that `scripts/run` opens.

Two small metric parts dimensioned with several dimension styles, child
styles and per-dimension overrides, plus a legend row for each named style.

    /usr/bin/python3 samples/make_sample.py [OUTPUT]

Needs the Debian package python3-ezdxf.
"""

import math
import pathlib
import re
import sys

import ezdxf
from ezdxf.entities.dimension import ArcDimension
from ezdxf.entities.dimstyle import DimStyle
from ezdxf.math import Vec2
from ezdxf.render.dim_base import format_text

OUT = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else (
    pathlib.Path(__file__).resolve().parent / "dimstyles.dxf")

# Values of a new imperial drawing's "Standard" style. CAD programs write a
# DIMSTYLE record with only the codes that differ from these, so every style
# below is written that way too; absent codes then mean exactly these values.
IMPERIAL = dict(
    dimscale=1.0, dimasz=0.18, dimexo=0.0625, dimdli=0.38, dimexe=0.18,
    dimrnd=0.0, dimdle=0.0, dimtp=0.0, dimtm=0.0, dimfxl=1.0, dimjogang=45.0,
    dimtxt=0.18, dimcen=0.09, dimtsz=0.0, dimaltf=25.4, dimlfac=1.0,
    dimtvp=0.0, dimtfac=1.0, dimgap=0.09, dimaltrnd=0.0, dimtfill=0,
    dimtfillclr=0, dimtol=0, dimlim=0, dimtih=1, dimtoh=1, dimse1=0,
    dimse2=0, dimtad=0, dimzin=0, dimazin=0, dimarcsym=0, dimalt=0,
    dimaltd=2, dimtofl=0, dimsah=0, dimtix=0, dimsoxd=0, dimclrd=0,
    dimclre=0, dimclrt=0, dimadec=0, dimdec=4, dimtdec=4, dimaltu=2,
    dimalttd=2, dimaunit=0, dimfrac=0, dimlunit=2, dimdsep=46, dimtmove=0,
    dimjust=0, dimsd1=0, dimsd2=0, dimtolj=1, dimtzin=0, dimaltz=0,
    dimalttz=0, dimupt=0, dimatfit=3, dimfxlon=0, dimlwd=-2, dimlwe=-2,
    dimblk="", dimblk1="", dimblk2="", dimldrblk="",
)

INCH = 0.03937007874016  # 1/25.4 as CAD programs write it

# A new metric drawing's "ISO-25": these twenty values differ from imperial.
METRIC = dict(
    IMPERIAL, dimasz=2.5, dimexo=0.625, dimdli=3.75, dimexe=1.25, dimtih=0,
    dimtoh=0, dimtad=1, dimzin=8, dimtxt=2.5, dimcen=2.5, dimaltf=INCH,
    dimgap=0.625, dimaltd=3, dimtofl=1, dimdec=2, dimtdec=2, dimalttd=3,
    dimdsep=44, dimtolj=0, dimtzin=8,
)

STYLES = {
    "Standard": IMPERIAL,
    "ISO-25": METRIC,
    # Millimetres shown as feet and inches: DIMLFAC turns them into inches.
    "Architectural": dict(
        METRIC, dimlunit=4, dimlfac=INCH, dimdec=4, dimzin=0, dimdsep=46,
        dimblk="ARCHTICK", dimtad=1, dimdle=1.25, dimtih=0, dimtoh=0,
    ),
    "Mechanical": dict(
        METRIC, dimtol=1, dimtp=0.1, dimtm=0.05, dimdec=3, dimtdec=3,
        dimzin=0, dimtzin=0, dimtfac=0.7, dimtolj=1, dimdsep=46,
        dimalt=1, dimaltf=INCH, dimaltd=3, dimalttd=3,
    ),
    "Annotative": dict(METRIC, dimscale=0.0),
    # Child styles: what ISO-25 does differently for one kind of dimension.
    "ISO-25$0": dict(METRIC, dimblk="OPEN30"),
    "ISO-25$2": dict(METRIC, dimaunit=1, dimadec=2),
    "ISO-25$3": dict(METRIC, dimtoh=1, dimcen=-2.5),
    "ISO-25$4": dict(METRIC, dimtoh=1, dimcen=0.0),
    "ISO-25$7": dict(METRIC, dimldrblk="DOT"),
}

# Files written by CAD programs give an arc length dimension the angular type
# code 5 (plus 32) in R2018 too; the library's own choice there would be 8.
ArcDimension.versioned_dimtype = lambda self, ver: (
    (self.dxf.dimtype & 0xFFF0) | 5)

doc = ezdxf.new("R2018", setup=False, units=4)  # millimetres
doc.header["$MEASUREMENT"] = 1
doc.header["$LUNITS"] = 2
doc.header["$LTSCALE"] = 1.0
doc.linetypes.add("CENTER", [20.0, 12.0, -3.0, 2.0, -3.0],
                  description="Center ____ _ ____ _ ____")
doc.layers.add("Part", color=7, lineweight=50)
doc.layers.add("Center", color=1, linetype="CENTER", lineweight=18)
doc.layers.add("Dimensions", color=5, lineweight=18)
doc.layers.add("Notes", color=7, lineweight=25)
doc.appids.add("AcadAnnotative")

for name, values in STYLES.items():
    style = doc.dimstyles.get(name) if name in doc.dimstyles else \
        doc.dimstyles.add(name)
    for key, value in values.items():
        if key in ("dimrnd", "dimaltrnd") and not value:
            continue  # the library would round to whole units on a stored 0
        style.dxf.set(key, value)
    style.dxf.dimtxsty = "Standard"

doc.dimstyles.get("Annotative").set_xdata("AcadAnnotative", [
    (1000, "AnnotativeData"), (1002, "{"), (1070, 1), (1070, 1), (1002, "}"),
])

msp = doc.modelspace()
PART = {"layer": "Part"}
DIM = {"layer": "Dimensions"}
CENTER = {"layer": "Center"}
NOTE = {"layer": "Notes"}
CHILD = {"linear": "$0", "angular": "$2", "diameter": "$3", "radius": "$4"}
fixups = []  # (renderer, builder, style) of every rendered dimension


def render(builder, style, kind=None):
    """Renders a dimension's block the way a CAD program would: with the
    values of the style's child for this kind when such a child exists.
    The dimension itself keeps naming the parent style."""
    child = style + CHILD.get(kind, "#")
    if child in doc.dimstyles:
        builder.dimension.dxf.dimstyle = child
        builder.dimstyle = doc.dimstyles.get(child)
    renderer = builder.render()
    builder.dimension.dxf.dimstyle = style
    fixups.append((renderer, builder, style))
    return renderer


def line(a, b, attribs=PART):
    msp.add_line(a, b, dxfattribs=attribs)


def circle(c, r, attribs=PART):
    msp.add_circle(c, r, dxfattribs=attribs)


def centre_cross(c, half):
    line((c[0] - half, c[1]), (c[0] + half, c[1]), CENTER)
    line((c[0], c[1] - half), (c[0], c[1] + half), CENTER)


def text(s, at, height=2.5):
    msp.add_text(s, height=height, dxfattribs=dict(NOTE, insert=at))


def linear(p1, p2, base, style, angle=0, override=None):
    b = msp.add_linear_dim(base=base, p1=p1, p2=p2, angle=angle,
                           dimstyle=style, override=override, dxfattribs=DIM)
    return render(b, style, "linear")


# --- Part A: a plate 180 x 110 with a bore, four holes, a V-notch, a
# slanted right edge and a rounded corner.
W, H = 180.0, 110.0
V = Vec2(170.0, H)                  # theoretical sharp corner of the round
A = Vec2(W, 0.0)                    # foot of the slanted edge
R = 25.0
edge = (V - A).normalize()
inward = Vec2(-edge.y, edge.x)      # points into the plate
# Centre of the round: R below the top edge and R inside the slanted edge.
t = (R - inward.dot(Vec2(0, H - R) - A)) / inward.x
C = Vec2(t, H - R)
tan_slant = C - inward * R
tan_top = Vec2(C.x, H)
slant_deg = math.degrees(math.atan2(-inward.y, -inward.x))

line((0, 0), A)
line(A, tan_slant)
msp.add_arc(C, R, slant_deg, 90, dxfattribs=PART)
line(tan_top, (100, H))
line((100, H), (90, 98))
line((90, 98), (80, H))
line((80, H), (0, H))
line((0, H), (0, 0))
BORE = (90.0, 55.0)
circle(BORE, 20)
centre_cross(BORE, 24)
HOLES = [(15.0, 15.0), (160.0, 15.0), (15.0, 95.0), (160.0, 95.0)]
for h in HOLES:
    circle(h, 4)
    centre_cross(h, 6)

# Hole positions chained along the bottom and the left, overall sizes outside.
linear((0, 0), (15, 15), (0, -10), "ISO-25")
linear((15, 15), BORE, (0, -10), "ISO-25")
linear(BORE, (160, 15), (0, -10), "ISO-25")
linear((0, 0), A, (0, -24), "ISO-25", override={"dimtxt": 3.5})
linear((0, 0), (15, 15), (-10, 0), "ISO-25", angle=90)
linear((15, 15), (15, 95), (-10, 0), "ISO-25", angle=90,
       override={"dimtol": 1, "dimtp": 0.2, "dimtm": 0.2})
linear((0, 0), (0, H), (-24, 0), "Annotative", angle=90)

b = msp.add_angular_dim_3p(base=(90, 119), center=(90, 98), p1=(100, H),
                           p2=(80, H), dimstyle="ISO-25", dxfattribs=DIM)
render(b, "ISO-25", "angular")
# The angle runs from the second line to the first, counter-clockwise: here
# from the bottom edge produced beyond the corner up to the slanted edge.
b = msp.add_angular_dim_2l(
    base=A + Vec2.from_deg_angle(45, 18), line1=(A, V),
    line2=(A, A + Vec2(20, 0)), dimstyle="ISO-25", dxfattribs=DIM)
render(b, "ISO-25", "angular")
b = msp.add_radius_dim(C, radius=R, angle=65,
                       location=C + Vec2.from_deg_angle(65, R + 12),
                       dimstyle="ISO-25", dxfattribs=DIM)
render(b, "ISO-25", "radius")
b = msp.add_diameter_dim(BORE, radius=20, angle=35,
                         location=(118, 78), dimstyle="Mechanical",
                         dxfattribs=DIM)
render(b, "Mechanical", "diameter")
b = msp.add_diameter_dim(HOLES[2], radius=4, angle=75,
                         location=(22, 126), text="4x <>",
                         dimstyle="ISO-25", dxfattribs=DIM)
render(b, "ISO-25", "diameter")

# A note pointing at the plate's face; CAD programs draw the leader's arrow
# from its style (ISO-25$7: a dot), here with a smaller size of its own.
msp.add_leader([(45, 80), (50, 126), (54, 126)], dimstyle="ISO-25",
                        override={"dimasz": 1.5}, dxfattribs=DIM)
msp.add_mtext("PLATE t=8", dxfattribs=dict(
    NOTE, char_height=2.5, insert=(55, 126), attachment_point=4))

# --- Part B: a strip with a curved top edge and a slanted end, dimensioned
# by ordinates from its lower left corner.
O = Vec2(0.0, -100.0)


def p(x, y):
    return O + Vec2(x, y)


CHORD, SAG = 110.0, 8.0
RB = (CHORD / 2) ** 2 / (2 * SAG) + SAG / 2
CB = p(CHORD / 2, 30 + SAG - RB)
half = math.degrees(math.asin((CHORD / 2) / RB))
line(p(0, 0), p(100, 0))
line(p(100, 0), p(110, 30))
msp.add_arc(CB, RB, 90 - half, 90 + half, dxfattribs=PART)
line(p(0, 30), p(0, 0))
for x in (20.0, 55.0, 90.0):
    circle(p(x, 15), 4)
    centre_cross(p(x, 15), 6)

for x, y in ((0, 0), (20, 15), (55, 15), (90, 15), (100, 0)):
    b = msp.add_ordinate_x_dim(p(x, y), (0, -12 - y), origin=O,
                               dimstyle="ISO-25", dxfattribs=DIM)
    render(b, "ISO-25", "ordinate")
for x, y in ((0, 0), (20, 15), (0, 30)):
    b = msp.add_ordinate_y_dim(p(x, y), (-12 - x, 0), origin=O,
                               dimstyle="ISO-25", dxfattribs=DIM)
    render(b, "ISO-25", "ordinate")
b = msp.add_arc_dim_cra(CB, RB, 90 - half, 90 + half, 8, dimstyle="ISO-25",
                        dxfattribs=DIM)
render(b, "ISO-25", "arc")
b = msp.add_aligned_dim(p(100, 0), p(110, 30), -10, dimstyle="Mechanical",
                        override={"dimalt": 0}, dxfattribs=DIM)
render(b, "Mechanical", "aligned")
# The library builds this as a rotated dimension; make it a true aligned one
# (type 1, no rotation angle). Its block is the same either way.
b.dimension.dxf.dimtype = 1 | 32
b.dimension.dxf.discard("angle")

# --- Legend: the same 60 mm measured with each named style.
LX, LY = 235.0, 118.0
text("DIMENSION STYLES", (LX, LY + 12), 5)
rows = [
    ("ISO-25 (current; linear dimensions use ISO-25$0)", "ISO-25", None),
    ("Standard (imperial sizes, DIMSCALE 12 override)", "Standard",
     {"dimscale": 12}),
    ("Architectural (feet and inches)", "Architectural", None),
    ("Mechanical (tolerance and inches)", "Mechanical", None),
    ("Annotative (DIMSCALE 0)", "Annotative", None),
]
for i, (label, style, override) in enumerate(rows):
    y = LY - 26 * i
    text(label, (LX, y), 3)
    line((LX, y - 18), (LX + 60, y - 18), NOTE)
    linear((LX, y - 18), (LX + 60, y - 18), (0, y - 10), style,
           override=override)

msp.add_mtext(
    "Child styles of ISO-25:\\P"
    "ISO-25$0  linear: open 30\u00b0 arrows\\P"
    "ISO-25$2  angular: degrees and minutes\\P"
    "ISO-25$3  diameter: horizontal text, centre lines\\P"
    "ISO-25$4  radius: horizontal text, no centre mark\\P"
    "ISO-25$7  leader: dot arrow",
    dxfattribs=dict(NOTE, char_height=3, insert=(LX, LY - 26 * 5 + 4)))
text("PART A  PLATE", (0, 140), 5)
text("PART B  STRIP", (0, -45), 5)


# --- Text that the library does not format: feet and inches, and the
# alternate (inch) value in brackets.
def feet_inches(inches, denom=16):
    n = round(inches * denom)
    feet, rest = divmod(n, 12 * denom)
    whole, frac = divmod(rest, denom)
    s = f"{feet}'-{whole}" if feet else f"{whole}"
    if frac:
        g = math.gcd(frac, denom)
        s += f"{{\\H1x;\\S{frac // g}/{denom // g};}}"
    return s + '"'


def decimal(value, get):
    return format_text(value, dimrnd=get("dimrnd") or None,
                       dimdec=get("dimdec"), dimzin=get("dimzin"),
                       dimdsep=chr(get("dimdsep")))


NUMBER = re.compile(r"\d+(?:[.,]\d+)?")
for renderer, builder, style in fixups:
    block = doc.blocks.get(builder.dimension.dxf.geometry)
    for e in block:
        # The block's geometry sits on the dimension's layer.
        if e.dxftype() != "POINT":
            e.dxf.layer = builder.dimension.dxf.layer
    mtexts = [e for e in block if e.dxftype() == "MTEXT"]
    if not mtexts:
        continue
    mtext = mtexts[0]
    value = renderer.measurement.raw_value
    get = builder.get
    if builder.dimension.dxftype() == "ARC_DIMENSION":
        # The arc symbol goes before the text (DIMARCSYM 0); the library
        # would write its own stand-in and round like an angle.
        mtext.text = "\u2312" + decimal(value, get)
    if "<>" in mtext.text:
        # A user text "4x <>": the measurement replaces the brackets.
        prefix = "%%c" if builder.dimension.dimtype == 3 else ""
        mtext.text = mtext.text.replace("%%c", "", 1).replace(
            "<>", prefix + decimal(value, get))
    if get("dimlunit", 2) == 4:
        shown = feet_inches(value * get("dimlfac", 1.0))
        mtext.text = NUMBER.sub(shown.replace("\\", "\\\\"), mtext.text, 1)
    if get("dimalt", 0):
        dec, tdec, f = get("dimaltd"), get("dimalttd"), get("dimaltf")
        alt = f"{value * f:.{dec}f}"
        if get("dimtol", 0):
            alt += (f"{{\\H{get('dimtfac'):.2f}x;\\S+{get('dimtp') * f:.{tdec}f}"
                    f"^ -{get('dimtm') * f:.{tdec}f};}}")
        mtext.text += f" [{alt}]"

doc.dimstyles.get("ISO-25").copy_to_header(doc)
doc.header["$DIMSTYLE"] = "ISO-25"
doc.header["$DIMJOGANG"] = math.radians(45)  # the header holds radians
doc.header["$DIMFXL"] = 1.0
doc.header["$DIMADEC"] = 0
doc.header["$DIMAZIN"] = 0
# Current settings that differ from the current style: the drawing opens with
# style overrides, as after a user set DIMASZ and DIMTXT on the command line.
doc.header["$DIMASZ"] = 3.0
doc.header["$DIMTXT"] = 3.5
doc.header["$DIMCLRD"] = 1

# Write each style as CAD programs do: only the codes whose value differs from
# imperial, plus name, flags and text style. The library writes every code, so
# the saved records are thinned out tag by tag.
DEFAULT_BY_CODE = {}
for key, default in IMPERIAL.items():
    attr = DimStyle.DXFATTRIBS.get(key)
    if attr.code > 0 and not isinstance(default, str):
        DEFAULT_BY_CODE[attr.code] = default


def thin_dimstyles(lines):
    out, i, in_record, flags_seen = [], 0, False, False
    while i < len(lines):
        code, value = int(lines[i]), lines[i + 1]
        if code == 0:
            in_record = value == "DIMSTYLE"
            flags_seen = False
        elif in_record and code == 70 and not flags_seen:
            flags_seen = True  # the first 70 is the record's flag word
        elif in_record and code in DEFAULT_BY_CODE and code < 1000:
            if abs(float(value) - DEFAULT_BY_CODE[code]) < 1e-12:
                i += 2
                continue
        out += [lines[i], lines[i + 1]]
        i += 2
    return out


# Same input, same file: fixed dates and GUIDs, classes in a fixed order.
ezdxf.options.write_fixed_meta_data_for_testing = True
doc.ezdxf_metadata()["CREATED_BY_EZDXF"] = (
    f"{ezdxf.__version__} @ 2000-01-01T00:00:00.000000+00:00")
doc.classes.add_required_classes(doc.dxfversion)
for dxftype in doc.entitydb.dxf_types_in_use():
    doc.classes.add_class(dxftype)
doc.classes.classes = dict(sorted(doc.classes.classes.items()))
doc.saveas(OUT)
with open(OUT, encoding="utf8", newline="") as f:
    raw = f.read()
eol = "\r\n" if "\r\n" in raw else "\n"
lines = raw.split(eol)
tail = lines.pop() if lines[-1] == "" else None
lines = thin_dimstyles(lines)
with open(OUT, "w", encoding="utf8", newline="") as f:
    f.write(eol.join(lines) + (eol if tail is not None else ""))
print(f"wrote {OUT}")
