# bash completion for horalo                                        -*- shell-script -*-

_horalo_menu_names=(
    "Short Date-Time" "Medium Date-Time" "Long Date-Time" "Full Date-Time"
    "Short Date" "Medium Date" "Long Date" "Full Date"
    "Short Time" "Medium Time" "Long Time" "Full Time"
    "GMT Date Time" "Numerical Date Time" "Numerical Date" "Numerical Date No Hyphens"
)
# The title's names that are not also menu names: render takes both.
_horalo_title_names=("Short Date Time" "Medium Date Time" "Long Date Time" "Full Date Time" "GMT")
_horalo_keys=(
    IncludeGMTDateTime IncludeDateOnlyItems IncludeTimeOnlyItems UseSymbolicNames
    IncludeTitleIcon LastTitleDisplayName InitDateTimeChooserToCurrentTimeWhenOpened
    DynamicDateTimeChooser "Custom Dates" datePickerValue menuTitleFormatter
)

# Offers the words (which may hold spaces) that start with what is typed so far; readline
# quotes them as it quotes file names.
_horalo_offer()
{
    local typed=$1 word
    shift
    typed=${typed#[\"\']}
    typed=${typed//\\ / }
    for word in "$@"; do
        [[ $word == "$typed"* ]] && COMPREPLY+=("$word")
    done
    compopt -o filenames 2>/dev/null
}

_horalo()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()

    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "defaults render since menu title copy show-menu --help -h --version" -- "$cur")
        return
    fi

    local command=${COMP_WORDS[1]}
    case $prev in
        --now | --at)
            # A TIME: nothing to guess, but the forms are worth a reminder.
            mapfile -t COMPREPLY < <(compgen -W "$(date +%Y-%m-%dT%H:%M:%S%:z) @$(date +%s)" -- "$cur")
            return
            ;;
        --format | --depth) return ;;
        --unit)
            mapfile -t COMPREPLY < <(compgen -W "1 2 3 4 5 6 7" -- "$cur")
            return
            ;;
    esac

    case $command in
        render | copy | since | menu | title)
            if [[ $cur == -* ]]; then
                local options="--now --at --help"
                case $command in
                    render) options+=" --format" ;;
                    copy) options+=" --format --clipboard" ;;
                    since) options+=" --depth --unit" ;;
                    title) options+=" --follow --json" ;;
                esac
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
            elif [[ $command == render ]]; then
                _horalo_offer "$cur" "${_horalo_menu_names[@]}" "${_horalo_title_names[@]}"
            elif [[ $command == copy ]]; then
                _horalo_offer "$cur" "${_horalo_menu_names[@]}"
            fi
            ;;
        show-menu)
            mapfile -t COMPREPLY < <(compgen -W "--help" -- "$cur")
            ;;
        defaults)
            case $COMP_CWORD in
                2) mapfile -t COMPREPLY < <(compgen -W "read write delete --help" -- "$cur") ;;
                3) _horalo_offer "$cur" "${_horalo_keys[@]}" ;;
                4)
                    if [[ ${COMP_WORDS[2]} == write ]]; then
                        mapfile -t COMPREPLY < <(compgen -W "-bool -int -float -string -date -array" -- "$cur")
                    fi
                    ;;
                *)
                    if [[ ${COMP_WORDS[2]} == write && ${COMP_WORDS[4]} == -bool ]]; then
                        mapfile -t COMPREPLY < <(compgen -W "true false yes no" -- "$cur")
                    fi
                    ;;
            esac
            ;;
    esac
}
complete -F _horalo horalo
