# Zooming and panning by every means, the window's size, and the Resize page.

# look NAME takes the picture area's likeness, changed A B compares two.
look() { import -window root -crop "$((panel - 40))x$((client_height - 180))+$((left + 8))+$((top + 66))" +repage "$home/$1.png"; }
changed() { [ "$(compare -metric AE "$home/$1.png" "$home/$2.png" null: 2>&1 | sed 's/[^0-9.e+].*//')" != 0 ]; }
zoom_and_pan() {
  local middle_x=$(((panel - 20) / 2)) middle_y=$((client_height / 2))
  xdotool key ctrl+1; settled; look before
  step() { # NAME COMMAND...
    local name=$1; shift
    "$@"; sleep 0.3; look after
    changed before after || fail "$name did not change the view"
    mv "$home/after.png" "$home/before.png"
  }
  step "Best Fit" click $((tools + 164)) $((client_height - 37))
  step "Actual Size" click $((tools + 140)) $((client_height - 37))
  step "Zoom In" click $((tools + 412)) $((client_height - 37))
  step "Zoom Out" click $((tools + 212)) $((client_height - 37))
  step "Ctrl++" xdotool key ctrl+plus
  step "Ctrl+-" xdotool key ctrl+minus
  point $middle_x $middle_y
  step "the wheel" xdotool click 4
  step "dragging" xdotool mousedown 1 mousemove_relative --sync 20 15 mousemove_relative --sync -- -90 -60 mouseup 1
  step "a double click" xdotool click --repeat 2 --delay 40 1
  step "the zoom slider's track" click $((tools + 380)) $((client_height - 37))
}
measure_window() {
  left=$(geometry "Absolute upper-left X") top=$(geometry "Absolute upper-left Y")
  client_width=$(geometry Width) client_height=$(geometry Height)
  panel=$((client_width - 357)) tools=$((client_width - 844))
}
resize_window() { # a large picture fits anew whatever the zoom was
  local title=(mousemove $((width / 2)) 9 click --repeat 2 --delay 60 1) # a double click there is the window manager's
  xdotool "${title[@]}"; settled
  xdotool key ctrl+1; settled
  xdotool windowsize --sync "$window" $((width - 250)) $((height - 120)); settled
  measure_window; look before
  xdotool key ctrl+0; settled; look after
  if changed before after; then fail "the picture was not fitted when the window was resized"; fi
  import -window root "$out/16_resized_window.png"
  xdotool mousemove $((left + client_width / 2)) $((top - 9)) click --repeat 2 --delay 60 1; sleep 0.6
  measure_window
}
save_size() { # the size of the picture as it is saved
  rm -f "$out/size.png"
  xdotool key ctrl+s
  choose Save "$out/size.png"
  wait_for 20 test -s "$out/size.png" || fail "size.png was not saved"
  settled
  identify -format '%wx%h' "$out/size.png"
}
expect_size() { # WIDTHxHEIGHT WHAT
  local size
  size=$(save_size)
  [ "$size" = "$1" ] || fail "$2 makes $size instead of $1"
}
apply() { click $((panel + 290)) 460; sleep 0.8; }
mode() { click $((panel + 60)) "$1"; sleep 0.2; }
type_into() { # X Y TEXT
  point "$1" "$2"; xdotool click --repeat 3 --delay 30 1; xdotool key ctrl+a
  xdotool type --delay 5 -- "$3"; sleep 0.1
}
resize_picture() {
  click $((panel + 42 + 3 * 84)) 77 # the Resize page
  mode 245; apply # Predefined: 900 x 600
  expect_size 900x600 "Predefined"
  mode 387; type_into $((panel + 60)) 415 'x5-0y'; apply # Percentage, wrong keys among it
  expect_size 450x300 "Percentage"
  mode 303; type_into $((panel + 60)) 353 225; apply # Custom, locked
  expect_size 225x150 "Custom with the lock"
  mode 303; click $((panel + 245)) 353; type_into $((panel + 60)) 353 6000; type_into $((panel + 166)) 353 -5; apply
  expect_size 225x1 "Custom without the lock"
  xdotool key ctrl+z; settled
  expect_size 225x150 "Undo of a resize"
  click $((panel + 245)) 353; mode 219 # lock again, Original Size
}

zoom_and_resize() {
  start_editor
  find_window
  sleep 0.3
  open_sample
  measure_window
  zoom_and_pan
  import -window root "$out/17_zoomed.png"
  pass "Every way of zooming and panning moves the picture"
  resize_window
  pass "Resizing the window fits the picture anew"
  resize_picture
  import -window root "$out/18_resized.png"
  pass "All four modes resize as typed, wrong keys or not"
  end_editor # the last state was saved, so no question
}
