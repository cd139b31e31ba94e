#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_SECRETTEXTS_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_SECRETTEXTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// The texts of protected entries, to find where else they are.
class SecretTexts {
public:
    // Adds a text. One without anything but blanks is not a secret.
    void Add(std::string_view text);

    bool IsEmpty() const { return m_texts.empty(); }

    // Whether this is one of the texts.
    bool Has(const std::string& text) const { return m_texts.count(text) != 0; }

    // Whether this contains one of the texts that are long enough not to be there by chance.
    bool AreIn(std::string_view text) const;

    // Whether whoever reads this text has read one of them.
    bool AreShownBy(std::string_view text) const { return Has(std::string(text)) || AreIn(text); }

private:
    static constexpr std::size_t kLong = 8;

    std::unordered_set<std::string> m_texts;
    std::unordered_map<std::string_view, std::vector<std::string_view>>
        m_longTexts;  // by beginning
};

// The texts of all protected entries in a file, and of what was probably meant as one, wherever it is.
SecretTexts FindSecretTexts(std::string_view bytes);

#endif
