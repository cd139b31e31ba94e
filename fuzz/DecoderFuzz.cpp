// The decoder: it accepts only what the encoder makes, and notices one changed digit.
//
// Input: a text, both to decode and to encode; its first two bytes choose the digit.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "api/DecodeProtectedString.h"
#include "fuzz/Check.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

constexpr char kUntouched = '\x5A';

struct Decoded {
    bool isDone;
    std::string text;
};

Decoded Decode(const std::string& stored) {
    const auto length = static_cast<std::int32_t>(stored.size());
    std::int32_t sizing = -1;
    std::int32_t filling = -1;
    std::int32_t textLength = 0;
    DecodeProtectedString(&sizing, length, stored.data(), &textLength, nullptr);
    std::string buffer(stored.size(), kUntouched);
    textLength = 0;
    DecodeProtectedString(&filling, length, stored.data(), &textLength, buffer.data());
    Check(sizing == filling, "both calls have the same status");
    Check(filling == 0 || textLength == 0, "no length without a text");
    const auto written = static_cast<std::size_t>(textLength);
    Check(written <= stored.size() && (filling != 0 || written < stored.size()),
          "the text is shorter than what is stored");
    Check(std::all_of(buffer.begin() + textLength, buffer.end(),
                      [](char c) { return c == kUntouched; }),
          "nothing is written after the text");
    return {filling == 0, buffer.substr(0, written)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    const std::string input(reinterpret_cast<const char*>(data), size);

    const Decoded decoded = Decode(input);
    Check(!decoded.isDone || EncodeProtectedText(keys, decoded.text) == input,
          "only what the encoder makes is accepted");

    std::string stored = EncodeProtectedText(keys, input);
    const Decoded back = Decode(stored);
    Check(back.isDone && back.text == input, "what is encoded decodes to the same");

    const std::size_t place = size < 2 ? 0 : (data[0] * 256U + data[1]) % stored.size();
    stored[place] = stored[place] == 'F' ? '0' : 'F';
    Check(!Decode(stored).isDone, "a changed digit is noticed");
    return 0;
}
