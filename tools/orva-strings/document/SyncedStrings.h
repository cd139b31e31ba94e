#ifndef ORVALANGUAGE_TOOLS_DOCUMENT_SYNCEDSTRINGS_H
#define ORVALANGUAGE_TOOLS_DOCUMENT_SYNCEDSTRINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/system/Files.h"

struct SyncOptions {
    std::string reference;               // the section whose order the others get; empty: the first
    std::vector<std::string> languages;  // the sections to change; empty: all
    bool isFilled = false;               // whether they get the reference's entries that they lack
    bool isPruned = false;               // whether they lose those that the reference lacks
};

// A line of the new file.
struct SyncedLine {
    std::optional<std::size_t> before;  // its number in the old file, from 0; absent if it is new
    std::string_view text;
    std::string_view ending;
    bool isEntry;           // whether it makes an entry and was meant as one
    bool hasMoved = false;  // whether it is new at its place
};

// A strings file whose sections have their entries in the order of one of them, the reference. All
// lines stay as they are, and syncing the result changes nothing.
class SyncedStrings {
public:
    // Keeps a view of the bytes, so they must outlive the object, and must not change.
    SyncedStrings(const std::string& bytes, const SyncOptions& options);
    SyncedStrings(std::string&&, const SyncOptions&) = delete;

    // Why the file can't be synced, if there are errors. It then has no lines.
    const Findings& Obstacles() const { return m_obstacles; }

    const std::vector<SyncedLine>& Lines() const { return m_lines; }

    // How many entries have been removed.
    std::size_t Pruned() const { return m_pruned; }

    // Calls take with the bytes of the new file, in pieces of at most 64 KiB.
    void WriteInPieces(const TakePiece& take) const;

private:
    Findings m_obstacles;
    std::vector<SyncedLine> m_lines;
    std::size_t m_pruned = 0;
};

#endif
