// Plays sounds from memory on the system's default sound device.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace pictorel {

// Whole-number samples, little-endian, channels interleaved; 8-bit samples without a sign, 16-bit with one.
struct Sound {
    int channels = 1; // 1 or 2
    int bits = 16;    // of a sample: 8 or 16
    int rate = 44100; // samples per second of each channel
    std::vector<std::byte> samples;
};

// The device is opened, fed and closed by a thread of this object, so that a slow sound server holds nobody
// up. Without a device there is silence; nothing is reported. The destructor ends the sound.
class SoundOut {
  public:
    SoundOut();
    ~SoundOut();
    SoundOut(const SoundOut&) = delete;
    SoundOut& operator=(const SoundOut&) = delete;

    // Returns at once. A sound still playing is cut off.
    void Play(Sound sound);

  private:
    struct Desk;

    std::shared_ptr<Desk> desk_; // shared with the thread
};

} // namespace pictorel
