// vantrel-bench: the library's time and memory compared with the minimum for the same result.

#include "benchmarks/Floor.h"
#include "benchmarks/Library.h"
#include "benchmarks/MemoryStream.h"
#include "benchmarks/Peers.h"
#include "benchmarks/Pictures.h"
#include "benchmarks/Report.h"
#include "benchmarks/WorkingSet.h"

#include <windows.h>

#include <objbase.h>

#include <cstdio>
#include <cwchar>
#include <exception>
#include <stdexcept>
#include <string>

namespace vantrel::bench {

namespace {

constexpr unsigned thumbnailEdge = 256;
constexpr unsigned folderEdge = 96;

struct Options {
    bool json = false;
    double seconds = 2; // for each row
    std::string only;   // only rows whose names contain it
};

class Run {
public:
    Run(const std::filesystem::path& dll, const Options& options)
        : dll_(dll), options_(options), loadMilliseconds_(Library::LoadTime(dll)), library_(dll) {}

    Report Measure() {
        MeasurePictures();
        MeasureBigFiles();
        MeasureFolder();
        if (options_.only.empty())
            MeasureGrowth();
        report_.libraryBytes = std::filesystem::file_size(dll_);
        report_.loadMilliseconds = loadMilliseconds_;
        return std::move(report_);
    }

private:
    bool Wanted(const std::string& name) const { return name.find(options_.only) != std::string::npos; }

    // Null if the row is not wanted.
    Row* Add(const std::string& name, std::optional<double> goal, const Action& floor, const Action& dll) {
        if (!Wanted(name))
            return nullptr;
        std::fprintf(stderr, "%s\n", name.c_str());
        report_.rows.push_back({name, goal, MeasurePairs(floor, dll, options_.seconds), 0, {}, {}, {}});
        return &report_.rows.back();
    }

    // Facts cost as much as reading.
    void AddWindow(Row& row, const Action& window, const Action& dll) const {
        row.window = MeasurePairs(window, dll, options_.seconds / 2).ratio;
        row.windowGoal = 1.10;
    }

    void AddPeer(Row& row, const std::string& name, const Action& dll, const Action& peer) const {
        row.peers.push_back({name, MeasurePairs(dll, peer, options_.seconds / 3).ratio});
    }

    void AddThumbnail(const std::string& name, double goal, const Picture& picture) {
        MemoryStream stream(picture.zmi);
        const Action dll = [&] { library_.Thumbnail(stream, thumbnailEdge); };
        const Action floor = [&] {
            FloorThumbnail(stream, picture.width, picture.height, int{thumbnailEdge});
        };
        Row* const row = Add(name, goal, floor, dll);
        if (!row)
            return;
        const std::uint64_t before = stream.BytesRead();
        dll();
        row->bytesRead = Share(stream.BytesRead() - before, picture.zmi.size());
        if (picture.bmp.empty())
            return;
        MemoryStream bmp(picture.bmp);
        const std::wstring path = folder_.Write(L"peer.bmp", picture.bmp);
        AddPeer(*row, "WIC", dll, [&] { wic_.Thumbnail(bmp, thumbnailEdge); });
        AddPeer(*row, "GDI+", dll, [&] { gdiPlus_.Thumbnail(bmp, thumbnailEdge); });
        AddPeer(*row, "LoadImage", dll, [&] { LoadImageThumbnail(path.c_str(), thumbnailEdge); });
    }

    void MeasurePictures() {
        const Picture picture = MakePicture(2, 1024, 600);
        AddThumbnail("thumbnail of 1024x600 5-6-5", 0.85, picture);
        AddThumbnail("thumbnail of 1024x600 8-bit", 0.97, MakePicture(1, 1024, 600));
        AddThumbnail("thumbnail of 1024x600 1-bit", 1.02, MakePicture(0, 1024, 600));
        AddThumbnail("thumbnail of the blank picture", 1.01, MakeBlankDefault());
        const std::wstring path = folder_.Write(L"picture.zmi", picture.zmi);
        AddByPath(
            "icon pair 32/16 of 1024x600 5-6-5", 0.75, picture.zmi.size(),
            [&] { FloorIconPair(path.c_str(), picture.width, picture.height); },
            [&] { library_.IconPair(path.c_str()); });
        AddProperties("three properties of 1024x600 5-6-5", picture);
        AddColumn("column of 1024x600 5-6-5", path, picture);
    }

    Row* AddByPath(const std::string& name, std::optional<double> goal, std::uint64_t bytes,
                   const Action& floor, const Action& dll) {
        Row* const row = Add(name, goal, floor, dll);
        if (row)
            row->bytesRead = Share(library_.CountFileBytes(dll), bytes);
        return row;
    }

    void AddProperties(const std::string& name, const Picture& picture) {
        MemoryStream stream(picture.zmi);
        const Action dll = [&] { library_.Properties(stream); };
        const Action floor = [&] {
            for (int i = 0; i < 3; ++i)
                FloorRead(stream);
        };
        if (Row* const row = Add(name, {}, floor, dll)) {
            const std::uint64_t before = stream.BytesRead();
            dll();
            row->bytesRead = Share(stream.BytesRead() - before, 3 * picture.zmi.size());
            const Action window = [&] {
                for (int i = 0; i < 3; ++i)
                    WindowRead(stream);
            };
            AddWindow(*row, window, dll);
        }
    }

    void AddColumn(const std::string& name, const std::wstring& path, const Picture& picture) {
        const Action dll = [&] { library_.Column(path.c_str()); };
        if (Row* const row = AddByPath(
                name, {}, picture.zmi.size(), [&] { FloorRead(path.c_str()); }, dll))
            AddWindow(
                *row, [&] { WindowRead(path.c_str()); }, dll);
    }

    void MeasureBigFiles() {
        const std::wstring warmUp = folder_.Write(L"warm-up.zmi", MakePicture(2, 64, 64).zmi);
        if (Wanted("8000x6000")) {
            const Picture big = MakePicture(1, 8000, 6000);
            AddThumbnail("thumbnail of 8000x6000 8-bit", 0.92, big);
            AddWorkingSet("thumbnail of 8000x6000 8-bit", warmUp, big, {});
        }
        const Picture animation = MakeAnimation(240, 320, 240);
        AddThumbnail("thumbnail of 240 frames 320x240", 0.18, animation);
        if (Wanted("240 frames"))
            AddWorkingSet("thumbnail of 240 frames 320x240", warmUp, animation, 0.05);

        AddProperties("three properties of the 240 frames", animation);
        AddColumn("column of the 240 frames", folder_.Write(L"animation.zmi", animation.zmi), animation);
    }

    void AddWorkingSet(const std::string& name, const std::wstring& warmUp, const Picture& picture,
                       std::optional<double> goal) {
        const std::wstring path = folder_.Write(L"peak.zmi", picture.zmi);
        report_.workingSets.push_back({name, picture.zmi.size(), PeakGrowth(dll_, warmUp, path), goal});
    }

    void MeasureFolder() {
        struct File {
            std::wstring zmi, bmp;
            int width, height;
        };
        const std::string name = "folder of 200 small files at 96";
        if (!Wanted(name))
            return;
        std::vector<File> files;
        std::uint64_t bytes = 0;
        for (unsigned i = 0; i < 200; ++i) {
            const Picture picture = MakePicture(i % 3, static_cast<std::uint16_t>(16 + i * 67 % 241),
                                                static_cast<std::uint16_t>(16 + i * 41 % 241));
            const std::wstring stem = std::to_wstring(i);
            files.push_back({folder_.Write(stem + L".zmi", picture.zmi),
                             folder_.Write(stem + L".bmp", picture.bmp), picture.width, picture.height});
            bytes += picture.zmi.size();
        }
        const auto each = [&files](const auto& action) {
            return Action([&files, action] {
                for (const File& file : files)
                    action(file);
            });
        };
        const Action dll = each([&](const File& file) { library_.Extract(file.zmi.c_str(), folderEdge); });
        Row& row = *Add(name, 1.03, each([](const File& file) {
                            FloorThumbnail(file.zmi.c_str(), file.width, file.height, int{folderEdge});
                        }),
                        dll);
        row.bytesRead = Share(library_.CountFileBytes(dll), bytes);
        AddPeer(row, "WIC", dll,
                each([&](const File& file) { wic_.Thumbnail(file.bmp.c_str(), folderEdge); }));
        AddPeer(row, "GDI+", dll,
                each([&](const File& file) { gdiPlus_.Thumbnail(file.bmp.c_str(), folderEdge); }));
        AddPeer(row, "LoadImage", dll,
                each([](const File& file) { LoadImageThumbnail(file.bmp.c_str(), folderEdge); }));
    }

    void AddPoint(Growth& growth, double size, const Picture& picture) const {
        MemoryStream stream(picture.zmi);
        growth.sizes.push_back(size);
        growth.times.push_back(
            MeasurePairs([&] { FloorThumbnail(stream, picture.width, picture.height, int{thumbnailEdge}); },
                         [&] { library_.Thumbnail(stream, thumbnailEdge); }, options_.seconds / 5));
    }

    void MeasureGrowth() {
        constexpr const char* modeNames[] = {"1-bit", "8-bit", "5-6-5"};
        for (unsigned mode = 0; mode < 3; ++mode) {
            Growth growth{"squares of 128 to 4096, " + std::string(modeNames[mode]), {}, {}};
            std::fprintf(stderr, "%s\n", growth.name.c_str());
            for (std::uint16_t edge = 128; edge <= 4096; edge = static_cast<std::uint16_t>(edge * 2))
                AddPoint(growth, double{1} * edge * edge, MakePicture(mode, edge, edge));
            report_.growths.push_back(std::move(growth));
        }
        Growth growth{"1 to 4096 frames of 64x64, bytes", {}, {}};
        std::fprintf(stderr, "%s\n", growth.name.c_str());
        for (std::size_t frames = 1; frames <= 4096; frames *= 4) {
            const Picture picture = MakeAnimation(frames, 64, 64);
            AddPoint(growth, static_cast<double>(picture.zmi.size()), picture);
        }
        report_.growths.push_back(std::move(growth));
    }

    static double Share(std::uint64_t part, std::uint64_t whole) {
        return static_cast<double>(part) / static_cast<double>(whole);
    }

    std::filesystem::path dll_;
    Options options_;
    double loadMilliseconds_;
    Library library_;
    ScratchFolder folder_;
    WicPeer wic_;
    GdiPlusPeer gdiPlus_;
    Report report_{};
};

constexpr char usage[] = "Usage: vantrel-bench [--json] [--seconds N] [--only TEXT] [--dll FILE]\n"
                         "Measures Vantrel64.dll, by default the one beside this program.\n"
                         "  --seconds N  measure each row that long (default 2)\n"
                         "  --only TEXT  only rows whose names hold the text, and no growth\n";

std::string Narrow(const wchar_t* text) {
    std::string narrow;
    for (; *text; ++text)
        narrow.push_back(static_cast<char>(*text));
    return narrow;
}

int Main(int count, wchar_t** arguments) {
    if (count == 5 && std::wcscmp(arguments[1], L"--working-set") == 0)
        return ServeWorkingSet(arguments[2], arguments[3], arguments[4]);

    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::filesystem::path dll = std::filesystem::path(program).replace_filename(L"Vantrel64.dll");
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::wstring name = arguments[i];
        const bool hasValue = i + 1 < count;
        if (name == L"--json") {
            options.json = true;
        } else if (name == L"--seconds" && hasValue) {
            options.seconds = std::wcstod(arguments[++i], nullptr);
        } else if (name == L"--only" && hasValue) {
            options.only = Narrow(arguments[++i]);
        } else if (name == L"--dll" && hasValue) {
            dll = arguments[++i];
        } else {
            std::fputs(usage, name == L"--help" ? stdout : stderr);
            return name == L"--help" ? 0 : 2;
        }
    }
    const Report report = Run(dll, options).Measure();
    options.json ? PrintJson(report) : PrintTable(report);
    return 0;
}

} // namespace

} // namespace vantrel::bench

int wmain(int count, wchar_t** arguments) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
        return 1;
    int result = 1;
    try {
        result = vantrel::bench::Main(count, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantrel-bench: %s\n", error.what());
    }
    CoUninitialize();
    return result;
}
