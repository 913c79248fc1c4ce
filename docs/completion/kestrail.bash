# Completion of `kestrail` for bash.
_kestrail() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "frames record trim help --help --version" -- "$word")
        return
    fi
    case ${COMP_WORDS[1]} in
        frames) options="--frames -o --output --size --compare --threshold --checksums --json
            --sequential --jobs --shard --headless --why --help" ;;
        record) options="-o --output --force --pictures --frames --exit --only --follow --no-follow
            --no-limit --summary --help --" ;;
        trim) options="--frames -o --output --force --drop-unused --no-drop-unused --help" ;;
        *) return ;;
    esac
    case ${COMP_WORDS[1]}:$before in
        frames:-o | frames:--output) compopt -o dirnames ;;
        *:-o | *:--output | *:--summary) compopt -o default ;;
        record:--) mapfile -t COMPREPLY < <(compgen -c -- "$word") ;;
        *)
            if [[ $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
            elif [[ ${COMP_WORDS[1]} == record ]]; then
                mapfile -t COMPREPLY < <(compgen -c -- "$word")
            else
                compopt -o default
            fi
            ;;
    esac
}
complete -F _kestrail kestrail
