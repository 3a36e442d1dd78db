#!/usr/bin/python3
"""Times ezdxf loading and saving DXF files, as the peer figures of the DXF bench.

Usage: ezdxf_peer.py FILE...
Prints one JSON object: {"ezdxf": version, "files": {path: {"load_s": best, "save_s": best}}};
a file ezdxf cannot handle gets "error" instead of the times.
Load is ezdxf.readfile; save is Drawing.write into a StringIO (no disk, no encoding),
which is the closest match to our save into a string in memory.
"""
import gc
import io
import json
import sys
import time

import ezdxf

RUNS = 3  # best of 3: ezdxf takes seconds per large file


def best_of(fn):
    best = float("inf")
    result = None
    for _ in range(RUNS):
        gc.collect()
        t0 = time.perf_counter()
        result = fn()
        best = min(best, time.perf_counter() - t0)
    return best, result


def measure(path):
    load_s, doc = best_of(lambda: ezdxf.readfile(path))

    def save():
        stream = io.StringIO()
        doc.write(stream)
        return stream

    save_s, _ = best_of(save)
    return {"load_s": load_s, "save_s": save_s}


def main():
    files = {}
    for path in sys.argv[1:]:
        try:
            files[path] = measure(path)
        except Exception as e:  # a peer failure must not hide our own figures
            files[path] = {"error": "%s: %s" % (type(e).__name__, e)}
    json.dump({"ezdxf": ezdxf.__version__, "files": files}, sys.stdout)
    sys.stdout.write("\n")


if __name__ == "__main__":
    main()
