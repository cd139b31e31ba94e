// Characters of ASCII, whatever the locale is.
#ifndef ORVALANGUAGE_TOOLS_ASCII_H
#define ORVALANGUAGE_TOOLS_ASCII_H

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

constexpr bool IsLetterOrDigit(char c) {
    return IsLetter(c) || IsDigit(c);
}

constexpr char ToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

#endif
