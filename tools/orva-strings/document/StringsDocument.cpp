#include "tools/orva-strings/document/StringsDocument.h"

#include <algorithm>

#include <OrvaLanguage/KorString.h>

#include "strings/Line.h"
#include "tools/orva-strings/document/PieceWriter.h"

namespace {

// Writes each line feed as a backslash and an n. Returns text itself if it has none, otherwise a view
// of buffer, which is overwritten.
std::string_view Escape(std::string_view text, std::string& buffer) {
    std::size_t feed = text.find('\n');
    if (feed == std::string_view::npos) {
        return text;
    }
    buffer.clear();
    for (; feed != std::string_view::npos; feed = text.find('\n')) {
        buffer += text.substr(0, feed);
        buffer += "\\n";
        text.remove_prefix(feed + 1);
    }
    return buffer += text;
}

}  // namespace

std::optional<std::string_view> StringsDocument::SetValue(const StringsLine& line,
                                                          std::string_view value) {
    const LineEntry entry = *SplitEntry(line.text);
    // First with the existing quotes, then with the missing ones added.
    std::string_view written = entry.isQuoted ? Escape(value, m_escaped) : value;
    std::string quoted;
    if (!ReadsBack(line, entry.value, written, value)) {
        const bool isClosed = entry.value.end() != line.text.end();
        quoted = entry.isQuoted ? "" : "\"";
        quoted += Escape(value, m_escaped);
        quoted += isClosed ? "" : "\"";
        written = quoted;
        if (!ReadsBack(line, entry.value, written, value)) {
            return std::nullopt;
        }
    }
    if (written != entry.value) {
        m_changes.push_back({entry.value, Keep(written)});
    }
    return std::string_view(m_newLine).substr(0, m_newLine.size() - line.ending.size());
}

bool StringsDocument::SetUnquoted(const StringsLine& line, std::string_view value) {
    const LineEntry entry = *SplitEntry(line.text);
    const std::string_view rest = line.text.substr(entry.key.size() + 1);
    // Its quotes are the first byte and, unless the closing one is missing, the last.
    const bool isAllQuoted = entry.isQuoted && entry.value.data() == rest.data() + 1 &&
                             line.text.end() - entry.value.end() <= 1;
    if (!isAllQuoted || !ReadsBack(line, rest, value, value)) {
        return false;
    }
    m_changes.push_back({rest, Keep(value)});
    return true;
}

std::optional<std::string> StringsDocument::NewEntry(std::string_view key, std::string_view value) {
    std::string start(key);
    start += '=';
    const std::string_view end = std::string_view(start).substr(start.size());
    std::string quoted = "\"";
    quoted += Escape(value, m_escaped);
    quoted += '"';
    for (const std::string_view written : {std::string_view(quoted), value}) {
        // Where it becomes the last line, it may lose its line feed.
        if (ReadsBack({0, start, LineEnd()}, end, written, value) &&
            ReadsBack({0, start, ""}, end, written, value)) {
            return m_newLine.append(LineEnd());
        }
    }
    return std::nullopt;
}

std::string StringsDocument::NewHeader(std::string_view name) const {
    std::string header = KorString::LANG_STATEMENT;
    header += name;
    return header.append(LineEnd());
}

void StringsDocument::InsertBelow(const StringsLine& line, std::string_view newLine) {
    const std::size_t end = static_cast<std::size_t>(line.text.data() - m_bytes.data()) +
                            line.text.size() + line.ending.size();
    const std::string_view place = m_bytes.substr(end, 0);
    if (line.ending.find('\n') != std::string_view::npos) {
        m_changes.push_back({place, Keep(newLine)});
        return;
    }
    // The last line lacks its line feed, and the new one does instead.
    const std::string_view lineEnd = LineEnd();
    std::string below(line.ending.empty() ? lineEnd : "\n");
    below += newLine.substr(0, newLine.size() - lineEnd.size());
    m_changes.push_back({place, Keep(below)});
}

std::string_view StringsDocument::LineEnd() const {
    const std::size_t feed = std::min(m_bytes.find('\n'), m_bytes.size());
    return feed > 0 && feed < m_bytes.size() && m_bytes[feed - 1] == '\r' ? "\r\n" : "\n";
}

void StringsDocument::WriteInPieces(const std::function<void(std::string_view)>& take) const {
    PieceWriter writer(take);
    std::string_view rest = m_bytes;
    for (const Change& change : m_changes) {
        const auto length = static_cast<std::size_t>(change.before.data() - rest.data());
        writer.Write(rest.substr(0, length));
        writer.Write(change.after);
        rest.remove_prefix(length + change.before.size());
    }
    writer.Write(rest);
    writer.Finish();
}

std::string StringsDocument::Bytes() const {
    std::string bytes;
    WriteInPieces([&](std::string_view piece) { bytes += piece; });
    return bytes;
}

bool StringsDocument::ReadsBack(const StringsLine& line, std::string_view before,
                                std::string_view written, std::string_view value) {
    const auto begin = static_cast<std::size_t>(before.data() - line.text.data());
    m_newLine = line.text.substr(0, begin);
    m_newLine += written;
    m_newLine += line.text.substr(begin + before.size());
    m_newLine += line.ending;
    StringsReader reader(m_newLine);
    reader.Next();
    const StringsLine read = reader.Line();
    return read.ending == line.ending && !reader.Next() &&
           ReadEntry(read.text, m_newValue)->value == value;
}

std::string_view StringsDocument::Keep(std::string_view text) {
    if (m_blocks.empty() || m_blocks.back().capacity() - m_blocks.back().size() < text.size()) {
        m_blocks.emplace_back().reserve(std::max(text.size(), PieceWriter::kPiece));
    }
    std::string& block = m_blocks.back();
    block += text;
    return std::string_view(block).substr(block.size() - text.size());
}
