#!/usr/bin/env bash
# Validates a report in SARIF by the published schema, and checks that faulty ones are refused.
#
# Usage: sarif_schema_test.sh PRINT_SARIF
# Exits with 77 if npm, which fetches the schema, or a validator is missing.
set -euo pipefail
print_sarif=$1

# Carries the schema, which Debian lacks.
package=@microsoft/jest-sarif@1.0.0-beta.0
schema=package/lib/schemas/sarif-2.1.0-rtm.5.json
checksum=0357ce84f77a21ce620e4e05f583f0d6a341e1717eefe22f891ef197caf617a433424c7972963d2ec1a4dab1318852047016e3a559d29b058606e9004a4890f4

python=/usr/bin/python3
# Without rfc3987, URIs would pass unchecked.
if ! command -v npm >/dev/null || ! "$python" -c 'import jsonschema, rfc3987' 2>/dev/null; then
    echo "skipped: npm or the validator is missing; scripts/setup check installs them"
    exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
archive=$(npm pack --silent --prefer-offline "$package")
sha512sum --check --quiet <<<"$checksum  $archive"
tar -xzf "$archive" "$schema"

is_valid() { # REPORT
    "$python" - "$schema" "$1" <<'PYTHON' >log 2>&1
import json
import sys

import jsonschema

schema, report = (json.load(open(name, encoding="utf-8")) for name in sys.argv[1:])
jsonschema.Draft4Validator(schema, format_checker=jsonschema.FormatChecker()).validate(report)
PYTHON
}

"$print_sarif" >report.json
if ! is_valid report.json; then
    echo "the report is not valid:"
    cat log
    exit 1
fi
for fault in 's/"level":"error"/"level":"fatal"/' 's/"startLine":2,/"startLine":0,/' \
    's/"uri":"stdin"/"uri":"a b"/' 's/"ruleIndex"/"ruleNumber"/' 's/"name":"orva-strings",//'; do
    sed "$fault" report.json >faulty.json
    if cmp -s report.json faulty.json; then
        echo "the report has nothing for '$fault' to change"
        exit 1
    fi
    if is_valid faulty.json; then
        echo "valid with the fault '$fault'"
        exit 1
    fi
    grep -q '^jsonschema.*ValidationError' log || { cat log; exit 1; }
done
