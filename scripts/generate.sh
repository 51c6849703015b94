#!/usr/bin/env bash
# ./dev generate: writes the files that follow from api/attributes.toml and api/statuses.toml.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

install_packages python3
python3 -B api/generate.py "$@"
