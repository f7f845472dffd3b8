# Completion of korvel-layout in bash. The words come from the program itself.

_korvel_layout() {
  local words=() word last= line candidate
  # bash takes "--format=nv12" for three words, where = is one that separates them.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    if [ ${#words[@]} -gt 0 ] && { [ "$word" = = ] || [ "$last" = = ]; }; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    last=$word
  done
  local kept=
  [[ $COMP_WORDBREAKS != *=* ]] || kept=${words[-1]%"${words[-1]##*=}"}
  COMPREPLY=()
  while IFS= read -r line; do
    if [ "$line" = FILES ]; then
      compopt -o default
      return
    fi
    candidate=${line%%$'\t'*}
    [[ $candidate != *= ]] || compopt -o nospace
    COMPREPLY+=("${candidate#"$kept"}")
  done < <("$1" complete "${words[@]}" 2>/dev/null)
}

complete -F _korvel_layout korvel-layout
