// A decoder program as an attacker would have it: it says what it likes. Its name chooses what that is.
#include "programs/decoder/DecoderMessages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace pictorel::decoder;

template <class Message>
void Say(const Message& message, std::size_t bytes = sizeof(Message)) {
    ::send(kSocket, &message, bytes, MSG_NOSIGNAL);
}

// The memory for the answer, when the request has come.
int Hear() {
    Request request;
    std::array<int, 2> descriptors{-1, -1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(descriptors))> control{};
    iovec part{&request, sizeof(request)};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    if (::recvmsg(kSocket, &header, 0) <= 0 || CMSG_FIRSTHDR(&header) == nullptr) {
        std::_Exit(EXIT_FAILURE);
    }
    std::memcpy(descriptors.data(), CMSG_DATA(CMSG_FIRSTHDR(&header)), sizeof(descriptors));
    return descriptors[1];
}

// 1024 x 512 pixels at the memory's beginning: large enough to be mapped.
Answer Good() {
    Answer answer;
    answer.outcome = Outcome::Decoded;
    answer.width = 1024;
    answer.height = 512;
    answer.pixels = {0, 1024 * 512 * 4};
    return answer;
}

struct Manner {
    const char* name;
    void (*answer)(int memory);
};

constexpr std::array kManners{
    Manner{"good", [](int) { Say(Good()); }},
    Manner{"dies", [](int) { std::raise(SIGSEGV); }},
    Manner{"leaves", [](int) { std::_Exit(EXIT_SUCCESS); }},
    Manner{"hangs", [](int) { ::sleep(600); }},
    Manner{"too-short", [](int) { Say(Good(), sizeof(Answer) - 1); }},
    Manner{"too-long",
           [](int) {
               std::array<Answer, 2> twice{Good(), Good()};
               Say(twice);
           }},
    Manner{"other-mark",
           [](int) {
               Answer answer = Good();
               answer.mark ^= 1;
               Say(answer);
           }},
    Manner{"other-outcome",
           [](int) {
               Answer answer = Good();
               answer.outcome = static_cast<Outcome>(77);
               Say(answer);
           }},
    Manner{"always-fonts",
           [](int) {
               Answer answer;
               answer.outcome = Outcome::NeedsFonts;
               Say(answer);
           }},
    Manner{"no-pixels",
           [](int) {
               Answer answer = Good();
               answer.width = 0;
               Say(answer);
           }},
    Manner{"vast",
           [](int) {
               Answer answer = Good();
               answer.width = answer.height = 1 << 30;
               Say(answer);
           }},
    Manner{"negative",
           [](int) {
               Answer answer = Good();
               answer.height = -512;
               Say(answer);
           }},
    Manner{"fewer-bytes",
           [](int) {
               Answer answer = Good();
               answer.pixels.bytes /= 2;
               Say(answer);
           }},
    Manner{"behind-the-end",
           [](int memory) {
               Answer answer = Good();
               answer.pixels.offset = ::lseek(memory, 0, SEEK_END) - 4096;
               Say(answer);
           }},
    Manner{"before-the-beginning",
           [](int) {
               Answer answer = Good();
               answer.pixels.offset = -4096;
               Say(answer);
           }},
    Manner{"beside-a-page",
           [](int) {
               Answer answer = Good();
               answer.pixels.offset = 64;
               Say(answer);
           }},
    Manner{"endless-details",
           [](int) {
               Answer answer = Good();
               answer.xmp = {4096, INT64_MAX};
               Say(answer);
           }},
    Manner{"details-of-negative-length",
           [](int) {
               Answer answer = Good();
               answer.exif = {4096, -1};
               Say(answer);
           }},
    Manner{"no-resolution",
           [](int) {
               Answer answer = Good();
               answer.dotsPerInchX = std::nan("");
               Say(answer);
           }},
    Manner{"more-than-all-shown",
           [](int) {
               Answer answer = Good();
               answer.partShown = 1.5;
               Say(answer);
           }},
    Manner{"shrinks-the-memory",
           [](int memory) {
               ::ftruncate(memory, 4096);
               Say(Good());
           }},
    Manner{"seals-the-memory",
           [](int memory) {
               ::fcntl(memory, F_ADD_SEALS, F_SEAL_SEAL);
               Say(Good());
           }},
    Manner{"markup",
           [](int) {
               Answer answer;
               std::memcpy(answer.text.data(), "<b>\n&amp;\xFF", 11);
               std::memset(answer.text.data() + 11, 'x', answer.text.size() - 11); // no end
               Say(answer);
           }},
};

} // namespace

int main(int /*count*/, char** words) {
    const std::string path = words[0];
    const std::string name = path.substr(path.rfind('/') + 1);
    if (name == "never-ready") {
        return EXIT_FAILURE;
    }
    Say(Ready{});
    const int memory = Hear();
    for (const Manner& manner : kManners) {
        if (name == manner.name) {
            manner.answer(memory);
        }
    }
    ::sleep(600); // what it holds, it holds on to
    return EXIT_FAILURE;
}
