#!/usr/bin/env bash
# Runs a Windows program under wine for a test. A missing wine or program, or
# a wine that cannot start it, is said in one line and fails the test.
#
#   wine_run.sh WINE PROGRAM.exe [ARGUMENTS...]
set -u
wine=$1 exe=$2
shift 2
[ -x "$wine" ] || { echo "FAIL: wine is missing ($wine); scripts/setup-deps installs wine64"; exit 1; }
[ -f "$exe" ] || { echo "FAIL: $exe is missing; make windows builds it"; exit 1; }
"$wine" "$exe" "$@"
status=$?
[ "$status" -eq 0 ] || echo "FAIL: $(basename "$exe") under wine ended with $status"
exit "$status"
