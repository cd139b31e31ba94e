// A host linked with the library, and plug-ins in it that carry copies of their own: each copy has
// its own tables, cache, locks and loaded count.
#include <chrono>
#include <dlfcn.h>
#include <future>
#include <nettle/cbc.h>
#include <string>
#include <utility>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "support/TemporaryBundle.h"
#include "tests/support/LibraryCopy.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/StoredForm.h"

namespace {

std::string Line(const std::string& key, const std::string& text) {
    return key + "=\"" + Stored(text, DevelopmentKey()) + "\"\n";
}

const struct {
    const char* name;
    LibraryCopy::Open open;
    bool isForSanitizers;  // they refuse some, since they replace malloc for the whole process
} kWays[] = {
    {"local", [](const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }, true},
    {"lazy", [](const char* path) { return dlopen(path, RTLD_LAZY | RTLD_LOCAL); }, true},
    {"global", [](const char* path) { return dlopen(path, RTLD_NOW | RTLD_GLOBAL); }, true},
    {"deepbind", [](const char* path) { return dlopen(path, RTLD_NOW | RTLD_DEEPBIND); }, false},
    {"namespace", [](const char* path) { return dlmopen(LM_ID_NEWLM, path, RTLD_NOW); }, false},
};

// A lookup in the host's copy, by a thread that stops in the cipher call, with both locks held.
class StoppedLookup {
public:
    explicit StoppedLookup(const std::string& key)
        : m_text(std::async(std::launch::async, [this, key] {
              gStopsNext = this;
              const char* const text = ZuGetLocalizedString(key.c_str());
              return std::string(text == nullptr ? "(null)" : text);
          })) {
        EXPECT_EQ(m_stopped.get_future().wait_for(kLongest), std::future_status::ready)
            << "the lookup makes no cipher call";
    }

    // The lookup's answer, once it has gone on.
    std::string Resume() {
        m_resumed.set_value();
        return m_text.get();
    }

    // Stops the thread, if it is the lookup's.
    static void InCipherCall() {
        if (StoppedLookup* const lookup = std::exchange(gStopsNext, nullptr)) {
            lookup->m_stopped.set_value();
            EXPECT_EQ(lookup->m_resumed.get_future().wait_for(kLongest), std::future_status::ready)
                << "the test's own thread waits for a lock of the host's copy";
        }
    }

private:
    static constexpr std::chrono::seconds kLongest{20};
    static thread_local StoppedLookup* gStopsNext;

    std::promise<void> m_stopped;
    std::promise<void> m_resumed;
    std::future<std::string> m_text;  // the last member, since the thread uses the others
};
thread_local StoppedLookup* StoppedLookup::gStopsNext = nullptr;

class Copies : public ::testing::Test {
protected:
    int LoadOwn(const std::string& lines) {
        m_bundle.Write("x.strings", "QVLANG=en\n" + lines);
        return ZuLoadStrings("en", "x.strings", m_bundle.Get());
    }

    // Every key and value of the host's table, by the host's name for it.
    static std::string OwnTable() {
        std::string all;
        for (const auto& [key, value] : KorString::gMapLocalizedStrings) {
            all.append(key).append("=").append(value).append(" ");
        }
        return all;
    }

    TemporaryBundle m_bundle;
};

TEST_F(Copies, HaveEachTheirOwnState) {
    for (const auto& way : kWays) {
        if (kHasSanitizer && !way.isForSanitizers) {
            continue;
        }
        SCOPED_TRACE(way.name);
        const std::string key = std::string("IDE_") + way.name;  // the host's cache keeps texts
        ASSERT_EQ(LoadOwn("MENU=\"host\"\n" + Line(key, "host's secret")), 3);
        const char* const text = ZuGetLocalizedString("MENU");

        LibraryCopy copy(way.open);
        EXPECT_STREQ(text, "host") << "the copy's initialisers have spared the host's table";
        EXPECT_EQ(copy.Text("MENU"), "(null)") << "nothing is loaded there";
        EXPECT_EQ(copy.Table().Size(), 0U);
        ASSERT_EQ(copy.Load("MENU=\"copy\"\nMORE=\"copy\"\n" + Line(key, "copy's secret")), 4);
        EXPECT_EQ(KorString::gMapLocalizedStrings.Size(), 3U);
        EXPECT_EQ(copy.Table().Size(), 4U);
        EXPECT_EQ(copy.Table().Find("MENU")->value, "copy");
        EXPECT_EQ(copy.Text(key.c_str()), "copy's secret");
        EXPECT_STREQ(ZuGetLocalizedString(key.c_str()), "host's secret");
        EXPECT_EQ(copy.Text("MENU"), "copy");
        EXPECT_EQ(ZuGetLocalizedString("MENU"), text);
        EXPECT_STREQ(text, "host");
        EXPECT_EQ(ZuGetLocalizedString("MORE"), nullptr);

        // A load that fails affects its own copy only.
        EXPECT_EQ(ZuLoadStrings("en", "missing", m_bundle.Get()), 0);
        EXPECT_EQ(ZuGetLocalizedString("MENU"), nullptr);
        EXPECT_EQ(copy.Text("MENU"), "copy");

        copy.Close();
        EXPECT_STREQ(KorGetLocalizedString("MENU"), "host");
        EXPECT_EQ(OwnTable().substr(0, 4), "IDE_");
        ASSERT_EQ(LoadOwn("MENU=\"host again\"\n"), 2);
        EXPECT_EQ(OwnTable(), "MENU=host again QVLANG=en ");
    }
}

TEST_F(Copies, HaveEachTheirOwnLocks) {
    for (const auto& way : kWays) {
        if (kHasSanitizer && !way.isForSanitizers) {
            continue;
        }
        SCOPED_TRACE(way.name);
        const std::string key = std::string("IDE_LOCKED_") + way.name;
        ASSERT_EQ(LoadOwn(Line(key, "host's secret")), 2);
        LibraryCopy copy(way.open);
        ASSERT_EQ(copy.Load(Line(key, "copy's secret")), 2);

        StoppedLookup lookup(key);
        EXPECT_EQ(copy.Text(key.c_str()), "copy's secret");
        EXPECT_EQ(lookup.Resume(), "host's secret");
    }
}

TEST_F(Copies, AreUnloadedInAnyOrder) {
    ASSERT_EQ(LoadOwn("MENU=\"host\"\n"), 2);
    for (const std::size_t first : {0U, 1U, 2U}) {
        LibraryCopy copies[] = {LibraryCopy(kWays[first].open), LibraryCopy(kWays[0].open)};
        ASSERT_EQ(copies[0].Load("MENU=\"one\"\n"), 2);
        ASSERT_EQ(copies[1].Load("MENU=\"two\"\n" + Line("IDE_TWO", "two")), 3);
        EXPECT_EQ(copies[1].Text("IDE_TWO"), "two");
        copies[first % 2].Close();
        EXPECT_FALSE(copies[first % 2].IsLoaded());
        LibraryCopy& other = copies[1 - first % 2];
        EXPECT_EQ(other.Text("MENU"), first % 2 == 0 ? "two" : "one");
        EXPECT_STREQ(ZuGetLocalizedString("MENU"), "host");
        other.Close();
        EXPECT_FALSE(other.IsLoaded());
    }
}

// At exit they are all loaded, each with a table and a cache to free.
TEST_F(Copies, LeaveTheProcessIntact) {
    ASSERT_EQ(LoadOwn("MENU=\"host\"\n" + Line("IDE_EXIT", "host")), 3);
    EXPECT_STREQ(ZuGetLocalizedString("IDE_EXIT"), "host");
    for (const auto& way : kWays) {
        if (!kHasSanitizer || way.isForSanitizers) {
            LibraryCopy copy(way.open);
            ASSERT_EQ(copy.Load(Line("IDE_EXIT", way.name)), 2);
            EXPECT_EQ(copy.Text("IDE_EXIT"), way.name);
            copy.LeaveOpen();
        }
    }
}

}  // namespace

// Each copy's calls of Nettle come here, except one that is opened so that it finds its own first.
extern "C" void cbc_decrypt(const void* schedule, nettle_cipher_func* cipher, std::size_t block,
                            std::uint8_t* iv, std::size_t length, std::uint8_t* out,
                            const std::uint8_t* in) {
    StoppedLookup::InCipherCall();
    static auto* const nettles =
        reinterpret_cast<decltype(&cbc_decrypt)>(dlsym(RTLD_NEXT, "nettle_cbc_decrypt"));
    nettles(schedule, cipher, block, iv, length, out, in);
}
