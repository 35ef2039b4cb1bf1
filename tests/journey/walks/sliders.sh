# Every shown slider: hold it, see the preview window beside the tool pages, let go, see the row and the changed
# picture, undo. And one that is given up with Escape.

# page, top on the page, default's place on the track in percent, title of the preview window
slider_rows() {
  cat <<'ROWS'
0 44 50 Brightness
0 69 50 Contrast
0 94 50 Saturation
0 119 50 Gamma
0 144 50 Hue
0 169 50 Lightness
0 200 50 Red
0 225 50 Green
0 250 50 Blue
0 281 100 Colorize (R)
0 306 100 Colorize (G)
0 331 100 Colorize (B)
1 44 50 Sharpen / Blur
1 69 0 Zoom Blur
1 94 0 Motion Blur
1 119 0 Gaussian Blur
1 144 0 Noise
1 169 0 Diffuse
1 194 0 Mosaic
1 219 50 Maximal / Minimal
2 12 0 Rotate
2 37 0 Reproduce
2 62 50 Twirl
2 87 50 Skew (V)
2 112 50 Skew (H)
2 137 50 Perspective (V)
2 162 50 Perspective (H)
ROWS
}

page_top=98
choose_page() { click $((panel + 42 + $1 * 84)) 77; sleep 0.2; }

# point_at_slider TOP PERCENT: the pointer on the thumb, which stands at this part of its track.
point_at_slider() { point $((panel + 4 + 128 + 7 + 126 * $2 / 100)) $((page_top + $1 + 12)); }

preview_is_shown() { xdotool search --onlyvisible --name "^$1\$"; }
stamp_of() { stat -c '%i %y' "$(temporary "$1")" 2>/dev/null || true; }
differs_from() { [ "$(stamp_of "$1")" != "$2" ]; }

# The preview window stands left of the tool pages and overlaps their edge a little.
check_place() {
  local id right
  id=$(xdotool search --onlyvisible --name "^$1\$" | tail -1)
  right=$(($(xwininfo -id "$id" | sed -n 's/^ *Absolute upper-left X: *//p') + $(xwininfo -id "$id" | sed -n 's/^ *Width: *//p')))
  [ $((right - left - panel)) -ge 0 ] && [ $((right - left - panel)) -le 40 ] ||
    fail "the preview window of $1 ends at $right, the tool pages begin at $((left + panel))"
}

hold_and_let_go() {
  local title=$1 row=$2 percent=$3 step=9 before pattern
  pattern=$(printf '%s' "$title" | sed 's/[()]/\\&/g')
  if [ "$percent" -eq 100 ]; then step=-9; fi
  before=$(stamp_of tmpimg_0_2.jpg)
  point_at_slider "$row" "$percent"
  xdotool mousedown 1
  wait_for 10 preview_is_shown "$pattern" || fail "no preview window while $title is held"
  for _ in 1 2 3; do
    xdotool mousemove_relative --sync -- "$step" 0
    sleep 0.05
  done
  check_place "$pattern"
  case $title in
    Contrast | Hue | "Gaussian Blur" | Noise | Mosaic | "Maximal / Minimal" | Reproduce | Twirl | "Perspective (H)")
      sleep 0.2
      import -window root "$out/held_$(printf '%s' "$title" | tr -c 'A-Za-z\n' _).png"
      ;;
  esac
  xdotool mouseup 1
  wait_for 20 differs_from tmpimg_0_2.jpg "$before" || fail "letting $title go added no row"
  wait_for 5 bash -c "! xdotool search --onlyvisible --name '^$pattern\$'" || fail "the preview window of $title stayed"
  sleep 0.2
  if row_file 3; then fail "letting $title go added more than one row"; fi
  cmp -s "$(temporary tmpimg_0_1.jpg)" "$(temporary tmpimg_0_2.jpg)" && fail "$title changed nothing"
  click 164 31 # Undo
  sleep 0.25
}

sliders() {
  local page=0 next row percent title before
  start_editor
  find_window
  sleep 0.3
  open_sample
  # A row that can be redone is there from the first slider on.
  click $((panel + 270)) 122
  wait_for 20 row_file 2 || fail "no working file after Invert"
  settled
  click 164 31
  settled
  before=$(stamp_of tmpimg_0_2.jpg)
  point_at_slider 44 50
  xdotool mousedown 1
  wait_for 5 preview_is_shown Brightness || fail "no preview window"
  xdotool mousemove_relative --sync 20 0
  xdotool key Escape
  wait_for 5 bash -c "! xdotool search --onlyvisible --name '^Brightness\$'" || fail "Escape leaves the preview window"
  xdotool mouseup 1
  settled
  [ "$(stamp_of tmpimg_0_2.jpg)" = "$before" ] || fail "a slider given up was committed"
  pass "Escape gives a slider up"

  while read -r next row percent title; do
    if [ "$next" != "$page" ]; then
      page=$next
      choose_page "$page"
    fi
    hold_and_let_go "$title" "$row" "$percent"
  done < <(slider_rows)
  save undone.png
  look_alike "$(temporary tmpimg_0_1.jpg)" "$out/undone.png" || fail "the last undo did not bring the picture back"
  import -window root "$out/sliders_undone.png"
  end_editor
  pass "All 27 sliders preview while held, add one row and can be undone"
}
