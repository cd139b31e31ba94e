// The tool's commands: protected texts reveal to the original ones, under another key too.
//
// Input: the file.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Check.h"
#include "tools/orva-strings/document/ProtectedEntries.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/protection/ProtectedText.h"

namespace {

std::vector<std::string> Texts(const std::string& file) {
    std::vector<std::string> texts;
    StringsReader lines(file);
    while (lines.Next()) {
        if (const auto entry = lines.Entry()) {
            texts.push_back(std::string(entry->key) + '=' + std::string(entry->value));
        }
    }
    return texts;
}

// Whether a protected entry of the file is in stored form already.
bool HasStored(const std::string& file, const ProtectionKeys& keys) {
    StringsReader lines(file);
    while (lines.Next()) {
        const auto entry = lines.Entry();
        if (entry && IsProtectedKey(entry->key.data()) && DecodeProtectedText(keys, entry->value)) {
            return true;
        }
    }
    return false;
}

// A file after a command that must succeed and report nothing.
template <typename Change>
std::string Changed(const std::string& file, const Change& change) {
    StringsDocument document(file);
    Check(change(document).empty(), "there is nothing to report");
    return document.Bytes();
}

}  // namespace

constexpr std::uint8_t kOtherMaterial[kProtectedKey] = {1, 2, 3};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    static const ProtectionKeys otherKeys(kOtherMaterial);
    const std::string file(reinterpret_cast<const char*>(data), size);
    // A stored value would be revealed as its text, and that is not the text in the file.
    if (HasStored(file, keys)) {
        return 0;
    }

    StringsDocument document(file);
    // Forced, so that a value that looks stored is treated as a text.
    if (HasError(ProtectEntries(document, keys, true))) {
        return 0;
    }
    const std::string protectedFile = document.Bytes();
    StringsReader lines(protectedFile);
    while (lines.Next()) {
        const auto entry = lines.Entry();
        if (entry && IsProtectedKey(entry->key.data())) {
            Check(DecodeProtectedText(keys, entry->value).has_value(),
                  "every protected value is stored");
            Check(entry->beforeQuote.find_first_not_of(" \t") == std::string_view::npos,
                  "no text is left before a protected value");
        }
    }
    StringsDocument again(protectedFile);
    Check(!HasError(ProtectEntries(again, keys, false)) && !again.IsChanged(),
          "protected values stay");
    const std::string otherFile = Changed(protectedFile, [&](StringsDocument& changing) {
        return RekeyEntries(changing, keys, otherKeys);
    });
    Check(Changed(otherFile,
                  [&](StringsDocument& changing) {
                      return RekeyEntries(changing, otherKeys, keys);
                  }) == protectedFile,
          "rekeying there and back changes nothing");
    const std::string revealed = Changed(
        otherFile, [&](StringsDocument& changing) { return RevealEntries(changing, otherKeys); });
    Check(Texts(revealed) == Texts(file), "the texts are the same");
    return 0;
}
