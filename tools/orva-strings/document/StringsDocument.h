#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_STRINGSDOCUMENT_H

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/orva-strings/document/StringsReader.h"

// A strings file whose entries can be changed one by one; all other bytes stay as they are. Keeps
// only what changes, so that a file may be large.
class StringsDocument {
public:
    // Keeps a view of the bytes, so they must outlive the object, and must not change.
    explicit StringsDocument(const std::string& bytes) : m_bytes(bytes) {}
    explicit StringsDocument(std::string&&) = delete;
    StringsDocument(const StringsDocument&) = delete;
    StringsDocument& operator=(const StringsDocument&) = delete;

    // Reads the file from its start, without the changes.
    StringsReader Lines() const { return StringsReader(m_bytes); }

    // Changes the value of a line, which must make an entry. Its quotes stay, and so does the text
    // before the first and after the last. Missing quotes are added if the value needs them. Lines
    // are changed in file order, each once.
    //
    // Returns the line's new text, valid until the next call. Returns nothing, and changes nothing,
    // if the value can't be written so that it reads back the same. For instance, a backslash before
    // an n has no escape.
    std::optional<std::string_view> SetValue(const StringsLine& line, std::string_view value);

    // Changes a quoted value that SetValue can't write to one without quotes, where a backslash and
    // an n are not an escape. Returns false, and changes nothing, if the line has anything else after
    // its equals sign, or if the value would not read back the same.
    bool SetUnquoted(const StringsLine& line, std::string_view value);

    // The line of a new entry, with its line feed, in quotes if the value can be written so. Nothing
    // if it can't be written so that it reads back the same, wherever it is put. The key must be one
    // that another line has.
    std::optional<std::string> NewEntry(std::string_view key, std::string_view value);

    // The line of a new section's header, with its line feed.
    std::string NewHeader(std::string_view name) const;

    // Adds a new line below one of the file, after what else was added there. Counts as a change in
    // file order.
    void InsertBelow(const StringsLine& line, std::string_view newLine);

    bool IsChanged() const { return !m_changes.empty(); }

    // The number of lines whose value has changed.
    std::size_t ChangeCount() const { return m_changes.size(); }

    // Calls take with the bytes of the changed file, in pieces of at most 64 KiB.
    void WriteInPieces(const std::function<void(std::string_view)>& take) const;

    // The bytes of the changed file.
    std::string Bytes() const;

private:
    struct Change {
        std::string_view before;  // in m_bytes
        std::string_view after;   // in m_blocks
    };

    // Writes the line with other text in place of `before`, to m_newLine. Returns whether it is still
    // one line and reads back as an entry of this value.
    bool ReadsBack(const StringsLine& line, std::string_view before, std::string_view written,
                   std::string_view value);

    // What ends the first line of the file: LF or CR LF.
    std::string_view LineEnd() const;

    // Keeps a copy of a text for as long as the object lives.
    std::string_view Keep(std::string_view text);

    std::string_view m_bytes;
    std::deque<Change> m_changes;      // in file order; unlike a vector, it grows without copies
    std::deque<std::string> m_blocks;  // of new texts; none grows beyond its capacity
    std::string m_escaped;
    std::string m_newLine;
    std::string m_newValue;  // as read back
};

#endif
