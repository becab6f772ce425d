# fish completion for horalo

set -l commands defaults render since menu title copy show-menu
function __horalo_menu_names
    printf '%s\n' 'Short Date-Time' 'Medium Date-Time' 'Long Date-Time' 'Full Date-Time' \
        'Short Date' 'Medium Date' 'Long Date' 'Full Date' \
        'Short Time' 'Medium Time' 'Long Time' 'Full Time' \
        'GMT Date Time' 'Numerical Date Time' 'Numerical Date' 'Numerical Date No Hyphens'
end
# The title's names that are not also menu names: render takes both.
function __horalo_title_names
    printf '%s\n' 'Short Date Time' 'Medium Date Time' 'Long Date Time' 'Full Date Time' GMT
end
function __horalo_keys
    printf '%s\n' IncludeGMTDateTime IncludeDateOnlyItems IncludeTimeOnlyItems UseSymbolicNames \
        IncludeTitleIcon LastTitleDisplayName InitDateTimeChooserToCurrentTimeWhenOpened \
        DynamicDateTimeChooser 'Custom Dates' datePickerValue menuTitleFormatter
end

complete -c horalo -f
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a defaults -d 'Read, write or delete a setting'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a render -d 'Print a format rendered for now'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a since -d 'Print how long ago a time is'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a menu -d 'Print the menu as it would open now'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a title -d 'Print what the title shows now'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a copy -d 'Print the text a menu entry copies'
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -a show-menu -d "Open the running Horalo's menu"
complete -c horalo -n "not __fish_seen_subcommand_from $commands" -l version -d 'Print the version'
complete -c horalo -s h -l help -d 'Show help'

complete -c horalo -n "__fish_seen_subcommand_from render copy since menu title" -l now -r -d 'Fix the clock at TIME'
complete -c horalo -n "__fish_seen_subcommand_from render copy since menu title" -l at -r -d 'As if TIME were picked in the chooser'
complete -c horalo -n "__fish_seen_subcommand_from render copy" -l format -r -d 'A custom format'
complete -c horalo -n "__fish_seen_subcommand_from copy" -l clipboard -d 'Have the running Horalo copy it'
complete -c horalo -n "__fish_seen_subcommand_from title" -l follow -d 'Keep printing the title as it changes'
complete -c horalo -n "__fish_seen_subcommand_from title" -l json -d 'Print JSON lines for Waybar'
complete -c horalo -n "__fish_seen_subcommand_from since" -l depth -r -d 'Number of units in the phrase'
complete -c horalo -n "__fish_seen_subcommand_from since" -l unit -x -a '1\tseconds 2\tminutes 3\thours 4\tdays 5\tweeks 6\tmonths 7\tyears' -d 'The one unit of the phrase'
complete -c horalo -n "__fish_seen_subcommand_from render" -a '(__horalo_menu_names; __horalo_title_names)'
complete -c horalo -n "__fish_seen_subcommand_from copy" -a '(__horalo_menu_names)'

complete -c horalo -n "__fish_seen_subcommand_from defaults; and not __fish_seen_subcommand_from read write delete" -a 'read write delete'
complete -c horalo -n "__fish_seen_subcommand_from read write delete; and test (count (commandline -opc)) -eq 3" -a '(__horalo_keys)'
complete -c horalo -n "__fish_seen_subcommand_from write; and test (count (commandline -opc)) -eq 4" -a '-bool -int -float -string -date -array'
complete -c horalo -n "__fish_seen_subcommand_from write; and test (count (commandline -opc)) -ge 5; and contains -- -bool (commandline -opc)" -a 'true false yes no'
