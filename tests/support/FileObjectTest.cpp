#include "support/FileObject.h"

#include "tests/host/ImportHook.h"
#include "tests/host/ScratchFile.h"

namespace vantrel::tests {

namespace {

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;
const Bytes digits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};

} // namespace

TEST(FileObject, ReadsExactlyOrFails) {
    const ScratchFile scratch(digits, L".txt");
    FileObject file;
    char buffer[16] = {};
    EXPECT_FALSE(file.read(1, buffer));
    EXPECT_FALSE(file.seek(FILE_BEGIN, 0));
    EXPECT_EQ(file.size(), 0u);
    EXPECT_FALSE(file.close());

    ASSERT_TRUE(file.open(scratch.Path(), 0, 0, shareAll));
    EXPECT_TRUE(file.read(4, buffer));
    EXPECT_STREQ(buffer, "0123");
    EXPECT_TRUE(file.seek(FILE_BEGIN, 8));
    EXPECT_TRUE(file.read(2, buffer));
    EXPECT_STREQ(buffer, "8923");
    EXPECT_FALSE(file.read(1, buffer));
    EXPECT_TRUE(file.read(0, buffer));
    EXPECT_TRUE(file.seek(FILE_END, -3));
    EXPECT_FALSE(file.read(4, buffer));
    EXPECT_FALSE(file.seek(FILE_BEGIN, -1));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(file.handle(), nullptr);
}

// A driver that refuses reads longer than 1 MiB, and fails at a given call, or reads too little there.
TEST(FileObject, ReadsInPiecesWhatIsRefusedAsAWhole) {
    Bytes content(2'500'000);
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<std::uint8_t>(i * 7 + i / 4096);
    const ScratchFile scratch(content, L".txt");
    for (const auto& each : {std::pair{0, false}, {2, false}, {4, false}, {3, true}}) {
        const int brokenCall = each.first;
        const bool isShort = each.second;
        FileObject file;
        ASSERT_TRUE(file.open(scratch.Path(), 0, 0, shareAll));
        int call = 0;
        const ImportHook<"ReadFile", decltype(ReadFile)> hook(
            GetModuleHandleW(nullptr),
            [&](auto original, HANDLE handle, void* buffer, DWORD count, DWORD* done,
                OVERLAPPED* overlapped) -> BOOL {
                const bool isBroken = ++call == brokenCall;
                if ((!isBroken || isShort) && count <= 1024 * 1024)
                    return original(handle, buffer, isBroken ? count / 2 : count, done, overlapped);
                SetLastError(ERROR_NO_SYSTEM_RESOURCES);
                return FALSE;
            });
        Bytes read(content.size());
        EXPECT_EQ(file.read(static_cast<std::uint32_t>(read.size()), read.data()), brokenCall == 0);
        EXPECT_EQ(read == content, brokenCall == 0) << brokenCall;
    }
}

TEST(FileObject, SeeksAndMeasuresBeyondFourGiB) {
    const ScratchFile scratch({}, L".txt");
    FileObject file;
    ASSERT_TRUE(file.open(scratch.Path(), 5, 0, shareAll));
    // A low half of all ones is a valid position, but a size that counts as a failure.
    for (const auto& [end, size] : {std::pair{0x180000000ll, 0x180000000ull}, {0x1FFFFFFFFll, 0ull}}) {
        SetLastError(ERROR_INVALID_DATA); // set by an earlier call
        ASSERT_TRUE(file.seek(FILE_BEGIN, end));
        ASSERT_TRUE(SetEndOfFile(file.handle()));
        EXPECT_EQ(file.size(), size);
        EXPECT_EQ(FileObject::fileSizeByName(scratch.Path()), size);
        ASSERT_TRUE(file.seek(FILE_END, -end)) << "the end is where it was put";
        EXPECT_FALSE(file.seek(FILE_CURRENT, -1)) << "that was the beginning";
    }
}

TEST(FileObject, AsksTheFolderForASizeThatTheFileDenies) {
    const ScratchFile scratch(digits, L".txt");
    EXPECT_EQ(FileObject::fileSizeByName(scratch.Path()), 10u);
    EXPECT_EQ(FileObject::fileSizeByName(L"C:\\no such file.txt"), 0u);
    for (const DWORD error : {DWORD{ERROR_ACCESS_DENIED}, DWORD{ERROR_SHARING_VIOLATION}}) {
        const ImportHook<"CreateFileW", decltype(CreateFileW)> denied(
            GetModuleHandleW(nullptr), [=](auto, const wchar_t*, DWORD access, auto...) {
                EXPECT_EQ(access, 0u);
                SetLastError(error);
                return INVALID_HANDLE_VALUE;
            });
        EXPECT_EQ(FileObject::fileSizeByName(scratch.Path()), error == ERROR_ACCESS_DENIED ? 10u : 0u);
        EXPECT_EQ(FileObject::fileSizeByName(L"C:\\no such file.txt"), 0u);
    }
}

TEST(FileObject, Modes) {
    const struct {
        bool creates, empties, reads, writes;
    } modes[] = {{false, false, true, false}, {true, true, false, true}, {false, false, false, true},
                 {true, false, false, true},  {true, false, true, true}, {false, false, true, true}};
    std::uint32_t mode = 0;
    for (const auto& [creates, empties, reads, writes] : modes) {
        const ScratchFile scratch(digits, L".txt");
        FileObject file;
        SCOPED_TRACE(mode);
        ASSERT_TRUE(file.open(scratch.Path(), mode, 0, shareAll));
        EXPECT_EQ(file.size(), empties ? 0u : 10u);
        char byte = 'x';
        EXPECT_EQ(file.read(1, &byte), reads);
        DWORD done;
        EXPECT_EQ(WriteFile(file.handle(), "y", 1, &done, nullptr) != FALSE, writes);

        file.close();
        DeleteFileW(scratch.Path());
        EXPECT_EQ(file.open(scratch.Path(), mode++, 0, shareAll), creates);
        EXPECT_EQ(GetFileAttributesW(scratch.Path()) != INVALID_FILE_ATTRIBUTES, creates);
        ASSERT_TRUE(file.open(scratch.Path(), 3, 0, shareAll)); // for the scratch file to delete
    }
}

TEST(FileObject, OpenClosesWhatWasOpen) {
    const ScratchFile scratch(digits, L".txt");
    for (const std::uint32_t mode : {0u, 6u, 0xFFFFFFFFu}) {
        FileObject file, other;
        ASSERT_TRUE(file.open(scratch.Path(), 0, 0, 0)); // not shared
        EXPECT_FALSE(other.open(scratch.Path(), 0, 0, shareAll));
        EXPECT_FALSE(file.open(L"Z:\\no\\such\\file.zmi", mode, 0, shareAll)) << mode;
        EXPECT_EQ(file.handle(), nullptr);
        EXPECT_TRUE(other.open(scratch.Path(), 0, 0, 0)) << mode;
    }
}

} // namespace vantrel::tests
