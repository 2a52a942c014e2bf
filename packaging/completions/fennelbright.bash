# Completion of fennelbright's command line in bash, with the package bash-completion.
_fennelbright() {
    local cur prev words cword split
    _init_completion -s || return

    # What follows an option: nothing, a directory, a file, text that cannot be completed, or one of the
    # words here. A value that only follows "=" has a line of its own.
    local -A options=(
        [--boot]=
        [--device]=directory
        [--files]=directory
        [--help]=
        [--module]=text
        [--new-device]=directory
        [--no-display]=
        [--registry]=file
        [--rehearse]=
        [--report]=
        [--report=]='lines json'
        [--report-html]=file
        [--scale]='1 2 3 4 5 6 7 8'
        [--set]=text
        [--show-settings]=
        [--show-settings=]='lines json'
        [--state]=directory
        [--strict]=
        [--version]=
    )
    $split && prev+=${options[$prev=]+=}
    local value=${options[${prev:- }]-}
    case $value in
        directory) _filedir -d ;;
        file) _filedir ;;
        text) ;;
        ?*) mapfile -t COMPREPLY < <(compgen -W "$value" -- "$cur") ;;
        *) $split || mapfile -t COMPREPLY < <(compgen -W "${!options[*]} silent" -- "$cur") ;;
    esac
    [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace
} &&
    complete -F _fennelbright fennelbright
