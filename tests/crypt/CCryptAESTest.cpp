#include <chrono>
#include <cstddef>
#include <cstring>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "crypt/CCryptAES.h"
#include "crypt/CCryptLibException.h"
#include "tests/support/Hex.h"

namespace {

// Apple's cipher call accepts bad padding, so damaged data decrypts to something there.
#ifdef __APPLE__
constexpr bool kFindsBadPadding = false;
#else
constexpr bool kFindsBadPadding = true;
#endif

const Bytes kKey = CountingBytes(32);
const Bytes kIV = CountingBytes(16, 50);

struct Parameters {
    std::uint32_t mode = CRYPT_MODE_CBC;
    std::uint32_t padding = CRYPT_PADDING_PKCS7;
    std::uint32_t keyLength = 16;
    std::uint32_t ivLength = 16;
};

void Configure(CCryptAES& aes, const Parameters& p) {
    aes.SetKey(kKey.data(), p.keyLength);
    aes.SetIV(kIV.data(), p.ivLength);
    aes.SetMode(p.mode);
    aes.SetPadding(p.padding);
}

// The code that a call throws, or 0.
template <typename Call>
std::int32_t ErrorOf(const Call& call) {
    try {
        call();
    } catch (const CCryptLibException& exception) {
        return exception.GetErrorCode();
    }
    return 0;
}

TEST(CCryptLibException, CarriesACodeAndNothingElse) {
    const CCryptLibException exception(451);
    EXPECT_EQ(exception.GetErrorCode(), 451);
    EXPECT_STREQ(exception.what(), std::exception().what());
    EXPECT_THROW(throw CCryptLibException(1), std::exception);
}

TEST(CCryptAES, HasItsPlaceInTheClassHierarchy) {
    EXPECT_TRUE((std::is_base_of_v<CCryptBase, CCryptAESBase>));
    EXPECT_TRUE((std::is_base_of_v<CCryptAESBase, CCryptAES>));
    EXPECT_TRUE(std::is_abstract_v<CCryptBase>);
    EXPECT_TRUE(std::is_abstract_v<CCryptAESBase>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CCryptBase>);
    EXPECT_FALSE(std::is_copy_constructible_v<CCryptAES>);
    EXPECT_FALSE(std::is_copy_assignable_v<CCryptAES>);
    EXPECT_FALSE(std::is_move_constructible_v<CCryptAES>);
    EXPECT_EQ(sizeof(CCryptAES), sizeof(CCryptAESBase)) << "it adds no fields";
}

// The vtable slot of a virtual function. A pointer to the function holds its offset plus one.
#ifdef __x86_64__
template <typename Function>
std::size_t PlaceOf(Function function) {
    std::size_t pointer = 0;
    std::memcpy(&pointer, &function, sizeof pointer);
    return (pointer - 1) / sizeof(void*);
}

TEST(CCryptAES, HasItsVirtualFunctionsInTheirOrder) {
    // The first two are the destructor's.
    EXPECT_EQ(PlaceOf(&CCryptBase::Encrypt), 2U);
    EXPECT_EQ(PlaceOf(&CCryptBase::Decrypt), 3U);
    EXPECT_EQ(PlaceOf(&CCryptBase::GetEncryptedSize), 4U);
    EXPECT_EQ(PlaceOf(&CCryptBase::GetDecryptedSize), 5U);
    EXPECT_EQ(PlaceOf(&CCryptAES::Encrypt), 2U);
    EXPECT_EQ(PlaceOf(&CCryptAES::Decrypt), 3U);
    EXPECT_EQ(PlaceOf(&CCryptAES::GetEncryptedSize), 4U);
    EXPECT_EQ(PlaceOf(&CCryptAES::GetDecryptedSize), 5U);
}
#endif

TEST(CCryptAES, HasItsFieldsInTheirOrder) {
    struct Opened : CCryptAES {
        std::vector<std::ptrdiff_t> Offsets() const {
            const auto* const start = reinterpret_cast<const char*>(this);
            std::vector<std::ptrdiff_t> offsets;
            for (const void* field :
                 {static_cast<const void*>(&m_pKey), static_cast<const void*>(&m_nKeyLength),
                  static_cast<const void*>(&m_nMode), static_cast<const void*>(&m_nPadding),
                  static_cast<const void*>(&m_pIV), static_cast<const void*>(&m_nIVLength)}) {
                offsets.push_back(static_cast<const char*>(field) - start);
            }
            return offsets;
        }
    };
    EXPECT_EQ(Opened().Offsets(), (std::vector<std::ptrdiff_t>{8, 16, 20, 24, 32, 40}));
    EXPECT_EQ(sizeof(CCryptAES), 48U);
}

TEST(CCryptAES, HasItsOwnCodes) {
    EXPECT_EQ(CRYPT_MODE_ECB, 1U);
    EXPECT_EQ(CRYPT_MODE_CBC, 2U);
    EXPECT_EQ(CRYPT_PADDING_NONE, 0U);
    EXPECT_EQ(CRYPT_PADDING_PKCS7, 4U);
}

TEST(CCryptAES, EncryptsAndDecryptsInPlace) {
    for (const std::uint32_t mode : {CRYPT_MODE_ECB, CRYPT_MODE_CBC}) {
        for (const std::uint32_t keyLength : {16U, 24U, 32U}) {
            for (std::size_t length = 0; length <= 48; ++length) {
                const std::unique_ptr<CCryptBase> aes = [&] {
                    auto object = std::make_unique<CCryptAES>();
                    Configure(*object, {mode, CRYPT_PADDING_PKCS7, keyLength, 16});
                    return object;
                }();
                const Bytes text = CountingBytes(length, 7);
                Bytes data = text;
                data.resize(64);
                std::size_t n = length;
                aes->Encrypt(data.data(), &n, data.size());
                EXPECT_EQ(n, length / 16 * 16 + 16);
                EXPECT_EQ(aes->GetEncryptedSize(data.data(), length), n) << "of " << length;
                EXPECT_EQ(aes->GetDecryptedSize(data.data(), n), length);
                aes->Decrypt(data.data(), &n, data.size());
                EXPECT_EQ(n, length);
                data.resize(length);
                EXPECT_EQ(data, text);
            }
        }
    }
}

TEST(CCryptAES, UsesTheKeyIVModeAndPaddingItWasGiven) {
    // The vectors hold the known answers; this shows that each setter matters.
    const auto encrypted = [](const Parameters& p, unsigned firstOfKey, unsigned firstOfIV) {
        CCryptAES aes;
        Configure(aes, p);
        aes.SetKey(CountingBytes(32, firstOfKey).data(), p.keyLength);
        aes.SetIV(CountingBytes(16, firstOfIV).data(), 16);
        Bytes data = CountingBytes(48);
        std::size_t n = 32;
        aes.Encrypt(data.data(), &n, 48);
        data.resize(n);
        return ToHex(data);
    };
    const Parameters cbc;
    const Parameters ecb = {CRYPT_MODE_ECB, CRYPT_PADDING_PKCS7, 16, 16};
    const Parameters unpadded = {CRYPT_MODE_CBC, CRYPT_PADDING_NONE, 16, 16};
    const std::string text = encrypted(cbc, 0, 0);
    EXPECT_EQ(encrypted(cbc, 0, 0), text);
    EXPECT_NE(encrypted(cbc, 1, 0), text);
    EXPECT_NE(encrypted(cbc, 0, 1), text);
    EXPECT_NE(encrypted(ecb, 0, 0), text);
    EXPECT_EQ(encrypted(ecb, 0, 1), encrypted(ecb, 0, 0)) << "ECB does not use the IV";
    EXPECT_EQ(encrypted(unpadded, 0, 0), text.substr(0, 64));
}

TEST(CCryptAES, KeepsCopiesOfKeyAndIV) {
    CCryptAES one;
    CCryptAES other;
    Configure(other, {});
    {
        Bytes key(kKey.begin(), kKey.begin() + 16);
        Bytes iv = kIV;
        one.SetKey(key.data(), 16);
        one.SetIV(iv.data(), 16);
        key.assign(16, 0);
        iv.assign(16, 0);
    }
    Bytes data[2] = {CountingBytes(48), CountingBytes(48)};
    std::size_t n = 32;
    one.Encrypt(data[0].data(), &n, 48);
    n = 32;
    other.Encrypt(data[1].data(), &n, 48);
    EXPECT_EQ(data[0], data[1]);
}

TEST(CCryptAES, ChecksPointersAndLengthFirst) {
    CCryptAES aes;  // nothing is set: these checks precede those of the parameters
    Bytes data = CountingBytes(48);
    std::size_t n = 32;
    for (const bool isEncryption : {true, false}) {
        const auto crypt = [&](std::uint8_t* pData, std::size_t* pnLength, std::size_t capacity) {
            return ErrorOf([&] {
                isEncryption ? aes.Encrypt(pData, pnLength, capacity)
                             : aes.Decrypt(pData, pnLength, capacity);
            });
        };
        EXPECT_EQ(crypt(nullptr, &n, 48), 401);
        EXPECT_EQ(crypt(nullptr, nullptr, 0), 401) << "both null";
        EXPECT_EQ(crypt(data.data(), nullptr, 48), 402);
        EXPECT_EQ(crypt(data.data(), &n, 31), 12);
        EXPECT_EQ(crypt(data.data(), &n, 0), 12);
        EXPECT_EQ(crypt(data.data(), &n, 32), 452)
            << "equal is accepted, so the parameters are checked next";
        n = static_cast<std::size_t>(-1);
        EXPECT_EQ(crypt(data.data(), &n, 48), 12) << "compared as unsigned";
        n = 32;
    }
    EXPECT_EQ(ErrorOf([&] { aes.GetEncryptedSize(nullptr, 0); }), 401);
    EXPECT_EQ(ErrorOf([&] { aes.GetDecryptedSize(nullptr, 0); }), 401);
    EXPECT_EQ(data, CountingBytes(48));
    EXPECT_EQ(n, 32U);
}

TEST(CCryptAES, ChecksItsParametersInTheirOrder) {
    const struct {
        Parameters parameters;
        std::int32_t error;
    } cases[] = {
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 16, 16}, 0},
        {{CRYPT_MODE_ECB, CRYPT_PADDING_PKCS7, 16, 15}, 452},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 16, 0}, 452},
        {{CRYPT_MODE_ECB, CRYPT_PADDING_PKCS7, 16, 0}, 452},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 16, 8}, 452},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 20, 16}, 454},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 0, 16}, 454},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 31, 16}, 454},
        {{0, CRYPT_PADDING_PKCS7, 16, 16}, 453},
        {{3, CRYPT_PADDING_PKCS7, 16, 16}, 453},
        {{CRYPT_MODE_CBC, 1, 16, 16}, 451},
        {{CRYPT_MODE_CBC, 5, 16, 16}, 451},
        // Several at once: reports the first of IV, key, mode, padding.
        {{0, 1, 20, 15}, 452},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7, 20, 15}, 452},
        {{0, 1, 20, 16}, 454},
        {{0, 1, 16, 16}, 453},
    };
    for (const auto& c : cases) {
        const Parameters& p = c.parameters;
        SCOPED_TRACE("mode " + std::to_string(p.mode) + ", padding " + std::to_string(p.padding) +
                     ", key of " + std::to_string(p.keyLength) + ", IV of " +
                     std::to_string(p.ivLength));
        CCryptAES aes;
        Configure(aes, p);
        Bytes data = CountingBytes(48);
        std::size_t n = 32;
        EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), &n, 48); }), c.error);
        if (c.error != 0) {
            EXPECT_EQ(data, CountingBytes(48));
            EXPECT_EQ(n, 32U);
            EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), &n, 48); }), c.error);
            EXPECT_EQ(ErrorOf([&] { aes.GetEncryptedSize(data.data(), 32); }), c.error);
            EXPECT_EQ(aes.GetDecryptedSize(data.data(), 32), 32U) << "swallowed";
        }
    }
}

TEST(CCryptAES, NeedsRoomForPadding) {
    CCryptAES aes;
    Configure(aes, {});
    Bytes data = CountingBytes(48);
    std::size_t n = 32;
    EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), &n, 32); }), 204);
    EXPECT_EQ(n, 48U) << "as the cipher call left it";
    n = 32;
    EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), &n, 48); }), 0);
    EXPECT_EQ(n, 48U);
}

TEST(CCryptAES, MeasuresWhatEncryptionGives) {
    CCryptAES aes;
    Configure(aes, {});
    const Bytes text = CountingBytes(64);
    const std::size_t sizes[][2] = {{0, 16}, {15, 16}, {16, 32}, {17, 32}, {31, 32}, {32, 48}};
    for (const auto& size : sizes) {
        EXPECT_EQ(aes.GetEncryptedSize(text.data(), size[0]), size[1]) << size[0];
    }
    aes.SetPadding(CRYPT_PADDING_NONE);
    EXPECT_EQ(aes.GetEncryptedSize(text.data(), 0), 0U);
    EXPECT_EQ(aes.GetEncryptedSize(text.data(), 32), 32U);
    EXPECT_EQ(ErrorOf([&] { aes.GetEncryptedSize(text.data(), 17); }), 206);
    EXPECT_EQ(text, CountingBytes(64)) << "the data stays as it is";
}

TEST(CCryptAES, MeasuresDamagedDataTooButDoesNotDecryptIt) {
    CCryptAES aes;
    Configure(aes, {});
    Bytes data = CountingBytes(64);
    std::size_t n = 40;
    aes.Encrypt(data.data(), &n, 64);
    ASSERT_EQ(n, 48U);
    EXPECT_EQ(aes.GetDecryptedSize(data.data(), 48), 40U);

    if (kFindsBadPadding) {
        Bytes damaged = data;
        damaged[31] ^= 0x80U;  // flips a bit of the padding's last byte
        EXPECT_EQ(aes.GetDecryptedSize(damaged.data(), 48), 32U) << "what the cipher call wrote";
        n = 48;
        EXPECT_EQ(ErrorOf([&] { aes.Decrypt(damaged.data(), &n, 48); }), 207);
        EXPECT_EQ(n, 32U);
    }

    EXPECT_EQ(aes.GetDecryptedSize(data.data(), 47), 32U) << "no whole blocks";
    n = 47;
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), &n, 64); }), 206);
    aes.SetKey(kKey.data(), 20);
    EXPECT_EQ(aes.GetDecryptedSize(data.data(), 48), 48U) << "before the cipher call";
    EXPECT_EQ(aes.GetDecryptedSize(data.data(), 0), 0U);
}

TEST(CCryptAES, MeasuresNoLengthThatIsTooLargeToCopy) {
    CCryptAES aes;
    Configure(aes, {});
    const std::uint8_t byte = 0;
    const std::size_t tooLong = static_cast<std::size_t>(-1) - 5;
    EXPECT_THROW(aes.GetEncryptedSize(&byte, tooLong), std::bad_alloc);
    EXPECT_EQ(aes.GetDecryptedSize(&byte, tooLong), tooLong);
}

TEST(CCryptAES, IsUsableAfterEachFailure) {
    CCryptAES aes;
    Configure(aes, {});
    Bytes data = CountingBytes(48);
    std::size_t n = 17;
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), &n, 48); }), 206);
    aes.SetMode(7);
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), &n, 48); }), 453);
    aes.SetMode(CRYPT_MODE_CBC);
    data = CountingBytes(48);
    n = 32;
    aes.Encrypt(data.data(), &n, 48);
    aes.Decrypt(data.data(), &n, 48);
    data.resize(n);
    EXPECT_EQ(data, CountingBytes(32));
}

// Runs an operation on another thread, which a lock still held would block for ever.
testing::AssertionResult RunsOnAnotherThread() {
    std::packaged_task<void()> task([] {
        CCryptAES aes;
        Configure(aes, {});
        Bytes data = CountingBytes(48);
        std::size_t n = 32;
        aes.Encrypt(data.data(), &n, 48);
    });
    std::future<void> done = task.get_future();
    std::thread thread(std::move(task));
    if (done.wait_for(std::chrono::seconds(60)) == std::future_status::timeout) {
        thread.detach();
        return testing::AssertionFailure() << "the lock is still held";
    }
    thread.join();
    done.get();
    return testing::AssertionSuccess();
}

TEST(CCryptAESLock, IsReleasedOnEveryWayOut) {
    CCryptAES aes;
    Bytes data = CountingBytes(48);
    std::size_t n = 0;
    const struct {
        Parameters parameters;
        std::size_t length;
        std::size_t capacity;
        std::int32_t error;
    } cases[] = {
        {{}, 32, 48, 0},
        {{}, 49, 48, 12},
        {{}, 32, 32, 204},
        {{CRYPT_MODE_CBC, CRYPT_PADDING_NONE, 16, 16}, 17, 48, 206},
        {{CRYPT_MODE_CBC, 1, 16, 16}, 32, 48, 451},
        {{CRYPT_MODE_CBC, 0, 16, 15}, 32, 48, 452},
        {{0, 0, 16, 16}, 32, 48, 453},
        {{CRYPT_MODE_CBC, 0, 15, 16}, 32, 48, 454},
    };
    for (const auto& c : cases) {
        Configure(aes, c.parameters);
        n = c.length;
        EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), &n, c.capacity); }), c.error);
        EXPECT_TRUE(RunsOnAnotherThread()) << "after " << c.error;
    }
    Configure(aes, {});
    n = 32;
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), &n, 48); }), kFindsBadPadding ? 207 : 0);
    EXPECT_TRUE(RunsOnAnotherThread()) << "after 207";
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(nullptr, &n, 48); }), 401);
    EXPECT_EQ(ErrorOf([&] { aes.Decrypt(data.data(), nullptr, 48); }), 402);
    EXPECT_TRUE(RunsOnAnotherThread()) << "after 401 and 402";
}

TEST(CCryptAESLock, IsTakenForTheParametersButNotForTheArguments) {
    std::unique_lock<std::mutex> lock(gCryptMutex);

    // On another thread, since this one holds the lock. These return at once.
    const auto instant = std::async(std::launch::async, [] {
        CCryptAES aes;
        Bytes data = CountingBytes(48);
        std::size_t n = 48;
        EXPECT_EQ(ErrorOf([&] { aes.Encrypt(nullptr, &n, 48); }), 401);
        EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), nullptr, 48); }), 402);
        EXPECT_EQ(ErrorOf([&] { aes.Encrypt(data.data(), &n, 47); }), 12);
        EXPECT_EQ(ErrorOf([&] { aes.GetEncryptedSize(nullptr, 47); }), 401);
        EXPECT_EQ(ErrorOf([&] { aes.GetDecryptedSize(nullptr, 47); }), 401);
    });
    EXPECT_EQ(instant.wait_for(std::chrono::seconds(60)), std::future_status::ready);

    // These wait, even to report a wrong parameter.
    std::future<std::int32_t> waiting = std::async(std::launch::async, [] {
        const CCryptAES aes;
        Bytes data = CountingBytes(48);
        std::size_t n = 48;
        return ErrorOf([&] { aes.Encrypt(data.data(), &n, 48); });
    });
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
    lock.unlock();
    EXPECT_EQ(waiting.get(), 452);
}

TEST(CCryptAESLock, LetsThreadsWorkOnObjectsOfTheirOwn) {
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            CCryptAES aes;
            for (std::size_t length = 0; length < 200; ++length) {
                Configure(aes, {t % 2 == 0 ? CRYPT_MODE_ECB : CRYPT_MODE_CBC, CRYPT_PADDING_PKCS7,
                                16 + t % 3 * 8, 16});
                const Bytes text = CountingBytes(length, t);
                Bytes data = text;
                data.resize(length + 16);
                std::size_t n = length;
                aes.Encrypt(data.data(), &n, data.size());
                EXPECT_EQ(aes.GetDecryptedSize(data.data(), n), length);
                aes.Decrypt(data.data(), &n, data.size());
                data.resize(n);
                EXPECT_EQ(data, text);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace
