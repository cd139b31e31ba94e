#include "support/OpenBundle.h"
#include "tools/orva-strings/hosts/MainBundle.h"

// CoreFoundation has no call for the bundle of another executable, so this follows the layout of
// applications: BUNDLE/Contents/MacOS/EXECUTABLE. Any other executable's folder is its bundle.
__CFBundle* OpenMainBundle(const std::filesystem::path& executable) {
    const std::filesystem::path folder = executable.parent_path();
    const std::filesystem::path contents = folder.parent_path();
    const bool isApplication = folder.filename() == "MacOS" && contents.filename() == "Contents";
    return OpenBundle(isApplication ? contents.parent_path() : folder);
}
