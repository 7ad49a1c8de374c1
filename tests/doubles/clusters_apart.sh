#!/usr/bin/env bash
# Whether two test runs of one build at once leave each other's private clusters alone, and a later one removes what a
# run that was killed has left: MAKER GONE FOLDER.
set -euo pipefail
maker=$1 gone=$2 folder=$3
rm -rf "$folder"

bash -c '"$0" "$1" && : >"$1/made" && exec sleep 100' "$maker" "$folder" &
first=$!
trap 'kill -KILL "$first" 2>/dev/null || true; rm -rf "$folder"' EXIT
until [ -f "$folder/made" ]; do
    kill -0 "$first"
    sleep 0.05
done

bash -c '"$0" "$2" && [ -d "$2/$$/template" ] && "$1" "$2" && [ ! -e "$2/$$" ]' "$maker" "$gone" "$folder"
[ -d "$folder/$first/template" ] || {
    echo "the second run has taken what was the first one's"
    exit 1
}

kill -KILL "$first"
wait "$first" || true
bash -c '"$0" "$2" && "$1" "$2"' "$maker" "$gone" "$folder"
[ ! -e "$folder/$first" ] || {
    echo "what a killed run has left stays for ever"
    exit 1
}
