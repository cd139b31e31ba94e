#include "tests/support/ProcessMemory.h"

#include <bitset>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <future>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kPart = sizeof(std::uint64_t);
constexpr std::uint8_t kMask = 0xA5;

struct Mapping {
    const std::uint8_t* begin;
    const std::uint8_t* end;
    const char* name;  // may be empty
};

// Static, so that a search allocates nothing.
struct {
    char maps[1U << 20U];
    Mapping mappings[4096];
    std::bitset<1U << 16U> starts;  // the first two bytes of each part
    struct {
        const char* secret;
        const char* place;
    } hits[1000];
} gSpace;

// Reads a file into a C string, as much of it as fits.
void ReadText(const char* path, char* text, std::size_t room) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    std::size_t size = 0;
    for (ssize_t count = 1; count > 0 && size + 1 < room;) {
        count = read(file, text + size, room - 1 - size);
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    close(file);
    text[size] = '\0';
}

// Reads the process's writable private mappings. Returns how many there are.
std::size_t ReadMappings() {
    ReadText("/proc/self/maps", gSpace.maps, sizeof gSpace.maps);
    std::size_t count = 0;
    char* rest = nullptr;
    for (char* line = strtok_r(gSpace.maps, "\n", &rest); line != nullptr && count < 4096;
         line = strtok_r(nullptr, "\n", &rest)) {
        unsigned long begin = 0;
        unsigned long end = 0;
        char rights[5] = "";
        int name = 0;
        std::sscanf(line, "%lx-%lx %4s %*s %*s %*s %n", &begin, &end, rights, &name);
        if (std::strcmp(rights, "rw-p") == 0 || std::strcmp(rights, "rwxp") == 0) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr): it is an address
            gSpace.mappings[count++] = {reinterpret_cast<const std::uint8_t*>(begin),
                                        // NOLINTNEXTLINE(performance-no-int-to-ptr): likewise
                                        reinterpret_cast<const std::uint8_t*>(end), line + name};
        }
    }
    return count;
}

// Calls a function with the stack pointer half a MiB lower, and overwrites nothing in between.
[[gnu::noinline]] void CallDeep(const std::function<void()>& call) {
    char room[1U << 19U];
    __asm__ volatile("" : : "r"(room) : "memory");
    call();
    __asm__ volatile("" : : "r"(room) : "memory");
}

// Shifts the next byte, masked, in after the last seven.
std::uint64_t Shifted(std::uint64_t masked, std::uint8_t byte) {
    return masked >> 8U | static_cast<std::uint64_t>(byte ^ kMask) << 56U;
}

}  // namespace

void MemorySearch::LookFor(const std::function<Secrets()>& make) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        try {
            for (const auto& [name, secret] : make()) {
                Part part = {};
                std::strncpy(part.name, name, sizeof part.name - 1);
                for (std::size_t i = 0; i < secret.size(); ++i) {
                    part.masked = Shifted(part.masked, secret[i]);
                    if (i % kPart == kPart - 1 &&
                        write(ends[1], &part, sizeof part) != sizeof part) {
                        _exit(1);
                    }
                }
            }
        } catch (const std::exception& exception) {
            std::fprintf(stderr, "%s\n", exception.what());
            _exit(1);
        }
        _exit(0);
    }
    close(ends[1]);
    const std::size_t before = m_count;
    auto* const bytes = reinterpret_cast<std::uint8_t*>(m_parts.data());
    std::size_t size = m_count * sizeof(Part);
    for (ssize_t count = 1; count > 0; size += static_cast<std::size_t>(count)) {
        count = read(ends[0], bytes + size, sizeof m_parts - size);
        ASSERT_GE(count, 0);
    }
    close(ends[0]);
    m_count = size / sizeof(Part);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_GT(m_count, before);
    EXPECT_LT(m_count, m_parts.size()) << "there may be more";
}

MemorySearch::Hits MemorySearch::Found() const {
    std::size_t count = 0;
    CallDeep([&] { count = Search(); });
    Hits found;
    for (std::size_t i = 0; i < count; ++i) {
        const auto& hit = gSpace.hits[i];
        const bool hasName = *hit.place != '\0';
        ++found[std::string(hit.secret) + " in " + (hasName ? hit.place : "memory without a name")];
    }
    return found;
}

std::size_t MemorySearch::Search() const {
    gSpace.starts.reset();
    for (std::size_t i = 0; i < m_count; ++i) {
        gSpace.starts.set(m_parts[i].masked & 0xFFFFU);
    }
    std::size_t count = 0;
    const std::size_t mappings = ReadMappings();
    for (std::size_t i = 0; i < mappings; ++i) {
        const Mapping& mapping = gSpace.mappings[i];
        std::uint64_t masked = 0;
        for (const std::uint8_t* byte = mapping.begin; byte != mapping.end; ++byte) {
            masked = Shifted(masked, *byte);
            if (!gSpace.starts[masked & 0xFFFFU]) {
                continue;
            }
            for (std::size_t part = 0; part < m_count && count < std::size(gSpace.hits); ++part) {
                if (m_parts[part].masked == masked) {
                    gSpace.hits[count++] = {m_parts[part].name, mapping.name};
                }
            }
        }
    }
    return count;
}

void CallInThread(const std::function<void()>& call, const std::function<void()>& look) {
    std::promise<void> called;
    std::promise<void> looked;
    std::thread thread([&] {
        CallDeep(call);  // so that waiting does not overwrite what it leaves
        called.set_value();
        looked.get_future().wait();
    });
    called.get_future().wait();
    look();
    looked.set_value();
    thread.join();
}
