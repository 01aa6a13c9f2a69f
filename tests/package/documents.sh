#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Holds the documents against each other and against the programs. One case a call:
#   documents.sh CASE SOURCE_DIR BUILD_DIR
set -euo pipefail

case_name=$1 source=$2 build=$3
iacq="$build/tools/iacq/iacq"
with="$build/virtualcamera/with-virtual-camera"
problems=0

complain() { echo "FAILED: $*" >&2; problems=$((problems + 1)); }

# The page as a person reads it.
page() { mandoc -Tutf8 "$source/docs/man/$1" | col -bx | sed 's/‐/-/g'; }

commands() { "$iacq" --help | sed -n '/^Subcommands:/,$ s/^  \([a-z]*\) .*/\1/p'; }

# options PROGRAM [COMMAND]: all its long options.
options() { "$@" --help | grep -oE '^ +(-[a-z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+'; }

pages_have_no_mistakes() {
    local file
    for file in "$source"/docs/man/*.[1-8]; do
        mandoc -Tlint -Wwarning "$file" || complain "mandoc finds fault with $file"
        [ -z "$(man --warnings=w -l "$file" 2>&1 >/dev/null)" ] || complain "man finds fault with $file"
    done
}

page_names_every_option() {
    local command option text
    text=$(page iacq.1)
    [ "$(commands | wc -l)" -ge 7 ] || complain "iacq --help lists: $(commands)"
    for command in $(commands); do
        grep -qE "^ +(iacq )?$command( |$)" <<<"$text" || complain "iacq.1 lacks the command $command"
        for option in $(options "$iacq" "$command"); do
            grep -qF -- "$option" <<<"$text" || complain "iacq.1 lacks $command $option"
        done
    done
    text=$(page with-virtual-camera.1)
    for option in $(options "$with"); do
        grep -qF -- "$option" <<<"$text" || complain "with-virtual-camera.1 lacks $option"
    done
}

keys() { python3 -c '
import json, sys
def walk(value):
    for key in value if isinstance(value, dict) else ():
        print(key)
    for inner in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        walk(inner)
for line in [sys.stdin.read()] if sys.argv[1] == "whole" else sys.stdin:
    walk(json.loads(line))' "$1" | sort -u; }

page_names_every_json_field() {
    local key text found
    text=$(page iacq.1)
    found=$("$with" --model all-controls "$iacq" show 0 --json | keys whole
            "$with" --model vendor "$iacq" list --json | keys whole
            "$with" --unplug-after 1500 "$iacq" monitor --json --count 1 --timeout 20 | keys lines)
    for key in minimumLength items intervals firmware action; do
        grep -qx "$key" <<<"$found" || complain "the output has no $key: the check sees too little"
    done
    for key in $found; do
        grep -qw -- "$key" <<<"$text" || complain "iacq.1 lacks the JSON field $key"
    done
}

page_names_every_exit_status() {
    local number text
    text=$(page iacq.1 | sed -n '/^EXIT STATUS/,/^EXAMPLES/p')
    for number in $(sed -n '/enum ExitStatus/,/};/ s/.*= \([0-9]*\).*/\1/p' "$source/tools/iacq/Failure.h"); do
        grep -qE "^ +$number +[A-Z]" <<<"$text" || complain "iacq.1 lacks the exit status $number"
    done
}

reference_shows_its_pictures() {
    local html="$build/docs/test/html" page picture shown=0
    while IFS=: read -r page picture; do
        shown=$((shown + 1))
        [ -s "$html/$picture" ] || complain "$page shows $picture, which is not there"
    done < <(cd "$html" && grep -oE '<img [^>]*src="[^":]+"' ./*.html | sed 's/<img .*src="//; s/"$//')
    grep -q '<img [^>]*frame\.png' "$html/index.html" || complain "the first page has no frame.png"
    [ "$shown" -ge 1 ] || complain "no page shows a picture: the check sees too little"
}

reference_has_both_layers() {
    local html="$build/docs/test/html" class classes
    classes=$(grep -ohE '(class|struct) IMAGEACQUISITION_SESSION_EXPORT [A-Za-z]+$' \
                  "$source"/session/include/session/*.h | awk '{ print $3 }')
    [ "$(wc -w <<<"$classes")" -ge 10 ] || complain "only these classes: $classes"
    for class in $classes; do
        compgen -G "$html/*ImageAcquisition_1_1Session_1_1$class.html" >/dev/null ||
            complain "the reference lacks the session layer's $class"
    done
    [ -s "$html/classImageAcquisition_1_1ICamera.html" ] || complain "the reference lacks ICamera"
    grep -q 'href="md_docs_session.html">which layer do I want' "$html/index.html" ||
        complain "the first page does not lead to the choice between the layers"
    grep -q 'href="md_docs_session.html"' "$html/namespaceImageAcquisition_1_1Session.html" ||
        complain "the session layer's name space does not lead to its page"
}

# complete_words WORD...: what the completion offers for the last word.
complete_words() {
    COMP_WORDS=(iacq "$@")
    COMP_CWORD=$#
    _iacq
    printf '%s\n' "${COMPREPLY[@]}"
}

completion_offers_what_the_tool_has() {
    local command option
    # shellcheck source=tools/completion/iacq.bash
    . "$source/tools/completion/iacq.bash"
    complete -p iacq | grep -q _iacq || complain "nothing is registered for iacq"
    diff <(complete_words '' | grep -v '^-' | sort) <(commands | sort) || complain "other commands"
    for command in $(commands); do
        diff <(complete_words "$command" -- | sort) <(options "$iacq" "$command" | sort) ||
            complain "other options of $command"
    done
    [ "$(complete_words cap)" = capture ] || complain "cap does not become capture"
    [ "$(complete_words capture --output-format p | tr '\n' ' ')" = "png ppm " ] ||
        complain "the kinds of output"
}

# Each part of the table that the package is said to have is one that it installs, and the other way
# round; the sentence above counts them.
virtual_camera_parts_are_told() {
    local text part has installs rows=0 numbers=(no One Two Three Four Five Six)
    text=$(sed -n '/^# Virtual camera/,/^## /p' "$source/virtualcamera/README.md")
    while IFS='|' read -r _ part has _; do
        rows=$((rows + 1))
        part=${part#*\`}
        part=${part%%\`*}
        installs=no
        ! grep -q "/$part\$" "$source/debian/imageacquisition-virtualcamera.install" || installs=yes
        [[ "$has" =~ ^\ *$installs ]] || complain "the README says that the package has $part:$has"
    done < <(grep '^| [`(]' <<<"$text")
    [ "$rows" -ge 2 ] || complain "the README has no table of parts"
    grep -q "${numbers[rows]} parts" <<<"$text" || complain "the README does not count $rows parts"
}

# anchors PAGE: those that its headings make, as every page that shows Markdown makes them.
anchors() {
    sed -n '/^```/,/^```/d; s/^##* //p' "$1" | tr '[:upper:]' '[:lower:]' |
        sed "s/[^a-z0-9 _-]//g; s/ /-/g"
}

# links PAGE: those that are no addresses of the network's.
links() {
    sed '/^```/,/^```/d; s/`[^`]*`//g' "$1" | grep -oE '\]\([^)]*\)' | sed 's/^](//; s/)$//' | grep -v '://'
}

links_lead_somewhere() {
    local page link target links=0
    while IFS= read -rd '' page; do
        for link in $(links "$page"); do
            links=$((links + 1))
            target=$(dirname "$page")/${link%%#*}
            [[ "$link" != '#'* ]] || target=$page
            [ -e "$target" ] || { complain "$page links $link, which is not there"; continue; }
            [[ "$link" != *#* ]] || grep -qxF "${link#*#}" <<<"$(anchors "$target")" ||
                complain "$page links $link, and there is no such heading"
        done
    done < <(find "$source" -path "$source/build" -prune -o -name '*.md' -print0)
    [ "$links" -ge 20 ] || complain "only $links links: the check sees too little"
}

install_page_names_every_build_option() {
    local name names
    names=$(grep -hoE '(option|set)\(IMAGEACQUISITION_[A-Z_]+ ("[^"]*" CACHE|"[^"]*" O)' \
                "$source"/cmake/*.cmake | grep -oE 'IMAGEACQUISITION_[A-Z_]+')
    [ "$(wc -l <<<"$names")" -ge 10 ] || complain "only these options: $names"
    for name in $names; do
        grep -qF "| \`$name\` |" "$source/INSTALL.md" || complain "INSTALL.md lacks $name"
    done
}

[ "$(type -t "$case_name")" = function ] || { echo "no such case: $case_name" >&2; exit 2; }
"$case_name"
[ "$problems" -eq 0 ]
