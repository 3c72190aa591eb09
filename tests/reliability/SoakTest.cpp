#include "tests/host/Requests.h"
#include "tests/host/ScratchFile.h"
#include "tests/host/TestStream.h"

#include <psapi.h>

#include <cstdio>
#include <iterator>
#include <thread>

namespace vantrel::tests {
namespace {

// The system occasionally opens some itself; a leak in the soak would show in the thousands.
constexpr double handleSlack = 8;

// How many GDI objects can still be made: counts them exactly where GetGuiResources says nothing.
std::size_t FreeGdiHandles() {
    std::vector<UniqueBrush> brushes;
    while (HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3)))
        brushes.emplace_back(brush);
    return brushes.size();
}

// Tests every possible value, since under Wine GetProcessHandleCount returns 0.
std::size_t OpenHandles() {
    std::size_t count = 0;
    for (std::uintptr_t value = 4; value < 0x10000; value += 4) {
        DWORD flags;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) ? 1 : 0;
    }
    return count;
}

// Private memory in use; PrivateUsage is 0 under Wine.
SIZE_T PrivateBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PagefileUsage;
}

struct Usage {
    std::size_t freeGdi = FreeGdiHandles();
    std::size_t handles = OpenHandles();
    SIZE_T bytes = PrivateBytes();
};

// A picture, one that loads but can't be painted, one whose pixels are missing, and half a file.
std::vector<Bytes> Files() {
    const Bytes picture = ZmiBuilder{.mode = 2, .frames = {{8, 8}}}.Build();
    Bytes missing = picture;
    SetField(missing, file_header::size, image_header::height, 4000);
    return {ZmiBuilder{.mode = 1, .frames = {{9, 7}, {5, 5}}, .title = "soak"}.Build(),
            ZmiBuilder{.mode = 3, .frames = {{8, 8}}}.Build(), missing,
            Bytes(picture.begin(), picture.begin() + static_cast<std::ptrdiff_t>(picture.size() / 2))};
}

// A file as a stream and on disk, with the first answers about it.
struct Subject {
    explicit Subject(const Bytes& bytes) : stream(bytes), file(bytes) {}

    // One object of each class, created and asked for everything.
    std::vector<Answer> Ask() {
        std::vector<Answer> answers;
        for (const Request& request : AllRequests(stream, file.Path(), 8))
            answers.push_back(request.ask());
        return answers;
    }

    TestStream stream;
    ScratchFile file;
    const std::vector<Answer> first = Ask();
};

TEST(Soak, ItsProbesSeeWhatIsThere) {
    const Usage before;
    const UniqueBrush brush(CreateSolidBrush(0));
    const Bytes memory(4 * 1024 * 1024, 1);
    std::vector<UniqueKernelHandle> events;
    while (events.size() < 20)
        events.emplace_back(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    const Usage now;
    EXPECT_EQ(before.freeGdi - 1, now.freeGdi);
    EXPECT_LE(before.bytes + memory.size(), now.bytes);
    EXPECT_NEAR(static_cast<double>(before.handles + events.size()), static_cast<double>(now.handles),
                handleSlack);
}

TEST(Soak, SeventyThousandRendersLeaveNothingBehind) {
    constexpr unsigned rendersPerRound = 5; // thumbnail, two images, two icons
    constexpr unsigned rounds = 70000 / rendersPerRound;
    constexpr unsigned warmUp = 200;
    const std::vector<Bytes> files = Files();
    std::vector<Subject> subjects(files.begin(), files.end());
    for (const Answer& answer : subjects[0].first)
        ASSERT_EQ(S_OK, answer.result);

    Usage before;
    for (unsigned round = 0; round < rounds + warmUp; ++round) {
        if (round == warmUp)
            before = {};
        ASSERT_EQ(subjects[0].first, subjects[0].Ask()) << "round " << round;
        if (round % 3 == 0) {
            Subject& failing = subjects[1 + round / 3 % (subjects.size() - 1)];
            ASSERT_EQ(failing.first, failing.Ask()) << "round " << round;
        }
    }
    const Usage after;
    EXPECT_LT(after.bytes, before.bytes + 128 * 1024) << "was " << before.bytes;
    EXPECT_NEAR(static_cast<double>(before.handles), static_cast<double>(after.handles), handleSlack);
    EXPECT_EQ(before.freeGdi, after.freeGdi);
    std::printf("private bytes %zu, then %zu; handles %zu, then %zu; free GDI handles %zu\n", before.bytes,
                after.bytes, before.handles, after.handles, before.freeGdi);
}

// Every slot of thread-local and fiber-local storage that the process can still allocate.
class TakenSlots {
public:
    TakenSlots() {
        Take(threadLocal_, [] { return TlsAlloc(); });
        Take(fiberLocal_, [] { return FlsAlloc(nullptr); });
    }
    TakenSlots(const TakenSlots&) = delete;
    TakenSlots& operator=(const TakenSlots&) = delete;
    ~TakenSlots() {
        std::ranges::for_each(threadLocal_, TlsFree);
        std::ranges::for_each(fiberLocal_, FlsFree);
    }

    std::size_t Count() const { return threadLocal_.size() + fiberLocal_.size(); }

private:
    static void Take(std::vector<DWORD>& slots, DWORD (*take)()) {
        for (DWORD slot = take(); slot != TLS_OUT_OF_INDEXES; slot = take())
            slots.push_back(slot);
    }

    std::vector<DWORD> threadLocal_;
    std::vector<DWORD> fiberLocal_;
};

// A picture and a file that makes the library throw, on this thread and on one that ends before the library
// is unloaded.
void UseAndUnload(const wchar_t* path) {
    const HMODULE module = LoadLibraryW(path);
    ASSERT_TRUE(module) << GetLastError();
    const auto use = [=] {
        TestStream picture(ZmiBuilder{.frames = {{8, 8}}}.Build());
        TestStream frameless(ZmiBuilder{.mode = 0, .frameTable = true}.Build());
        EXPECT_EQ(S_OK, AskThumbnail(*ThumbnailProviderOf(picture, module).Get(), 8).result);
        EXPECT_EQ(E_FAIL, AskThumbnail(*ThumbnailProviderOf(frameless, module).Get(), 8).result);
    };
    use();
    std::thread(use).join();
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_EQ(nullptr, GetModuleHandleW(path)) << "the library does not unload";
}

// A separate copy, since the rest of this program keeps the library loaded.
Bytes TheDllsBytes() {
    std::ifstream file(DllPath().c_str(), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

TEST(Soak, TwoHundredLoadsAndUnloadsLeaveNothingBehind) {
    const ScratchFile copy(TheDllsBytes(), L".dll");
    for (int cycle = 0; cycle < 10; ++cycle)
        UseAndUnload(copy.Path());
    const std::size_t slots = TakenSlots().Count();
    const SIZE_T bytes = PrivateBytes();
    for (int cycle = 0; cycle < 200; ++cycle)
        UseAndUnload(copy.Path());
    EXPECT_EQ(slots, TakenSlots().Count());
    EXPECT_LT(PrivateBytes(), bytes + 128 * 1024) << "was " << bytes;
}

TEST(Soak, AHostWithoutAFreeSlotIsServed) {
    const ScratchFile copy(TheDllsBytes(), L".dll");
    std::thread([] {}).join(); // takes what the test's own runtime needs
    const TakenSlots slots;
    EXPECT_EQ(0u, TakenSlots().Count());
    UseAndUnload(copy.Path());
}

} // namespace
} // namespace vantrel::tests
