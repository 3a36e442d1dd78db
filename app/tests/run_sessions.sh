#!/usr/bin/env bash
# Console sessions with expected transcripts. Each sessions/NAME.txt holds the
# arguments on its first line ("args: ..."), the exit status on its second
# ("status: N"), then the lines fed to vexhost after a line "input:", and the
# expected output after a line "output:". @TMP@ stands for a fresh temporary
# folder, @CORPUS@ for the shared corpus and @SAMPLES@ for the project's sample
# drawings. Lines "check: FILE FACT..." before "input:" name facts about a
# drawing the session saved, which dimstyle_check.py verifies with ezdxf.
# usage: run_sessions.sh VEXHOST CORPUS_DIR
set -u
vexhost="$(realpath "$1")"; corpus="$2"; here="$(cd "$(dirname "$0")" && pwd)"
samples="$(cd "$here/../../samples" && pwd)"
passed=0; failed=0
for spec in "$here"/sessions/*.txt; do
  name="$(basename "$spec" .txt)"
  tmp="$(mktemp -d)"
  sub() { sed -e "s|@TMP@|$tmp|g" -e "s|@CORPUS@|$corpus|g" -e "s|@SAMPLES@|$samples|g"; }
  args="$(sed -n '1s/^args: *//p' "$spec" | sub)"
  want_status="$(sed -n '2s/^status: *//p' "$spec")"
  sed -n '/^input:$/,/^output:$/p' "$spec" | sed '1d;$d' | sub > "$tmp/input"
  sed -n '/^output:$/,$p' "$spec" | sed '1d' | sub > "$tmp/expected"
  # shellcheck disable=SC2086
  (cd "$tmp" && "$vexhost" --console $args < "$tmp/input" > "$tmp/actual" 2>&1)
  status=$?
  if [ "$status" = "$want_status" ] && diff -u "$tmp/expected" "$tmp/actual" > "$tmp/diff"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAIL $name (exit $status, expected $want_status)"
    cat "$tmp/diff"
  fi
  while read -r -a facts; do
    [ "${#facts[@]}" -gt 0 ] || continue
    if ! /usr/bin/python3 "$here/dimstyle_check.py" "${facts[@]}" > "$tmp/facts.txt" 2>&1; then
      failed=$((failed + 1)); echo "FAIL $name: facts"; cat "$tmp/facts.txt"
    fi
  done < <(sed -n '/^input:$/q;s/^check: *//p' "$spec" | sub)
  # Sessions may leave drawings for an independent reader to check.
  for f in "$tmp"/*.dxf; do
    [ -e "$f" ] || continue
    if ! /usr/bin/python3 "$here/ezdxf_check.py" --new "$f" > "$tmp/ezdxf.txt" 2>&1; then
      failed=$((failed + 1)); echo "FAIL $name: ezdxf on $(basename "$f")"; cat "$tmp/ezdxf.txt"
    fi
  done
  rm -rf "$tmp"
done
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
