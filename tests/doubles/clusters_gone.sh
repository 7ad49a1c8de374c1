#!/usr/bin/env bash
# Ends what is left of the private clusters in FOLDER, and removes it. Fails when a server had outlived its test.
set -euo pipefail
folder=$1

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
[ -z "$left" ]
