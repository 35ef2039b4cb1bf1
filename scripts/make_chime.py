#!/usr/bin/env python3
"""Writes the sound of the update notice: two bell-like notes, a fourth apart, 44.1 kHz 16-bit mono.

    make_chime.py [OUT.wav]        (assets/notice.wav beside this script's folder when no name is given)

The samples are computed from the tables below alone, so every run writes the same bytes.
"""

import array
import math
import sys
import wave
from pathlib import Path

RATE = 44100
LENGTH = 0.56  # seconds
PEAK = 0.55  # of full scale: a notice, not an alarm

# start (s), frequency (Hz), loudness, decay (per second): E5, then A5 ringing out
NOTES = ((0.00, 659.26, 0.80, 9.0), (0.13, 880.00, 1.00, 8.0))

# multiple of the note's frequency, loudness, decay relative to the note's: a soft bell whose high partials die first
PARTIALS = ((1.0, 1.00, 1.0), (2.0, 0.28, 1.8), (3.01, 0.12, 3.0), (5.43, 0.04, 5.0))

ATTACK = 0.006  # seconds; without it each note would start with a click
FADE = 0.08  # seconds at the end, for the same reason


def note_sample(time, frequency, loudness, decay):
    """One note's value at a time in seconds since it was struck."""
    attack = 0.5 - 0.5 * math.cos(math.pi * min(time / ATTACK, 1.0))
    tone = sum(
        level * math.exp(-decay * fall * time) * math.sin(2.0 * math.pi * frequency * multiple * time)
        for multiple, level, fall in PARTIALS
    )
    return loudness * attack * tone


def chime():
    """The whole sound as numbers within -PEAK..PEAK."""
    count = round(RATE * LENGTH)
    sound = [0.0] * count
    for start, frequency, loudness, decay in NOTES:
        first = round(start * RATE)
        for i in range(first, count):
            sound[i] += note_sample((i - first) / RATE, frequency, loudness, decay)
    fade = round(FADE * RATE)
    for i in range(fade):
        sound[count - 1 - i] *= 0.5 - 0.5 * math.cos(math.pi * i / fade)
    scale = PEAK / max(abs(value) for value in sound)
    return [value * scale for value in sound]


def main():
    default = Path(__file__).resolve().parent.parent / "assets" / "notice.wav"
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else default
    samples = array.array("h", (round(value * 32767) for value in chime()))
    if sys.byteorder == "big":
        samples.byteswap()
    with wave.open(str(target), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(RATE)
        sound.writeframes(samples.tobytes())


if __name__ == "__main__":
    main()
