#ifndef ORVALANGUAGE_TOOLS_CLI_NEAREST_H
#define ORVALANGUAGE_TOOLS_CLI_NEAREST_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Finds the words that may have been meant by an unknown one. Those that differ only in blanks and
// the case of ASCII letters are nearest. Then come those at the least Levenshtein distance, which is
// at most two and less than the word's length.
class Nearest {
public:
    // The word and the candidates must outlive the object.
    explicit Nearest(std::string_view word);

    void Offer(std::string_view candidate) { Offer(candidate, candidate); }

    // Offers a candidate that has another name, too, by that name.
    void Offer(std::string_view candidate, std::string_view name);

    // "; did you mean 'A' or 'B'?" with the first three of the nearest candidates, each after the
    // prefix; empty if there are none.
    std::string DidYouMean(const std::string& prefix = "") const;

private:
    std::string_view m_word;
    std::string m_folded;
    std::size_t m_distance;  // of the nearest so far
    std::vector<std::string_view> m_nearest;
};

#endif
