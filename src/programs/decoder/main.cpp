// The decoder program: it goes behind its walls, decodes one picture from a stranger for the editor, and
// ends.
#include "picture/ForEachBand.h"
#include "picture/metafile/Metafile.h"
#include "programs/decoder/Conversation.h"
#include "programs/decoder/Fonts.h"
#include "programs/decoder/Walls.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#ifdef PICTOREL_SANITIZED
// Looking for leaks at the end needs what the walls refuse.
extern "C" const char* __asan_default_options() { // the sanitizer's own name
    return "detect_leaks=0";
}
#endif

namespace {

namespace decoder = pictorel::decoder;

// Also when the editor is killed, and in the midst of a picture that takes for ever.
void EndWithTheEditor() {
    const pid_t editor = ::getppid();
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != editor) {
        std::_Exit(EXIT_FAILURE); // it ended before the line above
    }
}

// What the editor has open besides is none of this program's business.
void CloseWhatIsNotGiven() {
    ::close_range(decoder::kSocket + 1, ~0U, 0);
}

// Threads are started now, so that the picture does not wait for them.
void WarmUp() {
    constexpr int kBands = 64;
    constexpr std::size_t kBandBytes = std::size_t{1} << 20;
    pictorel::ForEachBand(kBands, kBandBytes, [](int, int) { ::usleep(1); });
}

decoder::WallLimits Limits() {
    constexpr std::uint64_t kMostShared = std::uint64_t{6} << 30;
    constexpr std::uint64_t kProcessorSeconds = 240;
    return {0, kMostShared, kProcessorSeconds, decoder::kSocket};
}

} // namespace

int main(int count, char** words) {
    EndWithTheEditor();
    CloseWhatIsNotGiven();
    const bool hasFonts = count > 1 && std::strcmp(words[1], decoder::kWithFonts) == 0;
    if (hasFonts) {
        decoder::LoadFonts();
    }
    const pictorel::codecs::CodecTable formats(pictorel::metafile::MetafileCodecs());
    const std::uint32_t standing = decoder::RaiseWalls(Limits());
    WarmUp();
    const bool answered = decoder::SayReady(decoder::kSocket, standing) &&
                          decoder::AnswerOneRequest(decoder::kSocket, formats, hasFonts);
    std::_Exit(answered ? EXIT_SUCCESS : EXIT_FAILURE);
}
