#!/usr/bin/env bash
# Calls the tool as its users do, rightly and wrongly.
#
# usage: tool_test.sh TOOL
set -u
tool=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for ending in bmp tif jpg ppm raw json; do ln -s /dev/full "$folder/full.$ending"; done
unset ORMIDEX_SIMULATOR ORMIDEX_TRACE DISPLAY
passed=0
failed=0

# check NAME EXIT-CODE PATTERN ARGUMENTS...: the tool must end with the code and
# say the pattern, on standard error when the code is not 0.
check() {
  local name=$1 code=$2 pattern=$3 got
  shift 3
  "$tool" "$@" > "$folder/out" 2> "$folder/err"
  got=$?
  local stream="$folder/out"
  [ "$code" = 0 ] || stream="$folder/err"
  if [ "$got" != "$code" ]; then
    echo "FAILED $name: exit code $got, expected $code: $(cat "$folder/err")"
    failed=$((failed + 1))
  elif [ -n "$pattern" ] && ! grep -qE "$pattern" "$stream"; then
    echo "FAILED $name: expected /$pattern/, got: $(head -n 20 "$stream")"
    failed=$((failed + 1))
  else
    passed=$((passed + 1))
  fi
}

# The bytes of a little-endian word in a file: word FILE OFFSET
word() { od -An -tu4 -j "$2" -N 4 "$1" | tr -d ' '; }

expect() {
  if [ "$2" = "$3" ]; then
    passed=$((passed + 1))
  else
    echo "FAILED $1: $2, expected $3"
    failed=$((failed + 1))
  fi
}

check "no camera is an error" 3 "no camera is connected" list
check "simulated cameras are listed" 0 "^1 .*monochrome" list --simulate "1;imager=mono"
check "a bad description names its place" 3 "unknown key 'colour'" list --simulate "colour=1"
check "info names the generation" 0 "generation +1" info --simulate generation=1
check "a camera is found by its serial number" 0 "serial +0x00ABCDEF" \
  info --simulate "1;serial=0xABCDEF" --camera 0xABCDEF
check "an unknown serial number" 3 "no camera has the serial number" \
  info --simulate --camera 0x99
check "a camera index past the last" 3 "no camera 1" info --simulate --camera 1
check "a camera that is none" 2 "names no camera" info --simulate --camera first
check "capture writes a bitmap" 0 "640x480" capture --simulate -o "$folder/a.bmp"
expect "its width" "$(word "$folder/a.bmp" 18)" 640
expect "its height" "$(word "$folder/a.bmp" 22)" 480
expect "its length" "$(stat -c %s "$folder/a.bmp")" $((54 + 640 * 480 * 3))
check "capture of another size" 0 "320x240" \
  capture --simulate pace=fast --set window=320x240 -o "$folder/b.bmp"
expect "its length" "$(stat -c %s "$folder/b.bmp")" $((54 + 320 * 240 * 3))
check "a size beyond the imager" 2 "not possible for 'window'" \
  capture --simulate --set window=4000x3000 -o "$folder/c.bmp"
check "a file is not replaced unasked" 2 "give --force" capture --simulate -o "$folder/a.bmp"
check "a file is replaced if wanted" 0 "640x480" capture --simulate --force -o "$folder/a.bmp"
check "a setting that does not exist" 2 "there is no setting 'bogus'" set bogus=1
check "a value out of range says the range" 2 "0 to 63" set gain-red=64 --simulate
check "a setting that the camera lacks" 2 "has no setting" \
  set gain-red=5 --simulate imager=mono
check "settings are saved" 0 "exposure=" \
  set --simulate exposure=10,window=320x240 --save "$folder/s.json"
check "settings are loaded" 0 "window=320x240" get --simulate --load "$folder/s.json"
check "a settings file that is none" 2 "is not a settings file" \
  get --simulate --load "$folder/a.bmp"
check "settings are explained" 0 "analogue gain" get --explain
# Every listing has a JSON form that names its schema and version.
for command in list info get set capture "get --explain"; do
  schema=ormidex-$command
  case $command in
    get | set) schema=ormidex-settings ;;
    "get --explain") schema=ormidex-settings-help ;;
  esac
  arguments=""
  [ "$command" != set ] || arguments=exposure=10
  [ "$command" != capture ] || arguments="-o $folder/json.bmp"
  simulate=--simulate
  [ "$command" != "get --explain" ] || simulate=""
  # shellcheck disable=SC2086  # words
  "$tool" $command $simulate $arguments --json > "$folder/out" 2> "$folder/err"
  expect "the JSON of '$command'" "$(python3 -c 'import json, sys
document = json.load(sys.stdin)
print(document["schema"], document["version"])' < "$folder/out")" "$schema 1"
done
check "info as JSON has a schema" 0 '"schema": "ormidex-info"' info --json --simulate
check "statistics" 0 "focus" capture --simulate --statistics -o "$folder/e.bmp"
check "a TIFF file" 0 "640x480" capture --simulate -o "$folder/e.tif"
check "a JPEG file" 0 "640x480" capture --simulate -o "$folder/e.jpg"
check "a still frame" 0 "640x480" capture --simulate --still -o "$folder/still.bmp"
for ending in bmp tif jpg ppm raw; do
  check "a full disk is noticed in a $ending file" 7 "disk may be full" \
    capture --simulate pace=fast --force -o "$folder/full.$ending"
done
check "a full disk of a recording's metadata" 7 "metadata are not complete" \
  record -q --simulate pace=fast -n 2 --force --metadata "$folder/full.json" -o "$folder/f-#.raw"
check "a full disk of a report" 7 "disk may be full" \
  report --simulate pace=fast --force -o "$folder/full.json"
check "a full disk of saved settings" 7 "disk may be full" \
  set --simulate pace=fast --save "$folder/full.json"
check_full_output() {
  "$tool" "$@" > /dev/full 2> "$folder/err"
  expect "the exit code of '$*' onto a full disk" "$?" 7
  expect "its sentence" "$(grep -cE 'disk may be full|No space left' "$folder/err")" 1
}
check_full_output list --simulate
check_full_output info --json --simulate
check_full_output capture --simulate pace=fast -o -
check_full_output trace --simulate pace=fast
check "a sequence" 0 "" record --simulate -n 3 -o "$folder/r-####.raw"
expect "its metadata have a line a frame" "$(wc -l < "$folder/r.jsonl")" 3
expect "frames are numbered" "$(stat -c %s "$folder/r-0002.raw")" 307200
expect "they say how the frame was taken" "$(python3 -c 'import json, sys
line = json.loads(sys.stdin.readline())
print(*sorted(line), *sorted(set(line["settings"]) & {"exposure", "gain-red", "window"}))' \
  < "$folder/r.jsonl")" "bayer-phase bits file frame height lost-before seconds settings width \
exposure gain-red window"
check "a sequence numbered as printf does" 0 "" \
  record -q --simulate pace=fast -n 2 -o "$folder/p%03d.tif"
expect "its second frame" "$(stat -c %s "$folder/p001.tif")" $((146 + 640 * 480 * 3))
for ending in bmp jpg; do
  check "a sequence of $ending files" 0 "" \
    record -q --simulate pace=fast -n 2 -o "$folder/$ending-#.$ending"
done
check "seconds instead of frames" 0 "" record -q --simulate -t 1 -o "$folder/sec-##.raw"
expect "of the time" "$([ -e "$folder/sec-02.raw" ] && [ ! -e "$folder/sec-60.raw" ] && echo yes)" yes
expect "a frame on standard output" \
  "$("$tool" capture --simulate pace=fast -o - 2> "$folder/err" | wc -c)" 307200
expect "with nothing else said" "$(wc -c < "$folder/err")" 0
"$tool" capture -q --simulate pace=fast -o "$folder/quiet.bmp" > "$folder/out" 2>&1
expect "quiet is quiet" "$(wc -c < "$folder/out")" 0
"$tool" capture -v --simulate pace=fast -o "$folder/verbose.bmp" > "$folder/out" 2> "$folder/err"
expect "verbose says more, on standard error" "$(grep -c 'opened camera 0' "$folder/err")" 1
expect "and not on standard output" "$(grep -c 'opened camera' "$folder/out")" 0
check "a sequence without a number" 2 "no place for the frame number" \
  record --simulate -n 3 -o "$folder/r.raw"
# script(1) gives the recording a terminal.
script -qec "$tool record --simulate -n 20 -o $folder/bar-##.raw" /dev/null > "$folder/out"
expect "a terminal sees a bar that ends full" \
  "$(tr '\r' '\n' < "$folder/out" | grep -cE '^\[#{30}\] 20 frames, [0-9.]+/s, [0-9]+ lost')" 1
"$tool" record --simulate -n 3 -o "$folder/nobar-#.raw" 2> "$folder/err"
expect "a file sees none" "$(grep -c '#' "$folder/err")" 0
expect "but the summary" "$(grep -cE '^3 frames in [0-9.]+ s, [0-9.]+ frames/s, 0 lost' \
  "$folder/err")" 1
check "a recording cut short" 6 "frames were recorded" \
  record -q --simulate "fault=unplug:400" -n 2000 -o "$folder/cut-####.raw"
check "a raw frame is converted without a camera" 0 "" \
  convert "$folder/r-0001.raw" --size 640x480 -o "$folder/r.ppm"
expect "the pixmap has its size" "$(stat -c %s "$folder/r.ppm")" $((15 + 921600))
check "a raw frame of another size" 2 "does not hold one frame" \
  convert "$folder/r-0001.raw" --size 640x470 -o "$folder/r2.ppm"
check "triggered frames" 0 "" \
  trigger -q --simulate trigger=software:50 -n 2 -o "$folder/t-##.bmp"
check "a trigger that never comes" 5 "check the trigger line" \
  trigger --simulate trigger=software --timeout 0.3 -o "$folder/never.bmp"
check "auto exposure" 0 "exposure=" auto exposure --simulate light=0.3,pace=fast
check "white balance" 0 "gain-blue=" auto white-balance --simulate tint=tungsten,pace=fast
check "a register" 0 "0x50" register read 0x0F --simulate
check "a camera that another program holds" 4 "another program may hold it" \
  capture --simulate fault=busy -o "$folder/busy.bmp"
check "a camera that answers no request" 4 "unplug it and plug it in again" \
  info --simulate fault=fail:get-hardware-word
check "a camera unplugged while it is opened" 6 "unplugged while it was opened" \
  info --simulate fault=unplug:20
check "a busy camera among others is left out of no listing unsaid" 4 "camera 1 cannot be opened" \
  list --simulate "1;fault=busy"
check "a trace in words" 0 "START_STREAM +<- 640 x 480, 307200 bytes" trace --simulate
check "a trace names registers and values" 0 \
  "WRITE_REGISTERS +register 71 \(frame height\) <- 0x01 0xDF" trace --simulate pace=fast
check "a trace shows what comes back" 0 "READ_REGISTERS +register 15 \(chip\) -> 0x50" \
  trace --simulate pace=fast
check "a failed request is marked" 0 "register 0 \(chip\) -> \?  FAILED" \
  trace --simulate pace=fast
for name in good again other; do
  setting=exposure=20
  [ "$name" != other ] || setting=exposure=10
  check "a trace is written" 0 "" capture --simulate pace=fast --set "$setting" --force \
    --trace "$folder/$name.json" -o "$folder/traced.bmp"
done
check "a trace is read" 0 "START_STREAM" trace "$folder/good.json"
check "two runs that are the same" 0 "the same: [0-9]+ requests" \
  trace "$folder/good.json" --compare "$folder/again.json"
check "two runs that differ" 1 "the traces differ" \
  trace "$folder/good.json" --compare "$folder/other.json"
check "their first difference is shown" 1 "" trace "$folder/good.json" --compare "$folder/other.json"
expect "as two requests in words" "$(grep -c "register .* <- " "$folder/out")" 2
check "a file that is no trace" 2 "line 1 is no request" trace "$folder/a.bmp"
check "a trace that is not there" 2 "cannot be read" trace "$folder/none.json"
check "a program is traced" 0 "READ_FRAME" \
  trace --simulate pace=fast -- "$tool" capture --force -o "$folder/traced.bmp"
check "its failure is passed on" 3 "no camera 7" \
  trace --simulate -- "$tool" info --camera 7
check "a program that does not exist" 1 "could not be started" trace -- "$folder/none"
check "no program" 2 "no program is named" trace --
check "options that are not for a traced program" 2 "only --simulate and --trace" \
  trace --set gamma=1 -- true
check "a program runs with simulated cameras" 0 "^2 .*colour" simulate 3 -- "$tool" list
check "its exit code is passed on" 9 "" simulate 3 -- sh -c 'exit 9'

# A trace that is followed shows each request while the writer still runs, and ends
# by an interrupt.
"$tool" trace --follow "$folder/live.json" > "$folder/followed" &
follower=$!
"$tool" record --simulate --trace "$folder/live.json" -n 1000 --force \
  -o "$folder/live-#.raw" 2> "$folder/writer" &
writer=$!
for _ in $(seq 300); do
  if grep -qs READ_FRAME "$folder/followed"; then break; fi
  sleep 0.1
done
expect "requests are shown while the program runs" "$(kill -0 "$writer" && echo live)" live
kill -INT "$writer"
wait "$writer" 2> /dev/null
expect "an interrupted recording is incomplete" "$?" 7
expect "its summary is printed all the same" "$(grep -cE '^[0-9]+ frames in' "$folder/writer")" 1
expect "its files are complete" \
  "$(cat "$folder"/live-*.raw | wc -c)" $((307200 * $(wc -l < "$folder/live.jsonl")))
kill -INT "$follower"
wait "$follower"
expect "the follower ends in order" "$?" 0
expect "it has shown all requests" "$(wc -l < "$folder/followed")" "$(wc -l < "$folder/live.json")"
check "a description that gives cameras" 0 "gives 3 cameras" simulate "generation=1;2"
check "the self-test of each kind" 0 "10 passed, 0 failed" selftest --simulate
check "the self-test of a first generation" 0 "10 passed, 0 failed" \
  selftest --simulate generation=1,imager=mono
# Another user may not be allowed into the folder of the build, root's own for one.
mkdir "$folder/public"
cp "$tool" "$(ldd "$tool" | awk '$1 ~ /^libormidex/ { print $3 }')" "$folder/public"
if [ "$(id -u)" = 0 ]; then
  runs_as="setpriv --reuid=65534 --clear-groups"
  mkdir "$folder/closed" && chmod 755 "$folder" "$folder/closed" "$folder/public"
else
  runs_as=""
  mkdir "$folder/closed" && chmod 555 "$folder/closed"
fi
LD_LIBRARY_PATH="$folder/public" $runs_as "$folder/public/${tool##*/}" capture --simulate pace=fast -o "$folder/closed/c.bmp" 2> "$folder/err"
expect "the exit code without permission to write" "$?" 1
expect "its sentence" "$(grep -c 'could not be created' "$folder/err")" 1
check "no display is said" 1 "is there a display" preview --simulate --seconds 1
check "a folder that does not exist" 1 "could not be created" \
  capture --simulate -o "$folder/none/c.bmp"
check "a file ending of another kind" 2 "name it" capture --simulate -o "$folder/c.gif"
check "a missing output file" 2 "required" capture --simulate
check "a camera unplugged while it streams" 6 "no more frames" \
  capture --simulate "fault=unplug:400" --frames 2000 -o "$folder/c.bmp"
for command in "register read 0x0F" "auto exposure" "trace" "selftest" "info" "get"; do
  # shellcheck disable=SC2086  # the words of the command
  check "no camera for '$command'" 3 "no camera is connected" $command
done
check "a camera unplugged before it is used" 6 "still plugged in" \
  capture --simulate "pace=fast,fault=unplug:150" --frames 500 -o "$folder/u.bmp"
check "a camera unplugged while it waits for a trigger" 6 "plugged in" \
  trigger -q --timeout 2 --simulate "trigger=hardware:20,fault=unplug:160" -n 1000 -o "$folder/u-###.raw"
check "a camera unplugged while the exposure is sought" 6 "plugged in" \
  auto exposure --simulate "light=0.3,fault=unplug:170"
check "a frame that does not come" 5 "no frame came in time" \
  capture --simulate "pace=fast,timeout=200,fault=never" -o "$folder/never.bmp"
check "an option's value of another kind" 2 "." capture --simulate --frames many -o "$folder/c.bmp"
check "an unknown option" 2 "not expected" list --frob
check "an unknown command" 2 "." frob
check "no command" 2 "subcommand" --
check "help is not an error" 0 "capture" --help

ORMIDEX_TRACE="$folder/trace" "$tool" capture --simulate -o "$folder/d.bmp" > "$folder/out"
expect "a trace is one JSON object a line" \
  "$(python3 -c 'import json,sys; print(all(json.loads(l)["code"] for l in open(sys.argv[1])))' \
    "$folder/trace")" True
expect "a frame is traced by its length" \
  "$(grep -m1 CAM_IOCTL_READ_FRAME "$folder/trace" | grep -c '"length":307200')" 1

echo "$passed passed, $failed failed"
[ "$failed" = 0 ]
