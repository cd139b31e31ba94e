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

std::vector<std::string> Texts(const StringsDocument& document) {
    std::vector<std::string> texts;
    for (const StringsDocument::Section& section : document.Sections()) {
        for (const StringsDocument::Entry& entry : section.entries) {
            texts.push_back(entry.key + '=' + entry.value);
        }
    }
    return texts;
}

}  // namespace

constexpr std::uint8_t kOtherMaterial[kProtectedKey] = {1, 2, 3};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ProtectionKeys keys = MasterKey::BuiltIn().Derive();
    static const ProtectionKeys otherKeys(kOtherMaterial);
    const std::string file(reinterpret_cast<const char*>(data), size);

    StringsDocument document(file);
    // Forced, so that a value that looks stored is treated as a text.
    if (HasError(ProtectEntries(document, keys, true))) {
        return 0;
    }
    for (const StringsDocument::Section& section : document.Sections()) {
        for (const StringsDocument::Entry& entry : section.entries) {
            if (IsProtectedKey(entry.key.c_str())) {
                Check(DecodeProtectedText(keys, entry.value).has_value(),
                      "every protected value is stored");
                Check(entry.beforeQuote.find_first_not_of(" \t") == std::string::npos,
                      "no text is left before a protected value");
            }
        }
    }
    const std::string protectedBytes = document.Bytes();
    Check(!HasError(ProtectEntries(document, keys, false)) && document.Bytes() == protectedBytes,
          "protected values stay");
    Check(RekeyEntries(document, keys, otherKeys).empty() &&
              RekeyEntries(document, otherKeys, keys).empty() && document.Bytes() == protectedBytes,
          "rekeying there and back changes nothing");
    Check(RekeyEntries(document, keys, otherKeys).empty() &&
              RevealEntries(document, otherKeys).empty(),
          "what was protected can be revealed");
    Check(Texts(document) == Texts(StringsDocument(file)), "the texts are the same");
    return 0;
}
