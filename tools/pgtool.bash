# Completion of pgtool's commands, options and their values, and of files behind them. Made
# by "pgtool documentation bash".
_pgtool() {
    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words=''
    COMPREPLY=()
    if [[ $COMP_CWORD -eq 1 ]] || [[ $COMP_CWORD -eq 2 && $command == help ]]; then
        words='dump json scan image set delete anonymize save from-json disc browse mkdir check verify tags uid modality profiles documentation help --help --version'
    else
        case $command:${COMP_WORDS[COMP_CWORD - 1]} in
            dump:--edition) words='current built-in' ;;
            json:--edition) words='current built-in' ;;
            scan:--format) words='csv jsonl table' ;;
            scan:--edition) words='current built-in' ;;
            set:--edition) words='current built-in' ;;
            delete:--edition) words='current built-in' ;;
            save:--mode) words='explicit-le implicit-le explicit-be as-read' ;;
            save:--edition) words='current built-in' ;;
            from-json:--edition) words='current built-in' ;;
            disc:--transfer-syntax) words='as-is explicit' ;;
            browse:--edition) words='current built-in' ;;
            verify:--edition) words='current built-in' ;;
            tags:--edition) words='current built-in' ;;
            uid:--edition) words='current built-in' ;;
            modality:--edition) words='current built-in' ;;
        esac
        if [[ -z $words && $current == -* ]]; then
            case $command in
                dump) words='--help --recursive --files-from --tag --json --full --edition --utf8 --raw --load-limit --flags' ;;
                json) words='--help --recursive --files-from --output --bulk --edition --utf8 --raw' ;;
                scan) words='--help --recursive --files-from --tags --tag --format --jobs --edition --utf8 --raw' ;;
                image) words='--help --frame --size --output' ;;
                set) words='--help --recursive --files-from --output --in-place --force --edition --utf8 --raw' ;;
                delete) words='--help --recursive --files-from --tag --private --output --in-place --edition' ;;
                anonymize) words='--help --recursive --files-from --output --in-place --retain-uids --retain-dates --modify-dates --retain-device-identity --retain-institution-identity --retain-patient-characteristics --retain-safe-private --key' ;;
                save) words='--help --mode --bare --undefined-lengths --flags --edition' ;;
                from-json) words='--help --output --bulk-dir --edition --utf8 --raw' ;;
                disc) words='--help --output --size --web --icons --transfer-syntax --profile --file-set-id --image --files-from' ;;
                browse) words='--help --json --files --edition --utf8 --raw' ;;
                mkdir) words='--help --add --remove --profile --standard-records --strict --strict-names --icons --series-icons --file-size --fill-missing --file-set-id --no-recurse --no-list --allow-empty --offshore' ;;
                check) words='--help --recursive --files-from --profile' ;;
                verify) words='--help --profile --json --repair --edition --utf8 --raw' ;;
                tags) words='--help --find --edition --utf8 --raw' ;;
                uid) words='--help --edition --utf8 --raw' ;;
                modality) words='--help --edition --utf8 --raw' ;;
                profiles) words='--help --names' ;;
                documentation) words='--help' ;;
            esac
        fi
    fi
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    fi
}
complete -o default -F _pgtool pgtool
