#include "tools/orva-strings/hosts/SourceFiles.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "tools/orva-strings/system/Files.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEndings[] = {".c",   ".h",   ".cc",  ".cpp",  ".cxx", ".c++",
                                         ".hh",  ".hpp", ".hxx", ".h++",  ".inl", ".ipp",
                                         ".tpp", ".m",   ".mm",  ".swift"};

bool IsSource(const fs::path& path) {
    return std::find(std::begin(kEndings), std::end(kEndings), path.extension().string()) !=
           std::end(kEndings);
}

struct Found {
    std::set<std::string> paths;
    std::vector<std::string>& skipped;
};

fs::file_status StatusOfExisting(const fs::path& path) {
    const fs::file_status status = StatusOf(path);
    if (!fs::exists(status)) {
        throw std::system_error(std::make_error_code(std::errc::no_such_file_or_directory),
                                path.string());
    }
    return status;
}

void AddFile(const fs::path& path, Found& found) {
    if (!fs::is_regular_file(StatusOfExisting(path))) {
        throw std::runtime_error(path.string() + ": not a regular file");
    }
    found.paths.insert(path.lexically_normal().string());
}

// A folder at a time, since an iterator that goes through them all does not name one that can't be
// read.
void AddSourcesIn(const fs::path& folder, Found& found) {
    std::error_code error;
    fs::directory_iterator at(folder, error);
    for (; !error && at != fs::directory_iterator(); at.increment(error)) {
        const fs::path& path = at->path();
        if (path.filename().native().front() == '.') {
            continue;
        }
        std::error_code none;  // what it would say is said below
        if (!at->is_symlink(none) && at->is_directory(none)) {
            AddSourcesIn(path, found);
        } else if (IsSource(path)) {
            try {
                AddFile(path, found);
            } catch (const std::runtime_error& reason) {
                found.skipped.emplace_back(reason.what());
            }
        }
    }
    if (error) {
        throw std::system_error(error, folder.string());
    }
}

void AddSources(const std::string& folder, Found& found) {
    if (!fs::is_directory(StatusOfExisting(folder))) {
        AddFile(folder, found);
        return;
    }
    Found inside = {{}, found.skipped};
    AddSourcesIn(folder, inside);
    if (inside.paths.empty()) {
        throw std::runtime_error(folder + ": no source in C, C++, Objective-C or Swift");
    }
    found.paths.merge(inside.paths);
}

}  // namespace

std::vector<SourceFile> FindSources(const std::vector<std::string>& folders,
                                    std::vector<std::string>& skipped) {
    Found found = {{}, skipped};
    for (const std::string& folder : folders) {
        AddSources(folder, found);
    }
    std::vector<SourceFile> files;
    for (const std::string& path : found.paths) {
        const bool isSwift = fs::path(path).extension() == ".swift";
        files.push_back({path, isSwift ? SourceLanguage::kSwift : SourceLanguage::kC});
    }
    return files;
}
