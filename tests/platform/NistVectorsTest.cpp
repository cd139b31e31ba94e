// NIST's known-answer and multi-block vectors for AES through CCryptAES, in place.
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "crypt/CCryptAES.h"
#include "tests/support/Hex.h"

namespace {

// Runs a vector both ways: plaintext to ciphertext, and back.
void Check(const std::map<std::string, Bytes>& vector, std::uint32_t mode,
           const std::string& what) {
    const Bytes& key = vector.at("KEY");
    const Bytes iv = mode == CRYPT_MODE_CBC ? vector.at("IV") : Bytes(16, 0);
    CCryptAES aes;
    aes.SetKey(key.data(), static_cast<std::uint32_t>(key.size()));
    aes.SetIV(iv.data(), static_cast<std::uint32_t>(iv.size()));
    aes.SetMode(mode);
    aes.SetPadding(CRYPT_PADDING_NONE);

    Bytes data = vector.at("PLAINTEXT");
    std::size_t length = data.size();
    aes.Encrypt(data.data(), &length, data.size());
    EXPECT_EQ(length, data.size()) << what;
    EXPECT_EQ(ToHex(data), ToHex(vector.at("CIPHERTEXT"))) << what;
    aes.Decrypt(data.data(), &length, data.size());
    EXPECT_EQ(length, data.size()) << what;
    EXPECT_EQ(ToHex(data), ToHex(vector.at("PLAINTEXT"))) << what;
}

// Returns the number of vectors in a file. Lines are "NAME = HEX", empty lines separate the
// vectors, and each ends with its CIPHERTEXT or PLAINTEXT, whichever comes second.
int CheckFile(const std::filesystem::path& path, std::uint32_t mode) {
    std::ifstream file(path);
    std::map<std::string, Bytes> vector;
    std::string line;
    int vectors = 0;
    while (std::getline(file, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        const std::size_t equals = line.find(" = ");
        if (equals == std::string::npos) {
            continue;
        }
        const std::string name = line.substr(0, equals);
        if (name == "COUNT") {
            vector.clear();
            continue;
        }
        vector[name] = FromHex(line.substr(equals + 3));
        if (vector.count("PLAINTEXT") == 1 && vector.count("CIPHERTEXT") == 1) {
            Check(vector, mode, path.filename().string() + ": " + line);
            ++vectors;
        }
    }
    return vectors;
}

// How many vectors a file says it has.
int VectorsIn(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    int vectors = 0;
    while (std::getline(file, line)) {
        vectors += line.compare(0, 8, "COUNT = ") == 0 ? 1 : 0;
    }
    EXPECT_GE(vectors, 6) << path;
    return vectors;
}

TEST(NistVectors, HoldBothWays) {
    const struct {
        const char* folder;
        std::uint32_t mode;
    } cases[] = {{"ECB", CRYPT_MODE_ECB}, {"CBC", CRYPT_MODE_CBC}};
    for (const auto& c : cases) {
        for (const char* kind : {"GFSbox", "KeySbox", "VarKey", "VarTxt", "MMT"}) {
            for (const char* keyBits : {"128", "192", "256"}) {
                const std::filesystem::path file =
                    std::filesystem::path(NIST_AES_VECTORS) / c.folder /
                    (std::string(c.folder) + kind + keyBits + ".rsp");
                EXPECT_EQ(CheckFile(file, c.mode), VectorsIn(file)) << file;
            }
        }
    }
}

}  // namespace
