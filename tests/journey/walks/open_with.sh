# As a file manager starts it: a photo on the command line is open at once, a second start is a second editor, a file that
# is not there is named; and what a terminal asks.
title_is() { wait_for "${2:-10}" xdotool search --onlyvisible --name "^$1\$"; }
open_with() {
  local second first
  env -u DISPLAY "$bin/pictorel" --version | grep -q '^Pictorel [0-9]' || fail "--version prints no version"
  env -u DISPLAY "$bin/pictorel" --help | grep -q 'pictorel \[FILE\]' || fail "--help prints no help"
  pass "--version and --help answer without a display"

  cp "$out/sample.jpg" "$home/a [*] b.jpg"
  start_editor "$home/a [*] b.jpg"
  wait_for 4 row_file 1 || fail "the photo of the command line is not open within 4 seconds"
  first=$editor
  start_editor "$out/sample.jpg"
  second=$editor
  wait_for 10 bash -c "[ \$(ls $home/tmp/pictorel-*/tmpimg_0_1.jpg | wc -l) -eq 2 ]" || fail "the second editor opened nothing"
  settled
  import -window root "$out/25_opened_with.png"
  kill -TERM "$second"
  wait "$second" || fail "the second editor did not end well"
  kill -TERM "$first"
  editor=$first
  has_ended "SIGTERM to the first of two"
  pass "A photo on the command line opens at once, a second one in a second editor"

  start_editor "$home/absent.jpg"
  title_is Error || fail "no message about a file that is not there"
  sleep 0.3
  import -window root "$out/26_absent.png"
  xdotool key Return
  find_window
  end_editor
  pass "A file that is not there is named"
}
