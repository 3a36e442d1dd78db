#!/usr/bin/python3
"""Writes an R2018 drawing with 5,000 LINE entities and 5,000 linear and aligned
dimensions for the DXF bench. The dimensions have no blocks yet: bench/run has our
own DIMREGEN make them, so that the file holds what our recompute writes.

Usage: make_dims.py OUTPUT.dxf
"""
import sys

import ezdxf

N_LINES = 5000
N_DIMS = 5000


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_dims.py OUTPUT.dxf")
    doc = ezdxf.new("R2018", setup=True)
    msp = doc.modelspace()
    # A 100-column grid keeps the drawing extents plausible and every dimension
    # distinct, so no two anonymous blocks are the same.
    for i in range(N_LINES):
        x, y = (i % 100) * 20.0, (i // 100) * 20.0
        msp.add_line((x, y), (x + 10.0 + (i % 7), y + (i % 5)))
    for i in range(N_DIMS):
        x, y = (i % 100) * 20.0, 1200.0 + (i // 100) * 20.0
        p1, p2 = (x, y), (x + 8.0 + (i % 9), y + (i % 4))
        if i % 2 == 0:
            angle = 0.0 if i % 4 == 0 else 90.0
            msp.add_linear_dim(base=(x, y + 5.0), p1=p1, p2=p2, angle=angle, dimstyle="EZDXF")
        else:
            msp.add_aligned_dim(p1=p1, p2=p2, distance=4.0, dimstyle="EZDXF")
    doc.saveas(sys.argv[1])


if __name__ == "__main__":
    main()
