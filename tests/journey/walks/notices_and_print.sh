# Splash, update notice with its sound, blink and tag, the Tools window, printing.
# Announces version 9.9 to whoever asks; writes its port to the file.
serve_version_list() {
  perl -MIO::Socket::INET -e '
    my $server = IO::Socket::INET->new(Listen => 5, LocalAddr => "127.0.0.1") or die;
    open(my $port, ">", $ARGV[0]); print $port $server->sockport, "\n"; close($port);
    my $page = "<html><body><p>9.9/Faster preview/New Halftone effect/</p><p>1.0/First/</p></body></html>";
    while (my $client = $server->accept) {
      sysread($client, my $request, 4096);
      print $client "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: ", length($page),
        "\r\nConnection: close\r\n\r\n", $page;
      close($client);
    }' "$1" >/dev/null 2>&1 &
  pids+=($!)
  wait_for 5 test -s "$1" || fail "the version list is not served"
}

# The red of the screen's pixel at X Y, 0 to 255.
red_at() { import -window root -crop "1x1+$1+$2" -depth 8 rgb:- | od -An -tu1 -N1 | tr -d ' '; }
open_is_lit() { [ "$(red_at $((left + 14)) $((top + 40)))" -gt 150 ]; }
tag_is_shown() { [ "$(red_at $((left + 240)) $((top + 130)))" -gt 200 ]; }
splash_is_shown() { [ "$(red_at $((width / 2 + 150)) $((height / 2)))" -gt 100 ]; }

notices_and_print() {
  printf '[general]\ndrivers = wave\n[wave]\nfile = %s/notice.wav\n' "$out" >"$home/alsoft.conf"
  serve_version_list "$home/port"
  PICTOREL_UPDATE_URL="http://127.0.0.1:$(cat "$home/port")/" ALSOFT_CONF=$home/alsoft.conf start_editor
  wait_for 10 splash_is_shown || fail "no splash"
  sleep 0.5
  import -window root "$out/20_splash.png"
  find_window
  if splash_is_shown; then fail "the splash is still there when the window is"; fi
  pass "The splash comes and goes before the window"

  wait_for 10 xdotool search --onlyvisible --name '^Update$' || fail "no update notice"
  sleep 1 # the sound lasts half a second
  import -window root "$out/21_update.png"
  [ "$(tail -c +45 "$out/notice.wav" | tr -d '\0' | wc -c)" -gt 10000 ] || fail "the notice makes no sound"
  xdotool key Escape
  pass "A newer version is announced, with its sound"

  local lit=0 was=no tagged=no
  local until=$((SECONDS + 5))
  while [ "$SECONDS" -lt "$until" ]; do
    if open_is_lit; then
      if [ "$was" = no ]; then lit=$((lit + 1)); fi
      was=yes
    else
      was=no
    fi
    if [ "$tagged" = no ] && tag_is_shown; then
      tagged=yes
      import -window root "$out/22_tag.png"
    fi
  done
  [ "$lit" -eq 3 ] || fail "Open blinked $lit times instead of three"
  [ "$tagged" = yes ] || fail "no getting-started tag"
  if tag_is_shown; then fail "the getting-started tag stayed"; fi
  pass "Open blinks three times; the tag points at it and goes"

  click 420 31 # Tools
  wait_for 5 xdotool search --onlyvisible --name '^Tools$' || fail "no Tools window"
  sleep 0.3
  import -window root "$out/23_tools.png"
  xdotool key Escape

  settled
  open_sample
  click 292 31 # Print
  wait_for 10 xdotool search --onlyvisible --name '^Print$' || fail "no print dialog"
  sleep 0.5
  import -window root "$out/24_print.png"
  xdotool key Return
  wait_for 20 grep -aq '%%EOF' "$home/sample.pdf" || fail "nothing was printed"
  settled
  mv "$home/sample.pdf" "$out/printed.pdf"
  pdftoppm -r 150 -png -singlefile "$out/printed.pdf" "$out/printed"
  convert "$out/printed.png" -fuzz 5% -trim +repage -resize '600x400!' "$home/printed.png"
  convert "$out/sample.jpg" -resize '600x400!' "$home/wanted.png"
  look_alike "$home/printed.png" "$home/wanted.png" || fail "the printed page does not show the picture"
  pass "Print makes a page that shows the picture"
  end_editor

  start_editor
  find_window
  wait_for 5 open_is_lit || fail "Open does not blink"
  wait_for 5 tag_is_shown || fail "no getting-started tag"
  click 36 31
  wait_for 10 xdotool search --onlyvisible --name '^Open$' || fail "the Open dialog did not appear"
  xdotool key Escape
  sleep 0.3
  if tag_is_shown; then fail "the tag stays when Open is clicked"; fi
  point 400 400
  for _ in 1 2 3 4 5 6; do
    if open_is_lit; then fail "Open blinks on after it was clicked"; fi
    sleep 0.2
  done
  end_editor
  [ -z "$(ls "$home/tmp")" ] || fail "files were left in the temporary folder: $(ls "$home/tmp")"
  pass "Opening ends the blink and the tag"
}
