# A first session: open a photo, edit it, hold a slider, undo, pick a history row, save in two formats, look at About.
edit() {
  start_editor
  wait_for 10 xdotool search --onlyvisible --name '^pictorel$' || true
  sleep 1.2
  import -window root "$out/01_splash.png"
  find_window
  sleep 1.2 # the tag follows Open by half a second
  import -window root "$out/02_ready.png"

  open_sample
  import -window root "$out/03_opened.png"
  pass "Open shows the photo and writes the first working file"

  click $((panel + 167)) 122 # Auto Levels
  wait_for 20 row_file 2 || fail "no working file after Auto Levels"
  settled
  click $((panel + 270)) 122 # Invert
  wait_for 20 row_file 3 || fail "no working file after Invert"
  settled
  import -window root "$out/04_inverted.png"
  tools=$((client_width - 844)) # where the view tools begin
  click $((tools + 36)) $((client_height - 37)) # Rotate Left
  wait_for 20 row_file 4 || fail "no working file after Rotate Left"
  settled
  import -window root "$out/05_rotated.png"
  [ "$(identify -format '%wx%h' "$(temporary tmpimg_0_4.jpg)")" = 1000x1500 ] || fail "Rotate Left did not turn"
  convert "$(temporary tmpimg_0_2.jpg)" -negate "$home/negative.png"
  look_alike "$(temporary tmpimg_0_3.jpg)" "$home/negative.png" || fail "Invert is not the negative"
  pass "Auto Levels, Invert and Rotate Left each add a working file with the right picture"

  click 164 31 # Undo
  settled
  click 164 31
  settled
  import -window root "$out/06_undone_twice.png"
  pass "Undo twice"

  # Hold Brightness, look at the preview window, let go.
  point $((panel + 4 + 198)) 154
  xdotool mousedown 1
  sleep 0.3
  xdotool mousemove_relative --sync 15 0
  sleep 0.2
  xdotool mousemove_relative --sync 15 0
  wait_for 5 xdotool search --onlyvisible --name '^Brightness$' || fail "no preview window while the slider is held"
  sleep 0.3
  import -window root "$out/07_brightness_held.png"
  xdotool mouseup 1
  settled
  if xdotool search --onlyvisible --name '^Brightness$' >/dev/null 2>&1; then fail "the preview window stayed"; fi
  row_file 3 || fail "no working file after the slider was let go"
  if row_file 4; then fail "the rows that could be redone stayed"; fi
  import -window root "$out/08_brightness_committed.png"
  pass "A slider previews while held and commits one row when let go"

  history=$((client_height - 147)) # the first row of the history list
  click $((panel + 60)) $((history + 20)) # row 1: Auto Levels
  settled
  import -window root "$out/09_history_row_picked.png"

  save saved.png
  save saved.jpg
  for file in saved.png saved.jpg; do
    [ "$(identify -format '%wx%h' "$out/$file")" = 1500x1000 ] || fail "$file has the wrong size"
    look_alike "$(temporary tmpimg_0_2.jpg)" "$out/$file" || fail "$file is not the picked state"
  done
  [ "$(identify -format '%m' "$out/saved.png")" = PNG ] || fail "saved.png is no PNG"
  [ "$(identify -format '%m' "$out/saved.jpg")" = JPEG ] || fail "saved.jpg is no JPEG"
  pass "A picked history row is saved as PNG and as JPEG"

  click 476 31 # About
  wait_for 5 xdotool search --onlyvisible --name '^About$' || fail "no About window"
  sleep 0.3
  import -window root "$out/10_about.png"
  xdotool key Escape
  sleep 0.2
  for page in 1 2 3; do
    click $((panel + 42 + page * 84)) 77
    sleep 0.2
    import -window root "$out/1${page}_page.png"
  done

  end_editor
  pass "Closing leaves no file and no process"
}
