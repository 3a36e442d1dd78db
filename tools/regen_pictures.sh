#!/usr/bin/env bash
# Pictures of drawings before and after DIMREGEN ALL, side by side, as LibreCAD
# prints them (it reads the dimension entities) and as our own renderer draws the
# blocks, plus ezdxf's audit of both. A check to look at by eye, not part of the
# tests: it needs librecad, xvfb, poppler-utils, imagemagick and librsvg2-bin.
#
#   tools/regen_pictures.sh OUTDIR DRAWING.dxf...
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
vexhost="$root/build/app/vexhost"
out="$1"
shift
mkdir -p "$out"
for src in "$@"; do
  b="$(basename "$src" .dxf)"
  cp "$src" "$out/$b.orig.dxf"
  chmod u+w "$out/$b.orig.dxf"
  printf 'DIMREGEN\nALL\nSAVEAS\n%s\nQUIT\n' "$out/$b.regen.dxf" | "$vexhost" --console "$out/$b.orig.dxf" >"$out/$b.log"
  for v in orig regen; do
    (cd "$out" && timeout 120 xvfb-run -a librecad dxf2pdf -a "$b.$v.dxf" >/dev/null 2>&1) || echo "LibreCAD could not print $b.$v.dxf"
    [[ -f "$out/$b.$v.pdf" ]] && pdftoppm -png -r 100 -singlefile "$out/$b.$v.pdf" "$out/$b.$v.librecad"
    "$vexhost" --render "$out/$b.$v.svg" "$out/$b.$v.dxf" >/dev/null && rsvg-convert -w 1200 -b white "$out/$b.$v.svg" -o "$out/$b.$v.ours.png"
  done
  for kind in librecad ours; do
    [[ -f "$out/$b.orig.$kind.png" && -f "$out/$b.regen.$kind.png" ]] &&
      montage -label '%f' "$out/$b.orig.$kind.png" "$out/$b.regen.$kind.png" -tile 2x1 -geometry +4+4 "$out/$b.$kind.side.png"
  done
  /usr/bin/python3 -c "
import sys, ezdxf
a, b = (len(ezdxf.readfile(f).audit().errors) for f in sys.argv[1:3])
print(sys.argv[3], 'ezdxf audit errors before/after:', a, b)" "$out/$b.orig.dxf" "$out/$b.regen.dxf" "$b"
done
