# By keyboard alone: open, every page of tools, sliders, buttons, history, zoom, scrolling, a size field, About's link, save.
keys() { # KEY...: one after the other, as fast as a quick hand
  local key
  for key in "$@"; do
    xdotool key "$key"
    sleep 0.06
  done
}
times() { # N KEY
  local i
  for ((i = 0; i < $1; ++i)); do keys "$2"; done
}
seen() { import -window root "$home/seen_$1.png"; }
seen_picture() { import -window root -crop "400x300+$((left + 200))+$((top + 200))" +repage "$home/seen_$1.png"; }
must_change() { # BEFORE AFTER WHAT
  [ "$(compare -metric AE "$home/seen_$1.png" "$home/seen_$2.png" null: 2>&1 | sed 's/[^0-9.e+].*//')" != 0 ] || fail "$3"
}

by_keyboard() {
  start_editor
  find_window
  xdotool mousemove $((width - 1)) $((height - 1)) # out of the way, for good
  sleep 0.5
  keys space # on Open, where the focus begins
  choose Open "$out/sample.jpg"
  wait_for 20 row_file 1 || fail "Space on Open opened nothing"
  settled

  # Backwards from Open: the history, Reset, the last slider.
  times 3 shift+Tab
  times 10 Left
  import -window root "$out/30_keyboard_slider.png"
  if row_file 2; then fail "a slider that keys moved was applied before Enter"; fi
  keys Escape
  times 10 Left
  keys Return
  wait_for 10 row_file 2 || fail "Enter applied no slider"
  settled
  times 12 shift+Tab # past the other eleven sliders to Invert
  import -window root "$out/31_keyboard_button.png"
  keys space
  wait_for 10 row_file 3 || fail "Space pressed no button"
  settled
  keys Return
  wait_for 10 row_file 4 || fail "the focus did not stay on the button"
  settled
  pass "Sliders and buttons by keyboard"

  seen adjustments
  keys ctrl+Page_Down; sleep 0.3; seen filters
  must_change adjustments filters "Ctrl+PageDown shows no other page"
  import -window root "$out/32_keyboard_tabs.png"
  keys ctrl+Page_Down ctrl+Page_Down ctrl+Page_Down; sleep 0.3; seen round
  keys ctrl+Page_Up; sleep 0.3
  import -window root "$out/33_keyboard_resize.png"
  # On the tabs, where the focus stayed: the Resize page's chosen size, up to percent.
  keys Tab Down Down Down
  keys Tab; keys Down
  times 3 Tab
  import -window root "$out/34_keyboard_percent.png"
  pass "Pages of tools by keyboard"

  keys ctrl+0; sleep 0.3; seen fit
  keys ctrl+1; sleep 0.3; seen actual
  must_change fit actual "Ctrl+1 does not zoom"
  keys ctrl+Page_Down; sleep 0.2 # Adjustments again
  seen_picture before_scroll
  # Behind the tool bar, where the focus came round to Open: seven of its buttons, two links, the scroll bars.
  times 9 Tab
  times 3 Page_Down
  sleep 0.3
  import -window root "$out/35_keyboard_scroll.png"
  seen_picture scrolled
  must_change before_scroll scrolled "the scroll bar does not move the picture"
  pass "Zoom and scrolling by keyboard"

  keys F1
  wait_for 5 xdotool search --onlyvisible --name '^About$' || fail "no About window"
  sleep 0.3
  : >"$home/browser/asked"
  keys shift+Tab
  sleep 0.2
  import -window root "$out/36_keyboard_link.png"
  keys Return
  wait_for 5 grep -q . "$home/browser/asked" || fail "About's link is out of reach"
  keys Escape
  sleep 0.3
  pass "About's link by keyboard"

  keys ctrl+z; settled
  keys ctrl+s
  choose Save "$out/by_keyboard.png"
  wait_for 20 test -s "$out/by_keyboard.png" || fail "Ctrl+S saved nothing"
  settled
  look_alike "$(temporary tmpimg_0_3.jpg)" "$out/by_keyboard.png" || fail "the picture after Undo is another"
  keys ctrl+c ctrl+v; settled
  if ! xdotool search --onlyvisible --name '^Clipboard - Pictorel$' >/dev/null; then fail "Ctrl+V opened no copy"; fi
  end_editor
  pass "Undo, save, copy and paste by keyboard"
}
