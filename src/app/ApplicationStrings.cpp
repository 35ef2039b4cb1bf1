// The application's table of texts, see ApplicationStrings.h. They are readable here and enciphered by the
// compiler.
#include "app/ApplicationStrings.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace pictorel {
namespace {

constexpr std::size_t kLongest = 400;

// A byte stream from the entry's number (a linear congruential generator); it only keeps the texts from lying
// open in the program file.
constexpr std::uint8_t KeyByte(int number, std::size_t position) {
    std::uint32_t state =
        static_cast<std::uint32_t>(number) * 2654435761U + static_cast<std::uint32_t>(position);
    state = state * 1664525U + 1013904223U;
    return static_cast<std::uint8_t>(state >> 24U);
}

struct EncipheredText {
    int number = 0;
    std::size_t length = 0;
    std::array<std::uint8_t, kLongest> bytes{};

    template <std::size_t n>
    consteval EncipheredText(int entry, const char (&text)[n]) : number(entry), length(n - 1) {
        static_assert(n <= kLongest);
        for (std::size_t i = 0; i < length; ++i) {
            bytes[i] = static_cast<std::uint8_t>(static_cast<std::uint8_t>(text[i]) ^ KeyByte(entry, i));
        }
    }
};

// In entry 19 the two capital words are filled in whatever the case of their letters, so the address must not
// hold them otherwise.
constexpr std::array kTexts{
    EncipheredText(12, "Pictorel"),
    EncipheredText(17, "www.pictorel.example"),
    EncipheredText(19, "https://www.pictorel.example/updates?product=PRODUCTNAME&release=VERSION"),
    EncipheredText(
        21,
        "Pictorel is provided as it is, without warranty of any kind. The picture that you open is "
        "never changed unless you save over it yourself."),
    EncipheredText(22, "https://www.pictorel.example/"),
    EncipheredText(23, "https://www.pictorel.example/download"),
    EncipheredText(24, "https://www.pictorel.example/home"),
    EncipheredText(25, "https://www.pictorel.example/tools/first"),
    EncipheredText(26, "https://www.pictorel.example/tools/second"),
    EncipheredText(27, "https://share.example/people?address=https%3A%2F%2Fwww.pictorel.example%2F"),
    EncipheredText(28, "https://share.example/post?address=https%3A%2F%2Fwww.pictorel.example%2F"),
    EncipheredText(29, "Pictorel Contact Sheet"),
    EncipheredText(30, "Lays a folder of photos out on pages, with names and dates, ready to print."),
    EncipheredText(31, "Pictorel Sorter"),
    EncipheredText(32, "Compares photos side by side and puts the keepers where they belong."),
};

} // namespace

QString ApplicationStrings::Entry(int number) const {
    const auto* const found = std::find_if(kTexts.begin(), kTexts.end(),
                                           [=](const EncipheredText& text) { return text.number == number; });
    std::string plain;
    for (std::size_t i = 0; found != kTexts.end() && i < found->length; ++i) {
        plain.push_back(static_cast<char>(found->bytes[i] ^ KeyByte(number, i)));
    }
    return QString::fromStdString(plain);
}

} // namespace pictorel
