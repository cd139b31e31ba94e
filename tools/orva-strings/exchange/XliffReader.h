#ifndef ORVALANGUAGE_TOOLS_EXCHANGE_XLIFFREADER_H
#define ORVALANGUAGE_TOOLS_EXCHANGE_XLIFFREADER_H

#include <cstddef>
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

struct XML_ParserStruct;

// Why a document can't be read, and the line, from 0.
class XliffError : public std::runtime_error {
public:
    XliffError(std::size_t line, const std::string& text)
        : std::runtime_error(text), m_line(line) {}
    std::size_t Line() const { return m_line; }

private:
    std::size_t m_line;
};

// What a <file> says about its texts. An attribute that is missing is empty.
struct XliffFile {
    std::size_t line;  // from 0
    std::string sourceLanguage;
    std::string targetLanguage;
};

// A <trans-unit>, with the text of its source and of its target, in UTF-8.
struct XliffUnit {
    std::size_t line = 0;  // from 0
    std::string id;
    std::string resname;
    std::optional<std::string> source;
    std::optional<std::string> target;
    std::string state;  // of the target

    // The first inline element whose meaning the texts lack, such as "g". Empty if they lack nothing.
    // One that only marks a text, or says which text it stands for, becomes that text.
    std::string lost;
};

// Reads an XLIFF 1.1 or 1.2 document, given in pieces, and hands on its parts in order.
class XliffReader {
public:
    using TakeFile = std::function<void(const XliffFile&)>;
    using TakeUnit = std::function<void(const XliffUnit&)>;

    XliffReader(TakeFile takeFile, TakeUnit takeUnit);
    ~XliffReader();
    XliffReader(const XliffReader&) = delete;
    XliffReader& operator=(const XliffReader&) = delete;

    // Takes the next piece, of at most 64 KiB. Throws XliffError if the document is not well-formed,
    // of another version, or has a document type, which could define entities. Throws what the functions
    // that take its parts throw. No piece may be given after that.
    void Read(std::string_view piece);

    // Call after the last piece. Throws XliffError if the document is not complete.
    void Finish();

private:
    struct Handlers;  // called by the parser

    // An inline element that is open.
    struct Inline {
        std::string name;
        std::string equivalent;  // the text that it stands for, if it has no content
        bool isCode;
        std::size_t begin;  // of its content
    };
    enum class Place { kDocument, kXliff, kFile, kBody, kUnit };

    void Parse(std::string_view piece, bool isLast);
    void Start(const char* name, const char** attributes);
    void End();
    bool IsXliff(std::string_view space) const;
    void StartRoot(std::string_view name, const char** attributes);
    void StartInUnit(std::string_view name, const char** attributes);
    void StartInline(std::string_view name, const char** attributes);
    void EndInline();
    void Lose(const std::string& name);
    std::size_t Line() const;

    TakeFile m_takeFile;
    TakeUnit m_takeUnit;
    XML_ParserStruct* m_parser;
    std::exception_ptr m_exception;  // of a handler; may not pass through the parser
    std::size_t m_size = 0;          // of all pieces
    std::string m_namespace;         // of the root
    Place m_place = Place::kDocument;
    std::size_t m_groups = 0;   // open
    std::size_t m_ignored = 0;  // open elements whose content does not matter
    XliffUnit m_unit;
    std::string* m_text = nullptr;  // the text that is being read
    std::vector<Inline> m_inlines;
};

#endif
