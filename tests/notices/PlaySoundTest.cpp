// The notice's sound through OpenAL's file-writing device: what comes out is what the file holds.
#include "notices/PlaySound.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace pictorel {
namespace {

constexpr int kRate = 44100;
constexpr int kHeader = 44;
constexpr int kAtOnce = 200; // milliseconds, on a busy machine

QByteArray Number(quint32 value, int bytes) {
    QByteArray text(4, '\0');
    qToLittleEndian(value, text.data());
    return text.left(bytes);
}

// A WAVE file of one channel; `extra` is put between the format and the samples.
QByteArray WaveFile(const std::vector<qint16>& samples, const QByteArray& extra = {}, int format = 1) {
    QByteArray data;
    for (const qint16 sample : samples) {
        data += Number(static_cast<quint16>(sample), 2);
    }
    const QByteArray chunks = "fmt " + Number(16, 4) + Number(format, 2) + Number(1, 2) + Number(kRate, 4) +
                              Number(kRate * 2, 4) + Number(2, 2) + Number(16, 2) + extra + "data" +
                              Number(data.size(), 4) + data;
    return "RIFF" + Number(4 + chunks.size(), 4) + "WAVE" + chunks;
}

std::vector<qint16> Tone(int count, double frequency) {
    std::vector<qint16> samples(count);
    for (int i = 0; i < count; ++i) {
        samples[i] = static_cast<qint16>(std::lround(9000 * std::sin(2 * M_PI * frequency * i / kRate)));
    }
    return samples;
}

class Speaker : public testing::Test {
  protected:
    // The library reads its settings once in a process, so all cases share a file.
    static void SetUpTestSuite() {
        folder = new QTemporaryDir;
        QFile settings(folder->filePath("alsoft.conf"));
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write(
            "[general]\ndrivers = wave\nchannels = mono\nsample-type = int16\nfrequency = 44100\n"
            "output-limiter = false\ndither = false\n[wave]\nfile = " +
            File().toUtf8() + "\n");
        qputenv("ALSOFT_CONF", settings.fileName().toUtf8());
    }
    static void TearDownTestSuite() { delete folder; }

    Speaker() { QFile::remove(File()); }

    static QString File() { return folder->filePath("heard.wav"); }

    // What came out of the speaker once its file is whole: the length in its header is written last.
    std::vector<qint16> Heard() {
        QByteArray bytes;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                QFile file(File());
                bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
                return bytes.size() > kHeader && qFromLittleEndian<quint32>(bytes.constData() + 4) != 0 &&
                       qFromLittleEndian<quint32>(bytes.constData() + 4) != 0xFFFFFFFF;
            },
            8000));
        std::vector<qint16> samples;
        for (qsizetype at = bytes.indexOf("data") + 8; at + 2 <= bytes.size(); at += 2) {
            samples.push_back(qFromLittleEndian<qint16>(bytes.constData() + at));
        }
        return samples;
    }

    static inline QTemporaryDir* folder = nullptr;
    PlaySound player;
};

// The largest difference of the sound from the best place in what was heard, which begins with some silence.
int Difference(const std::vector<qint16>& sound, const std::vector<qint16>& heard) {
    const auto first = std::find_if(heard.begin(), heard.end(), [](qint16 s) { return std::abs(s) > 2; });
    int best = 65536;
    for (int shift = -8; shift <= 8; ++shift) {
        int largest = 0;
        for (std::size_t i = 16; i < sound.size(); ++i) {
            const auto at = first - heard.begin() + shift + static_cast<std::ptrdiff_t>(i);
            const int there = at >= 0 && at < static_cast<std::ptrdiff_t>(heard.size())
                                  ? heard[static_cast<std::size_t>(at)]
                                  : 65535;
            largest = std::max(largest, std::abs(there - sound[i]));
        }
        best = std::min(best, largest);
    }
    return best;
}

TEST_F(Speaker, PlaysTheSamplesToTheEndWithoutHoldingUpTheCaller) {
    const auto tone = Tone(kRate / 4, 440);
    const QByteArray file = WaveFile(tone, "LIST" + Number(3, 4) + QByteArray("abc\0", 4));
    QElapsedTimer timer;
    timer.start();
    player.PlayWaveBytes(file);
    EXPECT_LT(timer.elapsed(), kAtOnce);
    EXPECT_LE(Difference(tone, Heard()), 2);
}

TEST_F(Speaker, ASecondSoundCutsOffTheFirst) {
    player.PlayWaveBytes(WaveFile(Tone(kRate * 20, 300)));
    QTest::qWait(300);
    const auto tone = Tone(kRate / 5, 880);
    player.PlayWaveBytes(WaveFile(tone));
    EXPECT_LT(Heard().size(), static_cast<std::size_t>(kRate) * 5);
}

TEST_F(Speaker, WhatIsNoSoundIsSilence) {
    const QByteArray good = WaveFile(Tone(4410, 440));
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("RIFF"), QByteArray(1000, 'x'), good.left(30), good.left(43),
          WaveFile(Tone(100, 440), "LIST" + Number(0xFFFFFFF0, 4)), WaveFile(Tone(100, 440), {}, 85)}) {
        player.PlayWaveBytes(bytes);
    }
    QTest::qWait(300);
    EXPECT_FALSE(QFile::exists(File()));
}

TEST_F(Speaker, WithoutADeviceThereIsSilenceAndNoDelay) {
    ASSERT_TRUE(QDir().mkdir(File())); // the device cannot write here, and so cannot be opened
    const QByteArray file = WaveFile(Tone(kRate * 10, 440));
    QElapsedTimer timer;
    timer.start();
    player.PlayWaveBytes(file);
    EXPECT_LT(timer.elapsed(), kAtOnce);
    QTest::qWait(200);
    ASSERT_TRUE(QDir().rmdir(File()));
    const auto tone = Tone(kRate / 10, 440);
    player.PlayWaveBytes(WaveFile(tone));
    EXPECT_LE(Difference(tone, Heard()), 2);
}

TEST_F(Speaker, TheEndOfTheEditorEndsTheSound) {
    QElapsedTimer timer;
    {
        PlaySound last;
        last.PlayWaveBytes(WaveFile(Tone(kRate * 20, 440)));
        ASSERT_TRUE(QTest::qWaitFor([] { return QFile(File()).size() > kHeader; }));
        timer.start();
    }
    EXPECT_LT(timer.elapsed(), 500);
    EXPECT_LT(Heard().size(), static_cast<std::size_t>(kRate) * 5);
}

} // namespace
} // namespace pictorel
