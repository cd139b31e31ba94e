#ifndef ORVALANGUAGE_TOOLS_COMMANDS_ANSWERWRITER_H
#define ORVALANGUAGE_TOOLS_COMMANDS_ANSWERWRITER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

// What a host gets for a key.
struct Answer {
    std::string_view key;
    std::optional<std::string> text;  // nothing: null
    bool isProtected;
    bool isHidden;  // the text is not to be shown
};

// Writes what the library answers from one section after the other.
class AnswerWriter {
public:
    AnswerWriter() = default;
    virtual ~AnswerWriter() = default;
    AnswerWriter(const AnswerWriter&) = delete;
    AnswerWriter& operator=(const AnswerWriter&) = delete;

    // The line, from 0, is that of the section's header.
    virtual void BeginSection(std::string_view name, std::size_t line) = 0;
    virtual void Add(const Answer& answer) = 0;
    virtual void End() = 0;
};

// A line for each answer, KEY="TEXT", which begins with the section's name if there are several
// sections. With one section, null is left out.
std::unique_ptr<AnswerWriter> MakeTextAnswerWriter(std::ostream& out, bool hasSeveralSections);

std::unique_ptr<AnswerWriter> MakeJsonAnswerWriter(std::ostream& out, const std::string& file);

#endif
