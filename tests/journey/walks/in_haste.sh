# An impatient person: 300 seeded clicks on a 24-megapixel photo without a pause; after each burst every working file
# holds what a plain model says, and the picture that is saved is the active row's.

# rests: until the editor has used no processor time for half a second.
rests() {
  local before now
  before=
  while now=$(awk '{ print $14 + $15 }' "/proc/$editor/stat"); [ "$now" != "$before" ]; do
    before=$now
    sleep 0.5
  done
}

# small FILE OPERATIONS TARGET: the operations (i invert, h v mirrors, l r quarter turns) done to FILE by another program.
small() {
  local arguments=() operation
  for operation in $(sed 's/./& /g' <<<"$2"); do
    case $operation in
      i) arguments+=(-negate) ;;
      h) arguments+=(-flop) ;;
      v) arguments+=(-flip) ;;
      l) arguments+=(-rotate -90) ;;
      r) arguments+=(-rotate 90) ;;
    esac
  done
  convert "$1" "${arguments[@]}" "$3"
}

in_haste() {
  local burst step click row operation turned size
  local -a states=("") keys=(i h v l r u u d)
  local active=0
  "$bin/make_sample" 6000 4000 "$home/huge.ppm" >/dev/null
  convert "$home/huge.ppm" -quality 92 "$out/sample24.jpg"
  rm "$home/huge.ppm"
  start_editor
  find_window
  click 36 31
  choose Open "$out/sample24.jpg"
  wait_for 30 row_file 1 || fail "no working file after Open"
  rests
  convert "$(temporary tmpimg_0_1.jpg)" -resize '120x80!' "$home/base.png"
  tools=$((client_width - 844))
  local -A place=([i]="$((panel + 270)) 122" [h]="$((tools + 100)) $((client_height - 37))" [v]="$((tools + 76)) $((client_height - 37))"
    [l]="$((tools + 36)) $((client_height - 37))" [r]="$((tools + 12)) $((client_height - 37))" [u]="164 31" [d]="220 31")
  RANDOM=20261123
  for ((burst = 1; burst <= 12; ++burst)); do
    local clicks=()
    for ((step = 0; step < 25; ++step)); do
      operation=${keys[RANDOM % ${#keys[@]}]}
      read -r x y <<<"${place[$operation]}"
      clicks+=(mousemove $((left + x)) $((top + y)) click 1)
      case $operation in
        u) if [ "$active" -gt 0 ]; then active=$((active - 1)); fi ;;
        d) if [ "$active" -lt $((${#states[@]} - 1)) ]; then active=$((active + 1)); fi ;;
        *)
          states=("${states[@]:0:active+1}" "${states[active]}$operation")
          if [ "${#states[@]}" -gt 15 ]; then states=("${states[@]:1}"); fi
          active=$((${#states[@]} - 1))
          ;;
      esac
    done
    xdotool "${clicks[@]}"
    rests
    for ((row = 0; row < ${#states[@]}; ++row)); do
      turned=$(tr -cd lr <<<"${states[row]}" | wc -c)
      size=120x80
      if [ $((turned % 2)) -eq 1 ]; then size=80x120; fi
      small "$home/base.png" "${states[row]}" "$home/wanted.png"
      convert -define jpeg:size=750x750 "$(temporary "tmpimg_0_$((row + 1)).jpg")" -resize "$size!" "$home/found.png"
      look_alike "$home/found.png" "$home/wanted.png" || fail "burst $burst: row $((row + 1)) of ${#states[@]} is not '${states[row]}'"
    done
    if row_file $((${#states[@]} + 1)); then fail "burst $burst: a working file too many"; fi
    if xdotool search --onlyvisible --name '^(Error|Attention!)$' >/dev/null 2>&1; then fail "burst $burst: a message"; fi
  done
  import -window root "$out/80_after_haste.png"
  save hasty.bmp
  small "$home/base.png" "${states[active]}" "$home/wanted.png"
  convert "$out/hasty.bmp" -resize "$(identify -format '%wx%h' "$home/wanted.png")!" "$home/found.png"
  look_alike "$home/found.png" "$home/wanted.png" || fail "what was saved is not the active row"
  rm "$out/hasty.bmp" "$out/sample24.jpg"
  pass "300 clicks in haste: every row holds its own edit, and the active one is saved"
  end_editor
}
