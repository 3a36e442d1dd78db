#!/usr/bin/env bash
# Every corpus drawing through vexhost: saved unchanged it must come back byte for
# byte; saved in the other format, in another version and as R12 it must read in
# ezdxf (an independent reader) with the same tables, entities and objects and no
# new audit errors (R12 may hold fewer: it cannot hold everything).
# usage: corpus_conversions.sh VEXHOST CORPUS_DIR
set -u
vexhost="$1"; corpus="$2"; here="$(cd "$(dirname "$0")" && pwd)"
out="$(mktemp -d)"; [ -n "${KEEP:-}" ] || trap 'rm -rf "$out"' EXIT
check_one() {
  local f="$1" vexhost="$2" out="$3" here="$4"
  local b; b="$(basename "$f" .dxf)"
  local ver; ver="$(grep -m1 -a -A3 'ACADVER' "$f" | grep -a -o -m1 'AC10[0-9][0-9]')"
  local fmt=Binary own=Ascii; head -c 22 "$f" | grep -aq 'Binary DXF' && fmt=Ascii own=Binary
  local script="SAVEAS\n$out/$b.same.dxf\nSAVEAS\n$fmt\n$out/$b.fmt.dxf\n"
  local other=""
  case "$ver" in
    AC1015|AC1018|AC1021|AC1024|AC1027) other=R2018 ;;
    AC1032) other=R2000 ;;
  esac
  [ -n "$other" ] && script="${script}SAVEAS\n$own\n$other\n$out/$b.ver.dxf\nSAVEAS\nR12\n$out/$b.r12.dxf\n"
  printf "${script}QUIT\n" | "$vexhost" --console "$f" > "$out/$b.log" 2>&1 || { echo "FAIL $b: vexhost exited $?"; cat "$out/$b.log"; return 1; }
  local rc=0
  cmp -s "$f" "$out/$b.same.dxf" || { echo "FAIL $b: not byte-identical"; rc=1; }
  /usr/bin/python3 "$here/ezdxf_check.py" "$f" "$out/$b.fmt.dxf" || rc=1
  if [ -n "$other" ]; then
    /usr/bin/python3 "$here/ezdxf_check.py" "$f" "$out/$b.ver.dxf" || rc=1
    /usr/bin/python3 "$here/ezdxf_check.py" --lossy "$f" "$out/$b.r12.dxf" || rc=1
  fi
  return $rc
}
export -f check_one
ls "$corpus"/*.dxf | xargs -P 2 -I{} bash -c 'check_one "$@"' _ {} "$vexhost" "$out" "$here" > "$out/results.txt" 2>&1
status=$?
grep -v '^OK' "$out/results.txt" | head -100
passed=$(grep -c '^OK' "$out/results.txt"); failed=$(grep -c '^FAIL' "$out/results.txt")
echo "$passed passed, $failed failed"
[ $status -eq 0 ] && [ "$failed" -eq 0 ]
