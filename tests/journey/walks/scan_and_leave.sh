# A page from the scanner, and every road out.
start_to_scan() {
  start_editor
  find_window
  sleep 0.5
}
scan_page() {
  click 348 31 # Scan
  wait_for 20 row_file 1 || fail "no working file after Scan"
  settled
}
goes_on() {
  settled
  kill -0 "$editor" 2>/dev/null || fail "the editor ended although $1"
  row_file 2 || fail "the history is lost although $1"
}
scan_and_leave() {
  mkdir "$home/scanner"
  echo test > "$home/scanner/dll.conf"
  printf '%s\n' 'geometry_min 0.0' 'geometry_max 60.0' 'geometry_quant 1.0' 'br_x 50.0' 'br_y 50.0' \
    'resolution_min 1.0' 'resolution_max 1200.0' 'resolution_quant 1.0' 'test-picture "Color pattern"' \
    'read-delay true' 'read-delay-duration 50000' > "$home/scanner/test.conf"

  start_to_scan
  scan_page
  import -window root "$out/20_scanned.png"
  [ "$(identify -format '%wx%h' "$(temporary tmpimg_0_1.jpg)")" = 472x472 ] || fail "the page has the wrong size"
  if row_file 2; then fail "a scanned page has more than one row"; fi
  [ ! -e "$(temporary tmp_scan.jpg)" ] || fail "tmp_scan.jpg was left"
  pass "Scan brings a page in as a new picture"

  click $((panel + 270)) 122 # Invert
  wait_for 20 row_file 2 || fail "no working file after Invert"
  settled
  local signal
  for signal in TERM INT HUP; do
    kill -"$signal" "$editor"
    answer Escape
    goes_on "SIG$signal was answered with Cancel"
  done
  kill -TERM "$editor"
  answer alt+n
  has_ended "No to SIGTERM"
  pass "SIGTERM, SIGINT and SIGHUP ask; Cancel keeps everything, No ends"

  start_to_scan
  scan_page
  click $((panel + 270)) 122
  wait_for 20 row_file 2 || fail "no working file after Invert"
  settled
  xdotool key alt+F4
  answer alt+y
  wait_for 10 xdotool search --onlyvisible --name '^Save$' || fail "Yes shows no Save dialog"
  sleep 0.3
  xdotool key Escape
  goes_on "the Save dialog was cancelled"
  xdotool key alt+F4
  answer alt+y
  choose Save "$out/scanned.png"
  has_ended "Yes to Alt+F4"
  [ "$(identify -format '%wx%h' "$out/scanned.png")" = 472x472 ] || fail "scanned.png was not saved"
  pass "Alt+F4 asks; Yes saves and ends"

  start_to_scan
  scan_page
  kill -KILL "$editor"
  wait "$editor" 2>/dev/null || true
  row_file 1 || fail "there is nothing to sweep"
  start_to_scan
  if row_file 1; then fail "the dead editor's files were not swept"; fi
  kill -TERM "$editor"
  has_ended "SIGTERM without a picture"
  pass "What a killed editor leaves is swept at the next start"
}

