// Plays sounds through OpenAL, see SoundOut.h.
#include "platform/SoundOut.h"

#include <AL/al.h>
#include <AL/alc.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace pictorel {

namespace {

using namespace std::chrono_literals;

constexpr auto kLook = 20ms;   // how often the player looks whether the sound has ended
constexpr auto kDrain = 200ms; // what the device may still hold when its source says it has ended
constexpr auto kFarewell = 1s; // how long the end of the editor waits for a sound server that does not answer

struct DeviceCloser {
    void operator()(ALCdevice* device) const { alcCloseDevice(device); }
};

struct ContextCloser {
    void operator()(ALCcontext* context) const {
        alcMakeContextCurrent(nullptr);
        alcDestroyContext(context);
    }
};

ALenum FormatOf(const Sound& sound) {
    if (sound.channels == 1) {
        return sound.bits == 8 ? AL_FORMAT_MONO8 : AL_FORMAT_MONO16;
    }
    return sound.bits == 8 ? AL_FORMAT_STEREO8 : AL_FORMAT_STEREO16;
}

// Plays to the end of the sound. `interrupted` waits for a time and says whether to stop at once.
template <typename Interrupted>
void PlayThrough(const Sound& sound, Interrupted interrupted) {
    ALuint buffer = 0;
    ALuint source = 0;
    alGenBuffers(1, &buffer);
    alGenSources(1, &source);
    alBufferData(buffer, FormatOf(sound), sound.samples.data(), static_cast<ALsizei>(sound.samples.size()),
                 sound.rate);
    alSourcei(source, AL_BUFFER, static_cast<ALint>(buffer));
    alSourcei(source, AL_SOURCE_RELATIVE, AL_TRUE); // at the listener's ear
    alSourcePlay(source);
    ALint state = AL_PLAYING;
    bool stop = alGetError() != AL_NO_ERROR;
    while (!stop && state == AL_PLAYING) {
        stop = interrupted(kLook);
        alGetSourcei(source, AL_SOURCE_STATE, &state);
    }
    stop = stop || interrupted(kDrain);
    alDeleteSources(1, &source);
    alDeleteBuffers(1, &buffer);
}

template <typename Interrupted>
void PlayOnDevice(const Sound& sound, Interrupted interrupted) {
    const std::unique_ptr<ALCdevice, DeviceCloser> device(alcOpenDevice(nullptr));
    if (device == nullptr) {
        return;
    }
    const std::unique_ptr<ALCcontext, ContextCloser> context(alcCreateContext(device.get(), nullptr));
    if (context != nullptr && alcMakeContextCurrent(context.get()) == ALC_TRUE) {
        PlayThrough(sound, interrupted);
    }
}

} // namespace

// What the two threads hand each other; everything under the lock.
struct SoundOut::Desk {
    std::mutex lock;
    std::condition_variable changed;
    std::optional<Sound> next;
    bool closing = false;
    bool playing = false; // a thread is at work and takes what comes next

    bool HasNews() const { return closing || next.has_value(); }

    // Plays what comes until there is nothing more.
    void PlayAll() {
        std::unique_lock held(lock);
        while (!closing && next.has_value()) {
            const Sound sound = *std::exchange(next, std::nullopt);
            held.unlock();
            PlayOnDevice(sound, [this](auto longest) {
                std::unique_lock waiting(lock);
                return changed.wait_for(waiting, longest, [this] { return HasNews(); });
            });
            held.lock();
        }
        playing = false;
        changed.notify_all();
    }
};

SoundOut::SoundOut() : desk_(std::make_shared<Desk>()) {}

SoundOut::~SoundOut() {
    std::unique_lock held(desk_->lock);
    desk_->closing = true;
    desk_->changed.notify_all();
    // A server that never answers keeps its thread for ever, but not the editor.
    desk_->changed.wait_for(held, kFarewell, [this] { return !desk_->playing; });
}

void SoundOut::Play(Sound sound) {
    const std::lock_guard held(desk_->lock);
    desk_->next = std::move(sound);
    desk_->changed.notify_all();
    if (!desk_->playing) {
        std::thread([desk = desk_] { desk->PlayAll(); }).detach();
        desk_->playing = true;
    }
}

} // namespace pictorel
