#include "tools/orva-strings/hosts/SourceFiles.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kEndings[] = {".c",   ".h",   ".cc",  ".cpp",  ".cxx", ".c++",
                                         ".hh",  ".hpp", ".hxx", ".h++",  ".inl", ".ipp",
                                         ".tpp", ".m",   ".mm",  ".swift"};

bool IsSource(const fs::path& path) {
    return std::find(std::begin(kEndings), std::end(kEndings), path.extension().string()) !=
           std::end(kEndings);
}

void AddSources(const std::string& folder, std::set<std::string>& paths) {
    if (!fs::is_directory(folder)) {
        paths.insert(fs::path(folder).lexically_normal().string());
        return;
    }
    bool isEmpty = true;
    for (auto at = fs::recursive_directory_iterator(folder);
         at != fs::recursive_directory_iterator(); ++at) {
        const fs::path& path = at->path();
        if (path.filename().native().front() == '.') {
            at.disable_recursion_pending();
        } else if (IsSource(path) && at->is_regular_file()) {
            paths.insert(path.lexically_normal().string());
            isEmpty = false;
        }
    }
    if (isEmpty) {
        throw std::runtime_error(folder + ": no source in C, C++, Objective-C or Swift");
    }
}

}  // namespace

std::vector<SourceFile> FindSources(const std::vector<std::string>& folders) {
    std::set<std::string> paths;
    for (const std::string& folder : folders) {
        AddSources(folder, paths);
    }
    std::vector<SourceFile> files;
    for (const std::string& path : paths) {
        const bool isSwift = fs::path(path).extension() == ".swift";
        files.push_back({path, isSwift ? SourceLanguage::kSwift : SourceLanguage::kC});
    }
    return files;
}
