# Every format there is: the edited photo is saved in each of them, and each file is opened again.
formats() {
  local extensions=(jpg png bmp tif gif j2k tga pcx ras wmf emf) extension before
  start_editor
  find_window
  open_sample
  click $((panel + 270)) 122 # Invert
  wait_for 20 row_file 2 || fail "no working file after Invert"
  settled
  convert "$(temporary tmpimg_0_2.jpg)" -resize 25% "$home/expected.png"
  for extension in "${extensions[@]}"; do save "every.$extension"; done
  pass "The photo is saved in ${#extensions[@]} formats"

  for extension in "${extensions[@]}"; do
    before=$(stat -c %Y.%i "$(temporary tmpimg_0_1.jpg)")
    sleep 1 # the clock of files counts in seconds
    click 36 31 # Open
    choose Open "$out/every.$extension"
    wait_for 20 bash -c "[ -s $(temporary tmpimg_0_1.jpg) ] && [ \$(stat -c %Y.%i $(temporary tmpimg_0_1.jpg)) != $before ]" ||
      fail "every.$extension was not opened"
    settled
    # Seen from so far that the grain of 256 colours melts away.
    convert "$(temporary tmpimg_0_1.jpg)" -resize 25% "$home/opened.png"
    look_alike "$home/opened.png" "$home/expected.png" || fail "every.$extension shows another picture"
  done
  import -window root "$out/every_format.png"
  pass "Each of them opens and shows the photo"
  end_editor
}
