#include "tools/orva-strings/cli/Nearest.h"

#include <algorithm>

#include "tools/orva-strings/Ascii.h"

namespace {

constexpr std::size_t kMaxDistance = 2;
constexpr std::size_t kMaxNamed = 3;

// The Levenshtein distance of two words if it is at most `limit`, otherwise a greater number. With a
// small limit, the time is linear in their length.
std::size_t Distance(std::string_view a, std::string_view b, std::size_t limit) {
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    a.remove_prefix(static_cast<std::size_t>(inA - a.begin()));
    b.remove_prefix(static_cast<std::size_t>(inB - b.begin()));
    if (a.empty() || b.empty() || limit == 0) {
        return std::max(a.size(), b.size());
    }
    return 1 + std::min({Distance(a.substr(1), b.substr(1), limit - 1),
                         Distance(a.substr(1), b, limit - 1), Distance(a, b.substr(1), limit - 1)});
}

// Without blanks, and in lower case.
std::string Folded(std::string_view text) {
    std::string folded;
    for (const char c : text) {
        if (c != ' ' && c != '\t') {
            folded += ToLower(c);
        }
    }
    return folded;
}

}  // namespace

Nearest::Nearest(std::string_view word)
    : m_word(word),
      m_folded(Folded(word)),
      m_distance(std::min(kMaxDistance, word.empty() ? 0 : word.size() - 1)) {}

void Nearest::Offer(std::string_view candidate, std::string_view name) {
    const std::size_t distance = Folded(name) == m_folded ? 0 : Distance(m_word, name, m_distance);
    if (distance > m_distance ||
        std::find(m_nearest.begin(), m_nearest.end(), candidate) != m_nearest.end()) {
        return;
    }
    if (distance < m_distance) {
        m_nearest.clear();
        m_distance = distance;
    }
    if (m_nearest.size() < kMaxNamed) {
        m_nearest.push_back(candidate);
    }
}

std::string Nearest::DidYouMean(const std::string& prefix) const {
    std::string text;
    for (std::size_t i = 0; i < m_nearest.size(); ++i) {
        text += i == 0 ? "; did you mean " : i + 1 < m_nearest.size() ? ", " : " or ";
        text += '\'' + prefix;
        text += m_nearest[i];
        text += '\'';
    }
    return text.empty() ? text : text + '?';
}
