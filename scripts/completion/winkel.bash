# bash completion of winkel and ixtool. What can be typed is asked of the program itself, so that
# this knows what the installed version knows.

# Prints a line for each word that may follow the verbs in the arguments.
_winkel_woorden() {
  local programma=$1
  shift
  command "$programma" "$@" --help 2>/dev/null </dev/null |
    awk '/^[^ ]/ { deel = $1 } deel ~ /^(Opdrachten|Opties):$/ && /^  [^ ]/ { n = split($1, w, ",")
         for (i = 1; i <= n; i++) print w[i] }'
}

_winkel() {
  local programma=${COMP_WORDS[0]} huidig=${COMP_WORDS[COMP_CWORD]} vorig=${COMP_WORDS[COMP_CWORD-1]}
  local verbs=() woord woorden IFS=$'\n'
  COMPREPLY=()
  case $vorig in
    -C | --test-locks | --tweede)
      COMPREPLY=($(compgen -d -- "$huidig"))
      return
      ;;
    -o | --sqlite)
      COMPREPLY=($(compgen -f -- "$huidig"))
      return
      ;;
  esac
  woorden=$(_winkel_woorden "$programma")
  for woord in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $woord in -*) continue ;; esac
    if grep -qxF -- "$woord" <<<"$woorden"; then
      verbs+=("$woord")
      woorden=$(_winkel_woorden "$programma" "${verbs[@]}")
    fi
  done
  COMPREPLY=($(compgen -W "$woorden" -- "$huidig"))
  [ ${#COMPREPLY[@]} -gt 0 ] || COMPREPLY=($(compgen -f -- "$huidig"))
}

complete -o filenames -F _winkel winkel ixtool
