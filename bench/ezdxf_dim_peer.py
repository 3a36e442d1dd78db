#!/usr/bin/python3
"""Times ezdxf making the entities of N dimension blocks, as the peer figure of the
recompute bench.

Usage: ezdxf_dim_peer.py N
Each of N anonymous blocks gets what our recompute writes for a rotated dimension:
two extension lines, the dimension line, two arrowhead solids, the text and three
definition points, at coordinates varied per block. Only making the entities is
timed (best of 3 rounds, each into fresh blocks): no geometry is computed, so the
ratio says how our whole recompute compares with a DXF library writing its result.
Prints one JSON object: {"ezdxf": version, "dimensions": N, "per_dim_us": best}.
"""
import gc
import json
import random
import sys
import time

import ezdxf


def fill(doc, n, rng):
    for i in range(n):
        blk = doc.blocks.new_anonymous_block("D")
        x, y = rng.uniform(-1000, 1000), rng.uniform(-1000, 1000)
        length, off = rng.uniform(0.5, 200), rng.uniform(-50, 50)
        attribs = {"color": 0, "lineweight": -2}
        blk.add_line((x, y + 0.0625), (x, y + off + 0.18), dxfattribs=attribs)
        blk.add_line((x + length, y + 0.0625), (x + length, y + off + 0.18), dxfattribs=attribs)
        blk.add_line((x, y + off), (x + length, y + off), dxfattribs=attribs)
        blk.add_solid([(x, y + off), (x + 0.18, y + off + 0.03), (x + 0.18, y + off - 0.03)], dxfattribs={"color": 0})
        blk.add_solid([(x + length, y + off), (x + length - 0.18, y + off + 0.03),
                       (x + length - 0.18, y + off - 0.03)], dxfattribs={"color": 0})
        blk.add_mtext("\\A1;%.4f" % length, dxfattribs={"insert": (x + length / 2, y + off + 0.15), "char_height": 0.18,
                                                        "attachment_point": 5, "color": 0})
        for p in ((x, y), (x + length, y), (x + length, y + off)):
            blk.add_point(p, dxfattribs={"layer": "Defpoints", "color": 0})


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 2000
    best = float("inf")
    for _ in range(3):
        doc = ezdxf.new("R2018")
        rng = random.Random(12345)
        gc.collect()
        t0 = time.perf_counter()
        fill(doc, n, rng)
        best = min(best, time.perf_counter() - t0)
    print(json.dumps({"ezdxf": ezdxf.__version__, "dimensions": n, "per_dim_us": best / n * 1e6}))


if __name__ == "__main__":
    main()
