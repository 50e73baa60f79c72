# bash completion for vesk-roster. The program itself knows the candidates
# (commands, options, the filters and sorting methods of the settings
# directory, kinds and fields): it gets the line up to the cursor and prints
# them, quoted for the shell. With none, the shell completes file names.
_vesk_roster()
{
    local IFS=$'\n'
    COMPREPLY=($(command "${COMP_WORDS[0]}" complete --breaks "$COMP_WORDBREAKS" \
        "${COMP_LINE:0:COMP_POINT}" 2>/dev/null))
    # FIELD= goes on with the value, without a blank.
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace 2>/dev/null
    fi
    return 0
}
complete -o default -F _vesk_roster vesk-roster
