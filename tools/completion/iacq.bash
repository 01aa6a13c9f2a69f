# SPDX-License-Identifier: MIT
# Completion of iacq for bash. Opens no camera: names of controls are not completed, since asking
# for them can take seconds and may reset a camera.

_iacq_options()
{
    case $1 in
        list) echo --json --help ;;
        show | get) echo --json --help ;;
        capture) echo --output --output-format --count --format --size --interval --fps --buffers --help ;;
        monitor) echo --json --count --timeout --help ;;
        set | reset) echo --help ;;
        *) echo --help ;;
    esac
}

_iacq_cameras()
{
    local node
    for node in /dev/video[0-9]*; do
        [[ -e $node ]] && echo "${node#/dev/}" "$node"
    done
}

_iacq()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} words=
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        words="list show capture get set monitor reset help --help --version"
    else
        case $previous in
            -o | --output)
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
                return
                ;;
            --output-format) words="png ppm raw" ;;
            -n | --count | --format | --size | --interval | --fps | --buffers | --timeout) return ;;
            *)
                if [[ $current == -* ]]; then
                    words=$(_iacq_options "$command")
                elif [[ $command == help ]]; then
                    words="list show capture get set monitor reset help"
                elif [[ $command != list && $command != monitor ]]; then
                    words=$(_iacq_cameras)
                fi
                ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _iacq iacq
