// Reads WAVE files for the sound device, see PlaySound.h.
#include "notices/PlaySound.h"

#include "platform/CarryOn.h"

#include <QtEndian>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace pictorel {
namespace {

// The layout is the one published in 1991 with the first multimedia programming interface: a RIFF
// header of 12 bytes, then chunks of a name, a 32-bit size and so many bytes, padded to an even number.
constexpr qsizetype kHeaderBytes = 12;
constexpr qsizetype kChunkHeaderBytes = 8;
constexpr qsizetype kFormatBytes = 16;
constexpr int kPcm = 1;
constexpr int kHighestRate = 192000;

struct NoSound : std::runtime_error {
    using std::runtime_error::runtime_error;
};

template <typename Number>
Number NumberAt(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

// The bytes of the first chunk of that name; a size beyond the end of the file ends there.
QByteArray Chunk(const QByteArray& file, const char* name) {
    qsizetype at = kHeaderBytes;
    while (at + kChunkHeaderBytes <= file.size()) {
        const qsizetype size = NumberAt<quint32>(file, at + 4);
        if (file.mid(at, 4) == name) {
            return file.mid(at + kChunkHeaderBytes, size);
        }
        at += kChunkHeaderBytes + size + size % 2;
    }
    throw NoSound("The sound file has no part " + std::string(name) + ".");
}

Sound ReadWave(const QByteArray& file) {
    if (!file.startsWith("RIFF") || file.mid(8, 4) != "WAVE") {
        throw NoSound("This is no sound file.");
    }
    const QByteArray format = Chunk(file, "fmt ");
    const QByteArray samples = Chunk(file, "data");
    if (format.size() < kFormatBytes || NumberAt<quint16>(format, 0) != kPcm) {
        throw NoSound("The sound file is not PCM.");
    }
    Sound sound{NumberAt<quint16>(format, 2),
                NumberAt<quint16>(format, 14),
                static_cast<int>(std::min<quint32>(NumberAt<quint32>(format, 4), kHighestRate + 1)),
                {}};
    if (sound.channels < 1 || sound.channels > 2 || (sound.bits != 8 && sound.bits != 16) || sound.rate < 1 ||
        sound.rate > kHighestRate) {
        throw NoSound("The sound file is of a kind that is not played.");
    }
    const qsizetype frame = sound.channels * sound.bits / 8;
    const auto* const begin = reinterpret_cast<const std::byte*>(samples.constData());
    sound.samples.assign(begin, begin + samples.size() / frame * frame);
    return sound;
}

} // namespace

void PlaySound::PlayWaveBytes(const QByteArray& bytes) {
    StopAtFirstError([&] {
        out_.Play(ReadWave(bytes));
        return true;
    });
}

} // namespace pictorel
