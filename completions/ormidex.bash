# Completion of the ormidex command for bash.
_ormidex() {
  local word=${COMP_WORDS[COMP_CWORD]}
  local commands="list info get set capture record preview convert trigger auto register trace
    simulate bench selftest report"
  local options="--camera --simulate --set --load --trace --help"
  if [ "$COMP_CWORD" = 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands --help --version --quiet --verbose" -- "$word")
    return
  fi
  case ${COMP_WORDS[1]} in
    auto) options="exposure white-balance $options --rectangle --output --save --force" ;;
    register) options="read write i2c-read i2c-write gpio $options --count" ;;
    capture) options="$options --output --algorithm --frames --still --statistics --json --force" ;;
    record) options="$options --output --frames --seconds --metadata --algorithm --force" ;;
    convert) options="--output --size --bits --phase --mono --algorithm --force" ;;
    trigger) options="$options --output --frames --exposure --timeout --algorithm --force" ;;
    get) options="$options --json --explain" ;;
    set) options="$options --save --json" ;;
    list) options="--simulate --json" ;;
    info) options="$options --json" ;;
    trace) options="$options --compare --follow --frames" ;;
    report) options="--simulate --output --force" ;;
    preview) options="$options --algorithm --save-as --seconds --force" ;;
  esac
  case $word in
    -*) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word") ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word"; compgen -f -- "$word") ;;
  esac
}
complete -F _ormidex ormidex
