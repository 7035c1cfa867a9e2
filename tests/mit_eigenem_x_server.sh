#!/bin/bash
# Runs a command on an X server of its own, for a test that needs the input
# focus and cannot start one itself (the Windows tests under wine). Xvfb picks
# a free display and names it on a pipe once it accepts connections, so
# servers started side by side never meet and nothing waits on a clock.
set -u
coproc XVFB { exec Xvfb -displayfd 1 -screen 0 1600x1200x24 -nolisten tcp -noreset 2>/dev/null; }
# bash forgets XVFB_PID once the server has ended, and a server may end
# before the command does (seen at the end of a wine run): keep it.
xvfb_pid=$XVFB_PID
if ! read -r nummer <&"${XVFB[0]}" || [ -z "$nummer" ]; then
    echo "Xvfb did not start" >&2
    exit 1
fi
DISPLAY=":$nummer" "$@"
status=$?
kill "$xvfb_pid" 2>/dev/null
wait "$xvfb_pid" 2>/dev/null
exit $status
