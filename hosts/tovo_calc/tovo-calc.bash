# Completes command lines of tovo-calc in bash. What there is to complete is asked of the program, so
# it is that of the version at hand.

_tovo_calc()
{
    local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} command=calc commands
    commands=$("$program" --help 2>/dev/null |
        sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z]*\) .*/\1/p')
    if ((COMP_CWORD > 1)) && grep -qxF -- "${COMP_WORDS[1]}" <<<"$commands"; then
        command=${COMP_WORDS[1]}
    fi
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$program" "$command" --help 2>/dev/null |
            grep -oE -- '^  (-[a-zA-Z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+')" -- "$word")
    elif ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$word"; compgen -f -- "$word")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -o filenames -F _tovo_calc tovo-calc
