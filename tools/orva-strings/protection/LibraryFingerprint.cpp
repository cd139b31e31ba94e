#include "tools/orva-strings/protection/LibraryFingerprint.h"

#include <algorithm>
#include <string_view>

#include "protection/KeyFingerprint.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

namespace {

constexpr std::string_view kLabel = ORVA_KEY_FINGERPRINT_LABEL;
constexpr std::size_t kMarker = kLabel.size() + MasterKey::kFingerprint + 1;

bool IsDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// Adds the fingerprint of every complete marker in the text.
void Collect(std::string_view text, std::set<std::string>& fingerprints) {
    for (std::size_t at = text.find(kLabel); at != std::string_view::npos;
         at = text.find(kLabel, at + 1)) {
        const std::string_view marker = text.substr(at, kMarker);
        const std::string_view digits = marker.substr(kLabel.size(), MasterKey::kFingerprint);
        if (marker.size() == kMarker && marker.back() == '\0' &&
            std::all_of(digits.begin(), digits.end(), IsDigit)) {
            fingerprints.emplace(digits);
        }
    }
}

}  // namespace

std::set<std::string> FingerprintsIn(const std::string& path) {
    std::set<std::string> fingerprints;
    std::string text;
    ReadFileInPieces(path, [&](std::string_view piece) {
        text += piece;
        Collect(text, fingerprints);
        // Keeps what may be the start of a marker that the next piece completes.
        text.erase(0, text.size() - std::min(text.size(), kMarker - 1));
    });
    return fingerprints;
}
