#include "platform/MainBundleFolder.h"

#include "support/OpenBundle.h"
#include "tools/orva-strings/hosts/MainBundle.h"

__CFBundle* OpenMainBundle(const std::filesystem::path& executable) {
    return OpenBundle(MainBundleFolder(executable));
}
