#!/usr/bin/env bash
# Ends what is left of this test run's private clusters below FOLDER, the build's, and removes their folder, which bears
# the name of the process that runs the tests. Fails when a server had outlived its test.
set -euo pipefail
folder=$1/$PPID

left_processes() {
    for process in /proc/[0-9]*; do
        case "$(readlink "$process/cwd" 2>/dev/null)" in
            "$folder"/*) echo "${process##*/}" ;;
        esac
    done
}

# The servers of a test that was killed end by themselves, in a moment.
for _ in $(seq 50); do
    [ -n "$(left_processes)" ] || break
    sleep 0.1
done
left=$(left_processes)
for process in $left; do
    echo "still there: $(tr '\0' ' ' <"/proc/$process/cmdline")"
    kill -KILL "$process" || true
done
rm -rf "$folder"
rmdir "$1" 2>/dev/null || true # another run may be at work
[ -z "$left" ]
