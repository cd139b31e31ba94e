#include "tests/support/StoredForm.h"

#include <fstream>

#include "tests/support/ReferenceAes.h"

namespace {

constexpr std::size_t kBlock = 16;

Bytes Slice(const Bytes& bytes, std::size_t from, std::size_t length) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
}

Bytes Joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace

Bytes CounterBlock(std::uint8_t counter, const Bytes& material) {
    Bytes block(kBlock, 0);
    block.back() = counter;
    // The first block of CBC with a zero IV is that of ECB.
    return EncryptCbc(material, Bytes(kBlock), block);
}

Bytes DerivedBlocks(const Bytes& material) {
    Bytes blocks;
    for (std::uint8_t counter = 1; counter <= 5; ++counter) {
        blocks = Joined(blocks, CounterBlock(counter, material));
    }
    return blocks;
}

Bytes TagOf(std::size_t textLength, const Bytes& padded, const Bytes& material) {
    Bytes length(kBlock, 0);
    for (std::size_t i = 0; i < 8; ++i) {
        length[kBlock - 1 - i] = static_cast<std::uint8_t>(textLength >> (8 * i));
    }
    const Bytes tagKey = Slice(DerivedBlocks(material), 3 * kBlock, 2 * kBlock);
    const Bytes chain = EncryptCbc(tagKey, Bytes(kBlock), Joined(length, padded));
    return Slice(chain, chain.size() - kBlock, kBlock);
}

std::string StoredBlocks(const Bytes& tagAndPadded, const Bytes& material) {
    const Bytes blocks = DerivedBlocks(material);
    const Bytes cipher =
        EncryptCbc(Slice(blocks, 0, 2 * kBlock), Slice(blocks, 2 * kBlock, kBlock), tagAndPadded);
    std::string digits = ToHex(cipher);
    for (char& digit : digits) {
        digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    }
    return digits;
}

std::string Stored(const std::string& text, const Bytes& material) {
    Bytes padded(text.begin(), text.end());
    const std::size_t padding = kBlock - text.size() % kBlock;
    padded.resize(text.size() + padding, static_cast<std::uint8_t>(padding));
    return StoredBlocks(Joined(TagOf(text.size(), padded, material), padded), material);
}

Bytes DevelopmentKey() {
    std::ifstream file(DEVELOPMENT_KEY);
    std::string digits;
    file >> digits;
    return FromHex(digits);
}
