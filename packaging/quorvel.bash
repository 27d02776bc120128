# Completion of quorvel's arguments in bash.
_quorvel() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} choices
  local commands="overview sessions logins files transfers traffic check export digest"
  local scope="--from --to --user --address --path --outcome --words --format --output --raw-text --timezone --help"
  local rows="--sort --reverse --limit --columns --alert"
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$word"; compgen -f -- "$word")
    return
  fi
  case $before in
    --format)
      choices="text csv jsonl html"
      if [[ $command == export ]]; then choices="jsonl csv sqlite ecs"; fi
      if [[ $command == digest ]]; then choices="text html"; fi
      ;;
    --by)
      case $command in
        logins) choices="address user attempt" ;;
        files) choices="action folder" ;;
        check) choices="log shape" ;;
        *) choices="user address day hour weekday month folder" ;;
      esac
      ;;
    --from | --to) choices="today yesterday -7d" ;;
    --outcome) choices="ok failed logged_on bad_password refused" ;;
  esac
  if [[ -z ${choices-} && $word == -* && " $commands " == *" $command "* ]]; then
    choices=$scope
    case $command in
      overview | logins) choices+=" $rows --in-ten-minutes --in-two-minutes --before-success" ;;
      digest) choices+=" --alert --state --in-ten-minutes --in-two-minutes --before-success" ;;
      transfers) choices+=" $rows --all" ;;
      check) choices+=" $rows --alert-set-aside" ;;
      sessions | files | traffic) choices+=" $rows" ;;
    esac
    case $command in logins | files | traffic | check) choices+=" --by" ;; esac
  fi
  if [[ -n ${choices-} ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -o filenames -F _quorvel quorvel
