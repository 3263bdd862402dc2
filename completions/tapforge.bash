# Completion for tapforge in bash.

_tapforge() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
  local options="-d -exact -i -l -o -s -tck_freq -w -z"
  local word ksvf='' tapbus=''
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      -ksvf) ksvf=yes ;;
      -tapbus | -c | -linenum | -max_rti_tck | -wait) tapbus=yes ;;
    esac
  done

  COMPREPLY=()
  case $prev in
    -a | -i | -l | -o)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      return
      ;;
    -kprintsrc)
      mapfile -t COMPREPLY < <(compgen -W "0 1 2 3" -- "$cur")
      return
      ;;
    -tck_freq)
      mapfile -t COMPREPLY < <(compgen -W "1000000" -- "$cur")
      return
      ;;
    -z)
      mapfile -t COMPREPLY < <(compgen -W "1" -- "$cur")
      return
      ;;
    -kmaxsrclines | -linenum | -max_rti_tck | -r | -rlen | -runmin | -ver | -wait)
      return
      ;;
  esac

  if [[ -z $ksvf ]]; then
    options+=" -c -linenum -max_rti_tck -tapbus -wait"
  fi
  if [[ -z $tapbus ]]; then
    options+=" -ksvf"
  fi
  if [[ -n $ksvf ]]; then
    options+=" -a -extensions -fpga -inorder -kmaxsrclines -kprintsrc -kshowallopts -kwait
      -minkstate -multiple_runtest -nc -r -rlen -runmin -useKSDR -v2 -ver"
    # -i takes several files.
    if [[ $cur != -* ]]; then
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      return
    fi
  fi
  mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
}

complete -F _tapforge tapforge
