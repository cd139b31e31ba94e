#include "tests/support/Secrets.h"

#include "tests/support/RoundKeys.h"
#include "tests/support/StoredForm.h"

std::vector<std::pair<const char*, Bytes>> SecretsOf(const Bytes& material,
                                                     const std::string& text) {
    const Bytes derived = DerivedBlocks(material);
    std::vector<std::pair<const char*, Bytes>> secrets = {
        {"the key material", material},
        {"the derived keys", derived},
        {"the text", Bytes(text.begin(), text.end())}};
    for (auto& roundKeys : RoundKeysOf(material, derived)) {
        secrets.push_back(std::move(roundKeys));
    }
    return secrets;
}
