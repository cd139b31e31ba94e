#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_PIECEWRITER_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_PIECEWRITER_H

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/orva-strings/system/Files.h"

// Joins small parts of a file to pieces of 64 KiB.
class PieceWriter {
public:
    static constexpr std::size_t kPiece = 65536;

    // Calls take with each piece; take must outlive the object.
    explicit PieceWriter(const TakePiece& take) : m_take(take) { m_piece.reserve(kPiece); }

    void Write(std::string_view bytes) {
        while (bytes.size() > kPiece - m_piece.size()) {
            const std::size_t room = kPiece - m_piece.size();
            m_piece += bytes.substr(0, room);
            bytes.remove_prefix(room);
            Finish();
        }
        m_piece += bytes;
    }

    // Call at the end.
    void Finish() {
        m_take(m_piece);
        m_piece.clear();
    }

private:
    const TakePiece& m_take;
    std::string m_piece;
};

#endif
