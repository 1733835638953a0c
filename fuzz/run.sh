#!/bin/sh
# Runs every fuzz target: fuzz/run.sh BUILD_DIR RUNS
# Each starts from its seed corpus and the same seed, so that a failure comes again; the corpus itself is not changed.
# An input that fails is left in BUILD_DIR/fuzz-failures.
set -eu

if [ $# -ne 2 ]; then
    echo "usage: $0 BUILD_DIR RUNS" >&2
    exit 2
fi
build=$1
runs=$2
corpus=$(dirname "$0")/corpus
failures=$build/fuzz-failures
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$failures"

targets=0
failed=
for program in "$build"/bin/fuzz_*; do
    [ -x "$program" ] || continue
    name=$(basename "$program")
    targets=$((targets + 1))
    mkdir "$work/$name"
    if [ -d "$corpus/$name" ]; then
        cp "$corpus/$name"/* "$work/$name"
    else
        echo "$name: no seeds in $corpus/$name" >&2
        failed="$failed $name"
        continue
    fi
    if "$program" -runs="$runs" -seed=1 -max_len=512 -artifact_prefix="$failures/$name-" "$work/$name" \
        >"$work/$name.log" 2>&1; then
        echo "$name: $runs runs"
    else
        tail -n 40 "$work/$name.log" >&2
        echo "$name: FAILED" >&2
        failed="$failed $name"
    fi
done

if [ "$targets" -eq 0 ]; then
    echo "no fuzz targets in $build/bin" >&2
    exit 1
fi
[ -z "$failed" ]
