# Completion of `kestrail` for bash.
_kestrail() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "record trim help --help --version" -- "$word")
        return
    fi
    if [[ ${COMP_WORDS[1]} == trim ]]; then
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "--frames -o --output --force --drop-unused
                --no-drop-unused --help" -- "$word")
        else
            compopt -o default
        fi
        return
    fi
    [[ ${COMP_WORDS[1]} == record ]] || return
    case $before in
        -o | --output | --summary) compopt -o default ;;
        --) mapfile -t COMPREPLY < <(compgen -c -- "$word") ;;
        *)
            if [[ $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "-o --output --force --pictures --frames --exit
                    --only --follow --no-follow --no-limit --summary --help --" -- "$word")
            else
                mapfile -t COMPREPLY < <(compgen -c -- "$word")
            fi
            ;;
    esac
}
complete -F _kestrail kestrail
