# Completion of pgtool's commands, and of files behind them.
_pgtool() {
    local commands='browse check dump help mkdir modality save set tags uid --help --version'
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]] ||
        [[ $COMP_CWORD -eq 2 && ${COMP_WORDS[1]} == help ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "${COMP_WORDS[COMP_CWORD]}")
    fi
}
complete -o default -F _pgtool pgtool
