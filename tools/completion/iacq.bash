# SPDX-License-Identifier: MIT
# Completion of iacq for bash. What a camera has is asked of iacq, but never of the vendor's own
# cameras: opening one takes seconds, and resets it while another program has its serial port. Texts
# from cameras are compared and quoted, never expanded.

_iacq_commands=(list show capture get set monitor reset help)

_iacq_options()
{
    case $1 in
        list | show | get) echo --json --help ;;
        capture) echo --output --output-format --count --format --size --interval --fps --buffers --help ;;
        monitor) echo --json --count --timeout --help ;;
        *) echo --help ;;
    esac
}

_iacq_ask()
{
    timeout 5 "${COMP_WORDS[0]}" "$@" 2>/dev/null </dev/null || true
}

# Takes the lines of standard input that begin with what is typed for completions. Within quotes
# only plain texts will do; elsewhere they are escaped.
_iacq_offer()
{
    local typed=$1 line quote="" quoted
    case $typed in
        [\"\']*) quote=${typed:0:1} typed=${typed:1} ;;
        *) typed=${typed//\\/} ;;
    esac
    while IFS= read -r line; do
        [[ -n $line && $line == "$typed"* ]] || continue
        if [[ -z $quote ]]; then
            printf -v quoted %q "$line"
            COMPREPLY+=("$quoted")
        elif [[ $line != *[!A-Za-z0-9\ ,./_+=\(\)-]* ]]; then
            COMPREPLY+=("$line")
        fi
    done
}

_iacq_offer_words()
{
    local typed=$1
    shift
    _iacq_offer "$typed" < <(printf '%s\n' "$@")
}

_iacq_cameras()
{
    local node
    _iacq_ask list | sed -n 's/^\([0-9][0-9]*\): .*/\1/p'
    for node in /dev/video[0-9]*; do
        [[ -e $node ]] && printf '%s\n' "${node#/dev/}" "$node"
    done
}

# The camera that stands on the command line before the cursor.
_iacq_camera()
{
    local i
    for ((i = 2; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            -o | --output | --output-format | -n | --count | --format | --size | --interval | \
                --fps | --buffers | --timeout)
                ((++i))
                [[ ${COMP_WORDS[i]} == "=" ]] && ((++i))
                ;;
            -*) ;;
            *)
                printf '%s\n' "${COMP_WORDS[i]}"
                return
                ;;
        esac
    done
}

# What iacq shows of a camera. Nothing for one of the vendor's own.
_iacq_show()
{
    local camera=$1 node
    [[ $camera == *[!A-Za-z0-9_./-]* ]] && return
    [[ $camera == */* ]] && camera=$(readlink -f -- "$camera")
    node=$(_iacq_ask list --json | awk -v camera="$camera" '
        /^    "/ {
            key = $1
            value = $0
            sub(/^ *"[a-zA-Z]*": "?/, "", value)
            sub(/"?,?$/, "", value)
            field[key] = value
        }
        /^    "vendorsOwn": / {
            node = value == "false" ? field["\"node\":"] : ""
            if (camera == field["\"index\":"] || camera == field["\"node\":"] ||
                    "/dev/" camera == field["\"node\":"]) {
                found = 1
                print node
                exit
            }
            if (camera == field["\"serial\":"] || camera == "serial:" field["\"serial\":"]) {
                serial = node
            }
        }
        END { if (!found) print serial }')
    [[ -n $node ]] && _iacq_ask show "$node"
}

# _iacq_formats format|size|interval|fps: from what iacq shows. With a format named on the command
# line, its own sizes and intervals only.
_iacq_formats()
{
    local i wanted=
    for ((i = 2; i + 1 < COMP_CWORD; ++i)); do
        [[ ${COMP_WORDS[i]} == --format && ${COMP_WORDS[i + 1]} != *\\* ]] && wanted=${COMP_WORDS[i + 1]}
    done
    awk -v what="$1" -v wanted="$wanted" '
        function offer(text) { if (!(text in offered)) print text; offered[text] = 1 }
        function rate(interval,  parts, text) {
            split(interval, parts, "/")
            if (parts[1] + 0 == 0) return ""
            text = sprintf("%.3f", parts[2] / parts[1])
            sub(/\.?0*$/, "", text)
            return text
        }
        /^Controls$/ { exit }
        /^Formats / { inside = 1; next }
        !inside { next }
        /^    [^ ]/ { format = $1; if (what == "format") offer(format) }
        /^        [0-9]+x[0-9]+:/ && (wanted == "" || wanted == format) {
            if (what == "size") offer(substr($1, 1, length($1) - 1))
            for (i = 2; i <= NF; ++i) {
                if (what == "interval") offer($i)
                if (what == "fps") offer(rate($i))
            }
        }'
}

# _iacq_controls short|full get|set: the controls' names, from what iacq shows.
_iacq_controls()
{
    awk -v form="$1" -v command="$2" '
        /^Controls$/ { inside = 1; next }
        !inside || !/^    [a-z0-9_]+ \(\047/ { next }
        command == "set" && /  \[read-only\]/ { next }
        {
            name = substr($0, length($1) + 8)
            name = substr(name, 1, index(name, "\047)  ") - 1)
            type = substr($0, length($1) + length(name) + 12)
            value = command == "set" && type !~ /^Button / ? "=" : ""
            print (form == "short" ? $1 : name) value
        }'
}

# The values of a control, by its name or short form, from what iacq shows.
_iacq_values()
{
    local name=$1 line inside=
    while IFS= read -r line; do
        if [[ $line == Controls ]]; then
            inside=yes
        elif [[ -z $inside ]]; then
            continue
        elif [[ $line =~ ^\ \ \ \ ([a-z0-9_]+)\ \(\'(.*)\'\)\ \ (Boolean|StringMenu)\ \  ]]; then
            [[ ${BASH_REMATCH[1]} == "$name" || ${BASH_REMATCH[2]} == "$name" ]] && inside=here || inside=yes
            [[ $inside == here && ${BASH_REMATCH[3]} == Boolean ]] && printf '%s\n' on off
        elif [[ $line == "    "[!\ ]* ]]; then
            inside=yes
        elif [[ $inside == here && $line =~ ^\ \ \ \ \ \ \ \ [0-9]+:\ (.*) ]]; then
            printf '%s\n' "${BASH_REMATCH[1]}"
        fi
    done
}

_iacq_complete_control()
{
    local command=$1 current=$2 previous=$3 shown name=
    shown=$(_iacq_show "$(_iacq_camera)")
    if [[ $command == set && $current == "=" ]]; then
        name=$previous current=
    elif [[ $command == set && $previous == "=" ]]; then
        name=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if [[ -n $name ]]; then
        _iacq_offer "$current" < <(_iacq_values "${name//\\/}" <<<"$shown")
        return
    fi
    _iacq_offer "$current" < <(_iacq_controls short "$command" <<<"$shown")
    if [[ -n $current && ${#COMPREPLY[@]} -eq 0 ]]; then
        _iacq_offer "$current" < <(_iacq_controls full "$command" <<<"$shown")
    fi
    [[ ${COMPREPLY[*]} == *= ]] && compopt -o nospace 2>/dev/null
    return 0
}

_iacq_complete_argument()
{
    local command=$1 current=$2 previous=$3
    case $command in
        help) _iacq_offer_words "$current" "${_iacq_commands[@]}" ;;
        list | monitor) ;;
        get | set)
            if [[ -n $(_iacq_camera) ]]; then
                _iacq_complete_control "$command" "$current" "$previous"
            else
                _iacq_offer "$current" < <(_iacq_cameras)
            fi
            ;;
        *) [[ -n $(_iacq_camera) ]] || _iacq_offer "$current" < <(_iacq_cameras) ;;
    esac
}

_iacq()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} camera
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _iacq_offer_words "$current" "${_iacq_commands[@]}" --help --version
        return
    fi
    # --format=YUYV comes in three words, of which the cursor is in the second or third.
    if [[ $current == "=" && $previous == --* ]]; then
        current=
    elif [[ $previous == "=" && ${COMP_WORDS[COMP_CWORD - 2]} == --* ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $previous in
        -o | --output)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        --output-format) _iacq_offer_words "$current" png ppm raw ;;
        --format | --size | --interval | --fps)
            camera=$(_iacq_camera)
            _iacq_offer "$current" < <(_iacq_show "${camera:-0}" | _iacq_formats "${previous#--}")
            ;;
        -n | --count | --buffers | --timeout) ;;
        *)
            if [[ $current == -* ]]; then
                # shellcheck disable=SC2046 # words
                _iacq_offer_words "$current" $(_iacq_options "$command")
            else
                _iacq_complete_argument "$command" "$current" "$previous"
            fi
            ;;
    esac
    return 0
}

complete -F _iacq iacq
