// Deflates without searching, see RunDeflate.h. The numbers of this file are those of RFC 1951, section 3.2.
#include "picture/codecs/RunDeflate.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <span>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kBlockTokens = std::size_t{32} << 10; // for each of which the codes are made anew
constexpr std::size_t kShortestRun = 4;
constexpr std::size_t kLongestRun = 258;
constexpr std::size_t kLiterals = 286; // 0 to 255 bytes, 256 end of block, others lengths
constexpr std::size_t kEndOfBlock = 256;
constexpr std::size_t kLengths = 19; // codes for lengths of codes
constexpr unsigned kDynamicBlock = 2;
constexpr int kLongestCode = 15;
constexpr int kLongestLengthCode = 7;

// Of a run of 3 to 258 bytes: its symbol, and what is added to it.
struct RunSymbol {
    std::uint16_t symbol;
    std::uint8_t extraBits;
    std::uint8_t extra;
};
constexpr std::array<RunSymbol, kLongestRun + 1> kRunSymbols = [] {
    std::array<RunSymbol, kLongestRun + 1> symbols{};
    std::size_t length = 3;
    for (std::uint16_t symbol = 257; symbol < 285; ++symbol) {
        const int extraBits = symbol < 265 ? 0 : (symbol - 261) / 4;
        for (int extra = 0; extra < 1 << extraBits && length <= kLongestRun; ++extra, ++length) {
            symbols[length] = {symbol, static_cast<std::uint8_t>(extraBits),
                               static_cast<std::uint8_t>(extra)};
        }
    }
    symbols[kLongestRun] = {285, 0, 0};
    return symbols;
}();
static_assert(kRunSymbols[3].symbol == 257 && kRunSymbols[11].symbol == 265 &&
              kRunSymbols[257].symbol == 284 && kRunSymbols[257].extra == 30);

class BitWriter {
  public:
    explicit BitWriter(ByteBuffer& out) : out_(out) {}

    // Room for so many bits more, before they are put.
    void Reserve(std::size_t bits) { out_.resize(at_ + bits / 8 + 2 * sizeof(std::uint64_t)); }

    // At most 24 bits.
    void Put(std::uint32_t bits, int count) {
        waiting_ |= std::uint64_t{bits} << count_;
        count_ += count;
        // Eight bytes are stored and the whole ones among them counted: there is nothing to branch on.
        std::uint64_t bytes = waiting_;
        if constexpr (std::endian::native == std::endian::big) {
            bytes = __builtin_bswap64(bytes);
        }
        std::memcpy(out_.data() + at_, &bytes, sizeof bytes);
        at_ += static_cast<std::size_t>(count_ / 8);
        waiting_ >>= count_ & ~7;
        count_ &= 7;
    }

    void Align() { Put(0, (8 - count_ % 8) % 8); }

    void Finish() {
        Align();
        out_.resize(at_);
    }

  private:
    ByteBuffer& out_;
    std::size_t at_ = 0;
    std::uint64_t waiting_ = 0;
    int count_ = 0;
};

// How many codes there are of each length.
using LengthCounts = std::array<std::uint32_t, kLongestCode + 1>;

// For symbols that occur so often, the rarest first, by Huffman's method; codes longer than the longest are
// counted with it.
LengthCounts HuffmanLengths(std::span<const std::uint32_t> counts, int longest) {
    // Leaves in their order are one queue, and the nodes made of them, which grow, are the other.
    const std::size_t leaves = counts.size();
    std::array<std::uint64_t, 2 * kLiterals> weight{};
    std::array<std::uint16_t, 2 * kLiterals> parent{};
    std::copy(counts.begin(), counts.end(), weight.begin());
    std::size_t leaf = 0;
    std::size_t node = leaves;
    for (std::size_t made = leaves; made < 2 * leaves - 1; ++made) {
        for (int child = 0; child < 2; ++child) {
            const bool takeLeaf = leaf < leaves && (node == made || weight[leaf] <= weight[node]);
            const std::size_t taken = takeLeaf ? leaf++ : node++;
            weight[made] += weight[taken];
            parent[taken] = static_cast<std::uint16_t>(made);
        }
    }
    std::array<int, 2 * kLiterals> depth{};
    LengthCounts ofLength{};
    for (std::size_t i = 2 * leaves - 2; i-- > 0;) {
        depth[i] = depth[parent[i]] + 1;
        if (i < leaves) {
            ++ofLength[static_cast<std::size_t>(std::min(depth[i], longest))];
        }
    }
    return ofLength;
}

// Codes cut to the longest take too much room: a shorter one is split for each, until all fit.
void MakeRoom(LengthCounts& ofLength, int longest) {
    std::uint32_t room = 0;
    for (int length = 1; length <= longest; ++length) {
        room += ofLength[static_cast<std::size_t>(length)] << (longest - length);
    }
    for (const std::uint32_t whole = 1U << longest; room > whole; --room) {
        auto length = static_cast<std::size_t>(longest) - 1;
        while (ofLength[length] == 0) {
            --length;
        }
        --ofLength[length];
        ofLength[length + 1] += 2;
        --ofLength[static_cast<std::size_t>(longest)];
    }
}

// Lengths of codes for symbols that occur so often; 0 for those that do not occur.
template <std::size_t kSymbols>
std::array<std::uint8_t, kSymbols> CodeLengths(const std::array<std::uint32_t, kSymbols>& counts,
                                               int longest) {
    static_assert(kSymbols <= kLiterals);
    std::array<std::uint16_t, kSymbols> order{};
    std::size_t used = 0;
    for (std::size_t i = 0; i < kSymbols; ++i) {
        if (counts[i] != 0) {
            order[used++] = static_cast<std::uint16_t>(i);
        }
    }
    std::array<std::uint8_t, kSymbols> lengths{};
    if (used <= 1) { // one bit, since a code takes at least one
        lengths[order[0]] = 1;
        return lengths;
    }
    std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(used),
              [&](auto a, auto b) { return counts[a] != counts[b] ? counts[a] < counts[b] : a < b; });
    std::array<std::uint32_t, kSymbols> sorted{};
    std::transform(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(used), sorted.begin(),
                   [&](std::uint16_t symbol) { return counts[symbol]; });
    LengthCounts ofLength = HuffmanLengths(std::span(sorted).first(used), longest);
    MakeRoom(ofLength, longest);
    std::size_t next = 0;
    for (int length = longest; length >= 1; --length) {
        for (std::uint32_t i = 0; i < ofLength[static_cast<std::size_t>(length)]; ++i) {
            lengths[order[next++]] = static_cast<std::uint8_t>(length);
        }
    }
    return lengths;
}

struct Code {
    std::uint16_t bits; // first bit lowest
    std::uint8_t length;
};

template <std::size_t kSymbols>
std::array<Code, kSymbols> CodesOf(const std::array<std::uint8_t, kSymbols>& lengths) {
    std::array<Code, kSymbols> codes{};
    unsigned next = 0;
    for (int length = 1; length <= kLongestCode; ++length, next <<= 1) {
        for (std::size_t i = 0; i < kSymbols; ++i) {
            if (lengths[i] != length) {
                continue;
            }
            unsigned reversed = 0;
            for (int bit = 0; bit < length; ++bit) {
                reversed |= (next >> bit & 1U) << (length - 1 - bit);
            }
            codes[i] = {static_cast<std::uint16_t>(reversed), static_cast<std::uint8_t>(length)};
            ++next;
        }
    }
    return codes;
}

// A byte, or kRun and the length of a run of the byte before it.
using Token = std::uint16_t;
constexpr Token kRun = 0x8000;

struct Block {
    std::array<Token, kBlockTokens> tokens;
    std::size_t count = 0;

    std::span<const Token> Tokens() const noexcept { return std::span(tokens).first(count); }
};

// The bytes from `at` on as tokens, until there are enough for a block. Returns where it stopped.
std::size_t Tokenize(ByteView data, std::size_t at, Block& block) {
    Token* token = block.tokens.data();
    const Token* const end = token + block.tokens.size();
    const auto fourAt = [&data](std::size_t place) {
        std::uint32_t four = 0;
        std::memcpy(&four, data.data() + place, sizeof four);
        return four;
    };
    if (at == 0 && !data.empty()) {
        *token++ = data[at++];
    }
    while (at < data.size() && token < end) {
        if (at + kShortestRun > data.size() || fourAt(at) != fourAt(at - 1)) {
            *token++ = data[at++];
            continue;
        }
        const std::uint8_t byte = data[at - 1];
        const std::size_t most = std::min(kLongestRun, data.size() - at);
        std::size_t length = kShortestRun;
        while (length < most && data[at + length] == byte) {
            ++length;
        }
        *token++ = static_cast<Token>(kRun | length);
        at += length;
    }
    block.count = static_cast<std::size_t>(token - block.tokens.data());
    return at;
}

// The table of code lengths in front of a block, itself packed: runs of zeros in its own symbols 17 and 18.
void PutLengths(std::span<const std::uint8_t> lengths, BitWriter& out) {
    struct Piece {
        std::uint8_t symbol;
        std::uint8_t extraBits;
        std::uint8_t extra;
    };
    std::vector<Piece> pieces;
    std::array<std::uint32_t, kLengths> counts{};
    for (std::size_t i = 0; i < lengths.size();) {
        std::size_t run = 1;
        while (lengths[i] == 0 && i + run < lengths.size() && lengths[i + run] == 0 && run < 138) {
            ++run;
        }
        const Piece piece = run >= 11  ? Piece{18, 7, static_cast<std::uint8_t>(run - 11)}
                            : run >= 3 ? Piece{17, 3, static_cast<std::uint8_t>(run - 3)}
                                       : Piece{lengths[i], 0, 0};
        pieces.push_back(piece);
        ++counts[piece.symbol];
        i += run >= 3 ? run : 1;
    }
    constexpr std::array<std::uint8_t, kLengths> kOrder{16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                        11, 4,  12, 3, 13, 2, 14, 1, 15};
    const auto codeLengths = CodeLengths(counts, kLongestLengthCode);
    const auto codes = CodesOf(codeLengths);
    out.Put(static_cast<std::uint32_t>(kLengths - 4), 4);
    for (const std::uint8_t symbol : kOrder) {
        out.Put(codeLengths[symbol], 3);
    }
    for (const Piece& piece : pieces) {
        out.Put(codes[piece.symbol].bits, codes[piece.symbol].length);
        out.Put(piece.extra, piece.extraBits);
    }
}

void PutBlock(std::span<const Token> tokens, bool isLast, BitWriter& out) {
    std::array<std::uint32_t, kLiterals> counts{};
    for (const Token token : tokens) {
        ++counts[(token & kRun) != 0 ? kRunSymbols[token & ~kRun].symbol : token];
    }
    counts[kEndOfBlock] = 1;
    const auto lengths = CodeLengths(counts, kLongestCode);
    const auto codes = CodesOf(lengths);
    constexpr std::size_t kTableBits = (kLiterals + 2 + kLengths) * 16;
    constexpr std::size_t kTokenBits = kLongestCode + 5 + 1;
    out.Reserve(kTableBits + (tokens.size() + 1) * kTokenBits);
    out.Put(isLast ? 1 : 0, 1);
    out.Put(kDynamicBlock, 2);
    // All literals, and two distances of a bit each: "the byte before" is the first of them.
    std::array<std::uint8_t, kLiterals + 2> all{};
    std::copy(lengths.begin(), lengths.end(), all.begin());
    all[kLiterals] = all[kLiterals + 1] = 1;
    out.Put(kLiterals - 257, 5);
    out.Put(2 - 1, 5);
    PutLengths(all, out);
    for (const Token token : tokens) {
        if ((token & kRun) == 0) {
            out.Put(codes[token].bits, codes[token].length);
            continue;
        }
        const RunSymbol& run = kRunSymbols[token & ~kRun];
        out.Put(codes[run.symbol].bits, codes[run.symbol].length);
        out.Put(run.extra, run.extraBits + 1); // and the distance, a zero
    }
    out.Put(codes[kEndOfBlock].bits, codes[kEndOfBlock].length);
}

} // namespace

ByteBuffer DeflateRuns(ByteView data, bool isLast) {
    ByteBuffer out;
    BitWriter writer(out);
    const auto block = std::make_unique<Block>();
    std::size_t at = 0;
    do {
        at = Tokenize(data, at, *block);
        PutBlock(block->Tokens(), isLast && at == data.size(), writer);
    } while (at < data.size());
    writer.Reserve(64);
    if (!isLast) { // an empty stored block, which begins on a byte boundary
        writer.Put(0, 3);
        writer.Align();
        writer.Put(0, 16);
        writer.Put(0xFFFF, 16);
    }
    writer.Finish();
    return out;
}

} // namespace pictorel::codecs
