# Completion for tapforge-replay in bash.

_tapforge_replay() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} known
  local classes="beyond-maximum care compared-less compared-more end-states frequency longer-waits
    lost-waits maximum-times moved-waits no-scans parallel-io reset-line reset-line-off
    rounded-waits shorter-waits state-moves too-fast unknown-rate"

  COMPREPLY=()
  case $prev in
    -allow)
      known=
      [[ $cur == *,* ]] && known=${cur%,*},
      mapfile -t COMPREPLY < <(compgen -P "$known" -W "$classes" -- "${cur##*,}")
      return
      ;;
    -scan | -tck_freq | -width)
      return
      ;;
  esac
  if [[ $cur == -* && $prev != -vcd ]]; then
    mapfile -t COMPREPLY < <(compgen -W "-allow --help -scan -strict -summary -tck_freq -v2 -vcd
      --version -w -width" -- "$cur")
    return
  fi
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$cur")
}

complete -F _tapforge_replay tapforge-replay
