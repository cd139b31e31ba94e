#include "tools/orva-strings/commands/AnswerWriter.h"

#include "tools/orva-strings/cli/Json.h"
#include "tools/orva-strings/cli/Printable.h"

namespace {

class TextWriter : public AnswerWriter {
public:
    TextWriter(std::ostream& out, bool hasSeveralSections)
        : m_out(out), m_hasSeveralSections(hasSeveralSections) {}

    void BeginSection(std::string_view name, std::size_t /*line*/) override {
        m_prefix = m_hasSeveralSections ? PrintableName(name) + ": " : "";
    }

    void Add(const Answer& answer) override {
        if (answer.text || m_hasSeveralSections) {
            m_out << m_prefix << Printable(answer.key) << '=' << Shown(answer) << '\n';
        }
    }

    void End() override {}

private:
    static std::string Shown(const Answer& answer) {
        if (!answer.text) {
            return "null";
        }
        return answer.isHidden ? "(protected)" : '"' + Printable(*answer.text) + '"';
    }

    std::ostream& m_out;
    bool m_hasSeveralSections;
    std::string m_prefix;
};

// An object, one line an answer.
class JsonWriter : public AnswerWriter {
public:
    JsonWriter(std::ostream& out, const std::string& file)
        : m_out(out), m_head(R"({"version":1,"file":)" + JsonText(file) + R"(,"sections":[)") {}

    void BeginSection(std::string_view name, std::size_t line) override {
        m_out << (m_hasSection ? "]}," : m_head) << "\n{\"name\":" << JsonText(name)
              << R"(,"line":)" << line + 1 << R"(,"answers":[)";
        m_hasSection = true;
        m_beforeAnswer = "\n";
    }

    void Add(const Answer& answer) override {
        m_out << m_beforeAnswer << R"({"key":)" << JsonText(answer.key) << R"(,"protected":)"
              << (answer.isProtected ? "true" : "false");
        if (!answer.text) {
            m_out << R"(,"text":null)";
        } else if (!answer.isHidden) {
            m_out << R"(,"text":)" << JsonText(*answer.text);
        }
        m_out << '}';
        m_beforeAnswer = ",\n";
    }

    void End() override { m_out << (m_hasSection ? "]}" : m_head) << "]}\n"; }

private:
    std::ostream& m_out;
    std::string m_head;
    bool m_hasSection = false;
    const char* m_beforeAnswer = "";
};

}  // namespace

std::unique_ptr<AnswerWriter> MakeTextAnswerWriter(std::ostream& out, bool hasSeveralSections) {
    return std::make_unique<TextWriter>(out, hasSeveralSections);
}

std::unique_ptr<AnswerWriter> MakeJsonAnswerWriter(std::ostream& out, const std::string& file) {
    return std::make_unique<JsonWriter>(out, file);
}
