# What ends before there is a window.
ends() {
  status=0
  "$bin/pictorel" homepage >/dev/null 2>&1 || status=$?
  [ "$status" -eq 5 ] || fail "the argument homepage ends with $status instead of 5"
  wait_for 5 grep -q . "$home/browser/asked" || fail "the home page was not opened"
  pass "the argument homepage opens the home page and ends with 5"

  mkdir "$home/bare"
  cp "$bin/pictorel" "$home/bare/"
  "$home/bare/pictorel" >/dev/null 2>&1 &
  bare=$!
  wait_for 20 xdotool search --name '^Error in loading\.\.\.$' || fail "no message about the missing skin"
  import -window root "$out/error_in_loading.png"
  sleep 0.3
  xdotool key Return
  status=0
  wait "$bare" || status=$?
  [ "$status" -ne 0 ] || fail "a failed start ends with success"
  pass "a missing skin file is reported and ends the start"
}
