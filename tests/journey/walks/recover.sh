# Editors that are killed: the next start brings the history back, row for row; one that is killed in the midst of an
# edit loses at most that edit; "No" discards; what nobody changed is not asked about.
question() { wait_for 10 xdotool search --onlyvisible --name '^Recover$' || fail "no question: $1"; sleep 0.3; }
no_question() {
  sleep 1
  if xdotool search --onlyvisible --name '^Recover$' >/dev/null 2>&1; then fail "a question: $1"; fi
}
reply() {
  xdotool key "$1"
  wait_for 10 bash -c "! xdotool search --onlyvisible --name '^Recover\$'" || fail "the question about the recovery stayed"
}
kill_editor() {
  kill -KILL "$editor"
  wait "$editor" 2>/dev/null || true
}
edit_twice() {
  start_editor
  find_window
  open_sample
  click $((panel + 270)) 122 # Invert
  wait_for 20 row_file 2 || fail "no working file after Invert"
  settled
  click $((client_width - 844 + 36)) $((client_height - 37)) # Rotate Left
  wait_for 20 row_file 3 || fail "no working file after Rotate Left"
  settled
  click 164 31 # Undo
  settled
}

recover() {
  edit_twice
  import -window root "$out/27_before_the_kill.png"
  cp "$(temporary tmpimg_0_2.jpg)" "$home/second.jpg"
  kill_editor
  [ -s "$(temporary recovery)" ] || fail "no record was left"
  start_editor
  question "after a kill"
  import -window root "$out/28_recover_question.png"
  reply alt+y
  find_window
  wait_for 20 row_file 3 || fail "the rows did not come back"
  settled
  import -window root "$out/29_recovered.png"
  [ "$(find "$home/tmp" -maxdepth 1 -name 'pictorel-*' | wc -l)" -eq 1 ] || fail "the dead editor's folder stayed"
  cmp -s "$(temporary tmpimg_0_2.jpg)" "$home/second.jpg" || fail "the second row is not what it was"
  look_alike "$out/27_before_the_kill.png" "$out/29_recovered.png" || fail "the window does not look as before"
  click 221 31 # Redo
  settled
  xdotool key alt+F4
  answer alt+n
  has_ended "No to the changes that came back"
  pass "A killed editor's history comes back, row for row, and its changes are asked about"

  start_editor
  find_window
  no_question "after an end in order"
  open_sample
  kill_editor
  start_editor
  find_window
  no_question "without changes"
  end_editor
  pass "Who never crashes with changes is never asked"

  edit_twice
  kill_editor
  start_editor
  question "before it is discarded"
  reply alt+n
  find_window
  settled
  end_editor
  pass "No discards what was left"

  local moment
  for moment in 0.02 0.05 0.09 0.15 0.3; do
    edit_twice
    click $((panel + 270)) 122 # Invert, which drops the row that could be redone
    sleep "$moment"
    kill_editor
    start_editor
    question "killed $moment s into an edit"
    reply alt+y
    find_window
    wait_for 20 row_file 2 || fail "a history killed $moment s into an edit did not come back"
    settled
    xdotool key alt+F4
    answer alt+n
    has_ended "a recovery from the midst of an edit"
  done
  pass "Killed in the midst of an edit, no finished one is lost"
}
