# What a screen reader gets: names, roles, values and states in the accessibility tree, edits made through it, announcements.
spoken() {
  if ! /usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null || [ ! -x /usr/libexec/at-spi-bus-launcher ]; then
    fail "scripts/setup was not run: the accessibility bus is missing"
  fi
  local said=0
  bin=$bin out=$out here=$here dbus-run-session -- bash -c '
    export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
    /usr/libexec/at-spi-bus-launcher --launch-immediately >/dev/null 2>&1 &
    launcher=$!
    sleep 1
    "$bin/pictorel" "$out/sample.jpg" >>"$out/editor.log" 2>&1 &
    editor=$!
    sleep 3
    status=0
    /usr/bin/python3 -W ignore "$here/spoken.py" || status=$?
    import -window root "$out/37_spoken.png"
    kill -TERM "$editor"
    sleep 0.5
    xdotool key alt+n # the question about changes
    wait "$editor" || true
    kill "$launcher" 2>/dev/null
    exit $status' 2>"$out/spoken.log" || said=$?
  [ "$said" -eq 0 ] || fail "the accessibility tree is not as it should be"
  pass "A screen reader hears roles, names, values, states and what an edit did"
}
