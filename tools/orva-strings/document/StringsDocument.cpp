#include "tools/orva-strings/document/StringsDocument.h"

#include <algorithm>

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
