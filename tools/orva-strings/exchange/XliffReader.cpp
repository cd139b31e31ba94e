#include "tools/orva-strings/exchange/XliffReader.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <expat.h>
#include <iterator>
#include <new>
#include <utility>

namespace {

constexpr char kNamespaceEnd = ' ';
// What is read means the same in both, and some programs write one version with the namespace of the
// other.
constexpr std::string_view kVersions[] = {"1.1", "1.2"};
constexpr std::string_view kNamespace12 = "urn:oasis:names:tc:xliff:document:1.2";
constexpr std::string_view kNamespaces[] = {"", "urn:oasis:names:tc:xliff:document:1.1",
                                            kNamespace12};

// With each piece, the parser reads a tag or comment that is not complete from its start, so a long
// one takes time in proportion to the square of its length.
constexpr std::size_t kMaxToken = std::size_t{1} << 20U;

std::string_view Attribute(const char** attributes, std::string_view name) {
    for (; *attributes != nullptr; attributes += 2) {
        if (*attributes == name) {
            return attributes[1];
        }
    }
    return "";
}

// Whether a name is among these.
template <typename Names>
bool IsAmong(const Names& names, std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// The parser's memory comes from operator new, like all other, so that the tests can measure it and
// make each allocation fail. A block's size precedes it.
constexpr std::size_t kHeader = alignof(std::max_align_t);

std::size_t SizeOf(const void* memory) {
    std::size_t size = 0;
    std::memcpy(&size, static_cast<const char*>(memory) - kHeader, sizeof size);
    return size;
}

void* Allocate(std::size_t size) {
    try {
        auto* const block = static_cast<char*>(::operator new(kHeader + size));
        std::memcpy(block, &size, sizeof size);
        return block + kHeader;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Free(void* memory) {
    if (memory != nullptr) {
        ::operator delete(static_cast<char*>(memory) - kHeader);
    }
}

void* Reallocate(void* memory, std::size_t size) {
    void* const other = Allocate(size);
    if (memory != nullptr && other != nullptr) {
        std::memcpy(other, memory, std::min(size, SizeOf(memory)));
        Free(memory);
    }
    return other;
}

XML_Parser MakeParser() {
    constexpr XML_Memory_Handling_Suite kMemory = {Allocate, Reallocate, Free};
    const char separator[] = {kNamespaceEnd, '\0'};
    XML_Parser parser = XML_ParserCreate_MM(nullptr, &kMemory, separator);
    if (parser == nullptr) {
        throw std::bad_alloc();
    }
    return parser;
}

}  // namespace

struct XliffReader::Handlers {
    // Calls a function of the reader. If it throws, the parser stops, at the latest after the end of
    // an empty element.
    template <typename Function>
    static void Call(void* data, const Function& function) {
        auto& reader = *static_cast<XliffReader*>(data);
        try {
            function(reader);
        } catch (...) {
            reader.m_exception = std::current_exception();
            XML_StopParser(reader.m_parser, XML_FALSE);
        }
    }

    static void Start(void* data, const char* name, const char** attributes) {
        Call(data, [&](XliffReader& reader) { reader.Start(name, attributes); });
    }
    static void End(void* data, const char*) {
        Call(data, [](XliffReader& reader) { reader.End(); });
    }
    static void Text(void* data, const char* text, int size) {
        Call(data, [&](XliffReader& reader) {
            if (reader.m_text != nullptr && reader.m_ignored == 0) {
                reader.m_text->append(text, static_cast<std::size_t>(size));
            }
        });
    }
    static void DocumentType(void* data, const char*, const char*, const char*, int) {
        Call(data, [](const XliffReader& reader) {
            throw XliffError(reader.Line(),
                             "a document type, which could define entities, is not accepted");
        });
    }
};

XliffReader::XliffReader(TakeFile takeFile, TakeUnit takeUnit)
    : m_takeFile(std::move(takeFile)), m_takeUnit(std::move(takeUnit)), m_parser(MakeParser()) {
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, Handlers::Start, Handlers::End);
    XML_SetCharacterDataHandler(m_parser, Handlers::Text);
    XML_SetStartDoctypeDeclHandler(m_parser, Handlers::DocumentType);
}

XliffReader::~XliffReader() {
    XML_ParserFree(m_parser);
}

void XliffReader::Read(std::string_view piece) {
    Parse(piece, false);
    m_size += piece.size();
    const XML_Index read = XML_GetCurrentByteIndex(m_parser);
    if (read >= 0 && m_size - static_cast<std::size_t>(read) > kMaxToken) {
        throw XliffError(Line(), "a tag or comment is longer than 1 MiB");
    }
}

void XliffReader::Finish() {
    Parse("", true);
}

void XliffReader::Parse(std::string_view piece, bool isLast) {
    const XML_Status status =
        XML_Parse(m_parser, piece.data(), static_cast<int>(piece.size()), isLast ? 1 : 0);
    if (m_exception) {
        std::rethrow_exception(m_exception);
    }
    if (status != XML_STATUS_OK) {
        const XML_Error error = XML_GetErrorCode(m_parser);
        if (error == XML_ERROR_NO_MEMORY) {
            throw std::bad_alloc();
        }
        throw XliffError(Line(),
                         std::string("this is not well-formed XML: ") + XML_ErrorString(error));
    }
}

std::size_t XliffReader::Line() const {
    return XML_GetCurrentLineNumber(m_parser) - 1;
}

void XliffReader::Start(const char* name, const char** attributes) {
    std::string_view local = name;
    const std::size_t end = local.rfind(kNamespaceEnd);
    std::string_view space;
    if (end != std::string_view::npos) {
        space = local.substr(0, end);
        local.remove_prefix(end + 1);
    }
    if (m_place == Place::kDocument) {
        m_namespace = space;
        StartRoot(local, attributes);
    } else if (m_ignored > 0) {
        ++m_ignored;
    } else if (m_text != nullptr) {
        StartInline(IsXliff(space) ? local : name, attributes);
    } else if (!IsXliff(space)) {
        m_ignored = 1;
    } else if (m_place == Place::kXliff && local == "file") {
        m_place = Place::kFile;
        m_takeFile({Line(), std::string(Attribute(attributes, "source-language")),
                    std::string(Attribute(attributes, "target-language"))});
    } else if (m_place == Place::kFile && local == "body") {
        m_place = Place::kBody;
    } else if (m_place == Place::kBody && local == "group") {
        ++m_groups;
    } else if (m_place == Place::kBody && local == "trans-unit") {
        m_place = Place::kUnit;
        m_unit = {};
        m_unit.line = Line();
        m_unit.id = Attribute(attributes, "id");
        m_unit.resname = Attribute(attributes, "resname");
    } else {
        StartInUnit(local, attributes);
    }
}

// In a document of version 1.1, some programs leave the units as they got them, in that of 1.2.
bool XliffReader::IsXliff(std::string_view space) const {
    return space == m_namespace || space == kNamespace12;
}

void XliffReader::StartRoot(std::string_view name, const char** attributes) {
    if (name != "xliff") {
        throw XliffError(Line(), "not an XLIFF document: it begins with <" + std::string(name) +
                                     ">, not with <xliff>");
    }
    const std::string version(Attribute(attributes, "version"));
    if (!IsAmong(kVersions, version)) {
        throw XliffError(Line(), "XLIFF of version '" + version + "'; only 1.1 and 1.2 are read");
    }
    if (!IsAmong(kNamespaces, m_namespace)) {
        throw XliffError(Line(), "XLIFF of version " + version + " does not have the namespace '" +
                                     m_namespace + "'");
    }
    m_place = Place::kXliff;
}

// Other elements, such as translations that are only proposed, do not matter, nor does a second
// source or target.
void XliffReader::StartInUnit(std::string_view name, const char** attributes) {
    if (m_place == Place::kUnit && name == "source" && !m_unit.source) {
        m_text = &m_unit.source.emplace();
    } else if (m_place == Place::kUnit && name == "target" && !m_unit.target) {
        m_unit.state = Attribute(attributes, "state");
        m_text = &m_unit.target.emplace();
    } else {
        m_ignored = 1;
    }
}

void XliffReader::StartInline(std::string_view name, const char** attributes) {
    constexpr std::string_view kCodes[] = {"bpt", "bx", "ept", "ex", "it", "ph", "x"};
    constexpr std::string_view kMarks[] = {"mrk", "sub"};
    const bool isCode = IsAmong(kCodes, name);
    m_inlines.push_back({std::string(name), std::string(Attribute(attributes, "equiv-text")),
                         isCode, m_text->size()});
    if (!isCode && !IsAmong(kMarks, name)) {
        Lose(m_inlines.back().name);
    }
}

// A code of the original stands in the element, or the element stands for it.
void XliffReader::EndInline() {
    const Inline& element = m_inlines.back();
    if (element.isCode && m_text->size() == element.begin) {
        if (element.equivalent.empty()) {
            Lose(element.name);
        }
        *m_text += element.equivalent;
    }
    m_inlines.pop_back();
}

// What a source has lost does not matter if it is the reference's text all the same.
void XliffReader::Lose(const std::string& name) {
    if (m_unit.lost.empty() && m_unit.target && m_text == &*m_unit.target) {
        m_unit.lost = name;
    }
}

void XliffReader::End() {
    if (m_ignored > 0) {
        --m_ignored;
    } else if (!m_inlines.empty()) {
        EndInline();
    } else if (m_text != nullptr) {
        m_text = nullptr;
    } else if (m_place == Place::kUnit) {
        m_place = Place::kBody;
        m_takeUnit(m_unit);
    } else if (m_place == Place::kBody && m_groups > 0) {
        --m_groups;
    } else if (m_place == Place::kBody) {
        m_place = Place::kFile;
    } else {
        m_place = Place::kXliff;  // the end of the document does not matter
    }
}
