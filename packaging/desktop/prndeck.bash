# Completion of prndeck and its siblings for bash. One file for all of them: the others are links to it.

_prndeck_queues() { prnqtool -LQ 2>/dev/null | sed 's/:.*//'; }
_prndeck_reply() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2"); }
_prndeck_models() {
    local models=(/var/lib/prndeck/ppd/*.ppd)
    _prndeck_reply "${models[*]##*/}" "$1"
}
_prndeck_files() { compopt -o filenames; mapfile -t COMPREPLY < <(compgen -f -- "$1"); }

_prndeck() { _prndeck_reply "-tty -nd -help -v" "$2"; }

_prnqtool() {
    local first=1 lists="-LQ --list --json --export" changes="-x -xl -dbps -xdbps --batch --import"
    while [[ ${COMP_WORDS[first]} == --@(ensure|dry-run) && $first -lt $COMP_CWORD ]]; do first=$((first + 1)); done
    case $3 in
    -ppd) _prndeck_models "$2" ;;
    -pm) _prndeck_reply "wp wps psp" "$2" ;;
    -x) _prndeck_reply "all $(_prndeck_queues)" "$2" ;;
    -xl | -cl) _prndeck_reply "$(_prndeck_queues)" "$2" ;;
    -fs | -bps | -dbps | -dn | --batch | --export | --import) _prndeck_files "$2" ;;
    -hn) mapfile -t COMPREPLY < <(compgen -A hostname -- "$2") ;;
    -psqn | -log) ;;
    *)
        local words="-ppd -pm -hn -dn -psqn -lpd -cl -mq -x -d -fe -bp -ui -fs -bps -log"
        [ "$COMP_CWORD" != "$first" ] || words="$changes --ensure --dry-run $(_prndeck_queues)"
        [ "$COMP_CWORD" != 1 ] || words="$lists --help --version $words"
        _prndeck_reply "$words" "$2"
        ;;
    esac
}

_prnout() {
    case $3,$2 in
    -d,*) _prndeck_reply "$(_prndeck_queues)" "$2" ;;
    *,-d*) _prndeck_reply "-d -DL $(_prndeck_queues | sed 's/^/-d/')" "$2" ;;
    *,-*) _prndeck_reply "-d -DL -oNoUi -l --json --help --version" "$2" ;;
    *) _prndeck_files "$2" ;;
    esac
}

_prnrm() {
    case $COMP_CWORD in
    1) _prndeck_reply "--help --version $(_prndeck_queues)" "$2" ;;
    *) _prndeck_reply "- $(prnout -l -d "${COMP_WORDS[1]}" 2>/dev/null | awk 'NR > 1 { print $2 }')" "$2" ;;
    esac
}

_prnpnxxtty() {
    case $3 in
    -GS) _prndeck_models "$2" ;;
    -MS | -d) _prndeck_reply "$(_prndeck_queues)" "$2" ;;
    *) _prndeck_reply "-tty -GS -MS -FP -SBP -fs --help --version -d $(_prndeck_queues)" "$2" ;;
    esac
}

complete -F _prndeck prndeck
complete -F _prnpnxxtty prnpnxxtty
complete -F _prnqtool prnqtool
complete -F _prnout prnout
complete -F _prnrm prnrm
