# What the tests with running handsets share: sourced, with $phonesim set. It leaves the caller in a folder of its own,
# which goes with it, and so do the handsets. What is wrong is told, and makes `failed` 1.

# How long what should come is waited for. Nothing takes so long unless it hangs, however busy the machine is.
patience=60

work=$(mktemp -d)
cd "$work"
failed=0
declare -A children=()

finish() {
  exec 3>&- 4>&- 2>/dev/null
  local child
  for child in "${children[@]}"; do kill "$child" 2>/dev/null; done
  wait
  cd /
  rm -rf "$work"
}
trap finish EXIT

fail() {
  echo "FAILED: $1"
  failed=1
}

# expect FILE TEXT: a line of the file is this text.
expect() {
  grep -qxF -- "$2" "$1" && return
  fail "$1 has no line: $2"
  sed 's/^/    /' "$1"
}

# expect_part FILE TEXT: the text is part of a line of the file.
expect_part() {
  # Not a pipe: grep ends with the first match, and what still writes into the pipe would fail.
  grep -qF -- "$2" <(tr -d '\0' <"$1") && return
  fail "$1 does not contain: $2"
  sed 's/^/    /' "$1"
}

# wait_for FILE TEXT: until the file has it.
wait_for() {
  local i
  for ((i = 0; i < patience * 20; i++)); do
    grep -qF -- "$2" "$1" 2>/dev/null && return
    sleep 0.05
  done
  fail "$1 never had: $2"
  sed 's/^/    /' "$1"
  return 1
}

# start NAME DESCRIPTOR OPTION...: a phonesim whose commands come from that descriptor; it says what it does in NAME.out.
start() {
  local name=$1 descriptor=$2
  shift 2
  rm -f "$name.in"
  mkfifo "$name.in"
  "$phonesim" --memory "$name.memory" --link "$name.tty" "$@" <"$name.in" >"$name.out" 2>&1 3>&- 4>&- &
  children[$name]=$!
  eval "exec $descriptor>$name.in"
  wait_for "$name.out" '* terminal '
}

# tell NAME DESCRIPTOR COMMAND: gives a command; its answer is in `answer`.
tell() {
  local lines
  lines=$(wc -l <"$1.out")
  echo "$3" >&"$2"
  local i
  for ((i = 0; i < patience * 20; i++)); do
    tail -n +$((lines + 1)) "$1.out" >answer
    grep -qE '^(ok|error)' answer && return
    sleep 0.05
  done
  fail "no answer to: $3"
}

# end NAME DESCRIPTOR: an orderly end; the sanitizers have nothing to say.
end() {
  tell "$1" "$2" quit
  wait "${children[$1]}" || fail "phonesim $1 ended with $?"
  unset "children[$1]"
  eval "exec $2>&-"
  grep -E 'runtime error|Sanitizer' "$1.out" && failed=1
}

# kill_hard NAME DESCRIPTOR: without a chance to say anything.
kill_hard() {
  kill -9 "${children[$1]}"
  wait "${children[$1]}" 2>/dev/null
  unset "children[$1]"
  eval "exec $2>&-"
}
