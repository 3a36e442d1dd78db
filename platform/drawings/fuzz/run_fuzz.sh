#!/bin/sh
# Builds the DXF reader fuzzer with clang in its own build directory and runs it
# for a while, starting from a few small real files.
#   run_fuzz.sh [seconds] [build dir] [corpus dir]
# Anything found is left in <build dir>/fuzz-artifacts and the script fails.
set -eu

here=$(cd "$(dirname "$0")" && pwd)
repo=$(cd "$here/../../.." && pwd)
seconds=${1:-60}
build=${2:-$repo/build-fuzz}
corpus=${3:-${CORPUS_DIR:-$repo/../shared/corpus}}

command -v clang++ >/dev/null || { echo "clang++ not found" >&2; exit 1; }

if [ ! -f "$build/build.ninja" ]; then
  cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DDIMSTYLES_FUZZ=ON -DDIMSTYLES_TESTS=OFF
fi
ninja -C "$build" -j2 dxf_reader_fuzz

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/seeds" "$build/fuzz-artifacts"

# Small files of several versions and writers; the fuzzer learns the rest from them.
for f in LibreDWG__libredwg__r10-entities.dxf LibreDWG__libredwg__r11-entities-2d.dxf \
         LibreDWG__libredwg__dim.dxf openscad__openscad__dim-all.dxf \
         LibreDWG__libredwg__2000-entities-2d.dxf mozman__ezdxf__duplicate_handles.dxf; do
  if [ -f "$corpus/$f" ]; then cp "$corpus/$f" "$work/seeds/"; fi
done
# The only binary file at hand is large, so two small binary drawings are written here,
# behind its 22-byte marker: two-byte group codes (R13 and later) and one-byte codes (R12).
head -c 22 "$corpus/DomCR__ACadSharp__sample_AC1015_binary.dxf" > "$work/marker"
{ cat "$work/marker"
  printf '\0\0SECTION\0\002\0ENTITIES\0\0\0LINE\0\010\0000\0\012\0\0\0\0\0\0\0\360\077\0\0ENDSEC\0\0\0EOF\0'
} > "$work/seeds/binary.dxf"
{ cat "$work/marker"
  printf '\0SECTION\0\002ENTITIES\0\0LINE\0\0100\0\012\0\0\0\0\0\0\360\077\0ENDSEC\0\0EOF\0'
} > "$work/seeds/binary-r12.dxf"

cat > "$work/dxf.dict" <<'DICT'
"0\x0aSECTION\x0a"
"0\x0aENDSEC\x0a"
"0\x0aTABLE\x0a"
"0\x0aENDTAB\x0a"
"0\x0aBLOCK\x0a"
"0\x0aENDBLK\x0a"
"0\x0aEOF\x0a"
"2\x0aHEADER\x0a"
"2\x0aTABLES\x0a"
"2\x0aBLOCKS\x0a"
"2\x0aENTITIES\x0a"
"2\x0aOBJECTS\x0a"
"2\x0aBLOCK_RECORD\x0a"
"2\x0aDIMSTYLE\x0a"
"9\x0a$ACADVER\x0a1\x0aAC1015\x0a"
"9\x0a$DWGCODEPAGE\x0a3\x0aANSI_1252\x0a"
"9\x0a$HANDSEED\x0a5\x0a"
"\x0d\x0a"
"5\x0a"
"105\x0a"
"330\x0a"
"100\x0a"
"102\x0a{ACAD_REACTORS\x0a"
"1001\x0a"
"0\x0aDICTIONARY\x0a"
"0\x0aDIMENSION\x0a"
"0\x0aLINE\x0a"
"AC1009"
"AC1032"
"*Model_Space"
"*Paper_Space"
"$MODEL_SPACE"
DICT

cd "$work"
"$build/platform/drawings/dxf_reader_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
  -print_final_stats=1 -dict="$work/dxf.dict" -artifact_prefix="$build/fuzz-artifacts/" "$work/seeds"
