# Save by the desktop's own file dialog, where this machine has GTK's: it begins with the photo's name, and a file is never
# replaced unasked, not under the extension that a name gets either.
native_dialogs() {
  if ! find / -xdev -name libqgtk3.so -path '*platformthemes*' 2>/dev/null | grep -q .; then
    echo "left out: no GTK dialogs for Qt here"
    return
  fi
  mkdir "$home/photos"
  cp "$out/sample.jpg" "$home/photos/mine.jpg"
  local before
  before=$(md5sum <"$home/photos/mine.jpg")
  QT_QPA_PLATFORMTHEME=gtk3 start_editor "$home/photos/mine.jpg"
  wait_for 20 row_file 1 || fail "the photo is not open"
  settled
  find_window 'mine\.jpg - Pictorel'
  xdotool key ctrl+s
  wait_for 10 xdotool search --onlyvisible --name '^Save$' || fail "no Save dialog"
  sleep 1
  import -window root "$out/27_native_save.png"
  xdotool key ctrl+a
  xdotool type --delay 5 mine # without its extension
  xdotool key Return
  sleep 1
  import -window root "$out/28_native_question.png"
  xdotool key Return # No
  sleep 1
  xdotool key Escape
  sleep 0.5
  [ "$(md5sum <"$home/photos/mine.jpg")" = "$before" ] || fail "mine.jpg was replaced without a question"
  xdotool key ctrl+s
  sleep 1
  xdotool key ctrl+a
  xdotool type --delay 5 other
  xdotool key Return
  wait_for 10 test -s "$home/photos/other.jpg" || fail "other.jpg was not saved beside the photo"
  settled
  xdotool search --onlyvisible --name '^other.jpg - Pictorel$' >/dev/null || fail "the title does not follow Save"
  end_editor
  pass "Save by the desktop's dialog begins beside the photo and asks before it replaces"
}
