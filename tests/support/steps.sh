# For tests that are scripts: a folder of their own, and steps that are counted.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
passed=0
failed=0

# step NAME COMMAND...: prints what the command said when it fails.
step() {
  local name=$1
  shift
  if "$@" > "$folder/log" 2>&1; then
    passed=$((passed + 1))
  else
    echo "FAILED $name: $*"
    tail -n 20 "$folder/log"
    failed=$((failed + 1))
  fi
}
