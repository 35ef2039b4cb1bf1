// Plays a sound file that is held in memory.
#pragma once

#include "platform/SoundOut.h"

#include <QByteArray>

namespace pictorel {

class PlaySound {
  public:
    // Plays a WAVE file (RIFF, PCM of 8 or 16 bits, one or two channels) and returns at once. Bytes that are
    // none, and sounds of other kinds, are not played; nothing is reported.
    void PlayWaveBytes(const QByteArray& bytes);

  private:
    SoundOut out_;
};

} // namespace pictorel
