#include <OrvaLanguage/OrvaLanguage.h>

#include "support/OpenBundle.h"

__CFBundle* OpenBundle(const std::filesystem::path& folder) {
    return ZuOpenBundle(folder.c_str());
}

void CloseBundle(__CFBundle* bundle) {
    ZuCloseBundle(bundle);
}
