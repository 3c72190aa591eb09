#include "tools/pack/PackOptions.h"

#include "tools/terminal/Console.h"
#include "tools/terminal/FileName.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <utility>

namespace vantrel::tools {

namespace {

// Bytes. Readers may take one more, but this leaves room for a zero byte at the end.
constexpr std::size_t longestTitle = sizeof(ImageHeader::text) - 1;

PixelMode ParseMode(const std::wstring& text) {
    if (text == L"1")
        return PixelMode::Monochrome;
    if (text == L"8")
        return PixelMode::Indexed;
    if (text == L"565")
        return PixelMode::Rgb565;
    throw UsageError(L"--mode must be 1, 8 or 565, not \"" + text + L"\"");
}

Color ParseColor(const std::wstring& text) {
    const std::wstring_view digits = text.starts_with(L'#') ? std::wstring_view(text).substr(1) : text;
    if (digits.size() != 6 || digits.find_first_not_of(L"0123456789abcdefABCDEF") != std::wstring_view::npos)
        throw UsageError(L"--transparent needs a colour as RRGGBB, for example ff00ff, not \"" + text +
                         L"\"");
    const unsigned long value = std::wcstoul(digits.data(), nullptr, 16);
    return {.blue = static_cast<std::uint8_t>(value),
            .green = static_cast<std::uint8_t>(value >> 8),
            .red = static_cast<std::uint8_t>(value >> 16),
            .alpha = 255};
}

std::string ToAnsi(const std::wstring& text) {
    if (text.empty())
        return {};
    // With UTF-8 as the ANSI code page, this flag and the query are not allowed, nor needed.
    const bool utf8 = GetACP() == CP_UTF8;
    std::string bytes(text.size() * 4, '\0');
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS,
                                         text.data(), static_cast<int>(text.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, utf8 ? nullptr : &replaced);
    if (size == 0 || replaced)
        throw UsageError(L"--title has characters that this system's ANSI code page (" +
                         std::to_wstring(GetACP()) + L") lacks: \"" + text + L"\"");
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
}

std::string ToTitle(std::wstring text, bool truncate) {
    if (std::ranges::any_of(text, IsControl))
        throw UsageError(L"--title contains a control character");
    std::string title = ToAnsi(text);
    if (title.size() > longestTitle && !truncate)
        throw UsageError(L"--title has more than 33 characters (fewer in some languages: " +
                         std::to_wstring(longestTitle) + L" bytes in this system's ANSI code page); " +
                         L"--truncate-title shortens it: \"" + text + L"\"");
    // Cuts whole characters, each of which takes at least one byte; some are surrogate pairs.
    text.resize(std::min(text.size(), longestTitle));
    for (; title.size() > longestTitle; text.pop_back()) {
        if (IS_HIGH_SURROGATE(text.back()))
            text.pop_back();
        title = ToAnsi(text);
    }
    return title;
}

} // namespace

const std::wstring_view packHelp = LR"(zmi-pack: packs pictures into ZMI files.

  zmi-pack [options] INPUT... OUTPUT.zmi
  zmi-pack --each [--out FOLDER] [options] INPUT...
  zmi-pack --title TEXT OLD.zmi NEW.zmi
  zmi-pack --blank [--title TEXT] [--force] OUTPUT.zmi

INPUT is a picture that Windows reads (PNG, JPEG, GIF, TIFF, ...), a ZMI file, a
pattern such as step*.png, or a folder of pictures, in numerical order (2 before
10). Several pictures, or animated ones, become a file with several frames;
frames of a ZMI file in the same mode keep their colours and transparency. An
.ico file gives its largest picture. With --title alone, a single ZMI file is
copied as it is, with the new title.

  --each                packs each input into its own file, NAME.zmi
  --out FOLDER          where these go (default: the current folder)
  --mode 1|8|565        black and white, 256 colours, or 16 bits (default 565, or
                        that of the inputs if all are ZMI files of one mode)
  --title TEXT          the title: at most 33 characters (fewer in some languages:
                        33 bytes in the ANSI code page); without it, that of
                        the first ZMI file among the inputs
  --truncate-title      cuts off a longer title
  --transparent RRGGBB  this colour is transparent, and transparent parts of an
                        input are filled with it instead of white; not with
                        --mode 1
  --no-dither           uses each pixel's nearest colour, without mixing
  --no-rotate           keeps photos as stored, ignoring their orientation
  --blank               the blank picture, which needs no input
  --force               replaces existing files. Without it, OUTPUT.zmi may be
                        replaced if it is a ZMI file, and NAME.zmi of --each
                        only by the same bytes. An input is never replaced.
  --help, --version
  --                    only files follow, even if their names start with a dash

  zmi-pack --mode 8 --title "A walk" step*.png walk.zmi
  zmi-pack --each --out zmi photos

Limits: 65,535 frames of 65,535 x 65,535 pixels in less than 2 GiB; 67 million
pixels of an animated GIF's canvas; 268 million of a photo to be turned upright;
1,000 pictures in an .ico file.

Exit code: 0 done, 1 an input or an output failed, 2 wrong usage or an output
that may not be replaced, 130 ended by Ctrl+C.)";

PackOptions ParsePackOptions(const Arguments& arguments) {
    PackOptions options;
    bool truncateTitle = false;
    bool blank = false;
    std::optional<std::wstring> title;
    options.inputs = TakeOptions(
        arguments,
        {{L"--each", &options.each},
         {L"--out", &options.out},
         {L"--mode", [&](const std::wstring& text) { options.mode = ParseMode(text); }},
         {L"--title", [&](const std::wstring& text) { title = text; }},
         {L"--truncate-title", &truncateTitle},
         {L"--transparent", [&](const std::wstring& text) { options.transparent = ParseColor(text); }},
         {L"--no-dither", &options.noDither},
         {L"--no-rotate", &options.noRotate},
         {L"--blank", &blank},
         {L"--force", &options.force}});
    if (title)
        options.title = ToTitle(std::move(*title), truncateTitle);

    if (options.out && !options.each)
        throw UsageError(L"--out needs --each");
    if (options.inputs.empty())
        throw UsageError(blank          ? L"no output given"
                         : options.each ? L"no input given"
                                        : L"no input and no output given");
    if (options.each && !blank)
        return options;
    options.output = options.inputs.back();
    options.inputs.pop_back();
    // Otherwise, if the user forgets the output, the last input would be overwritten.
    if (!HasExtension(options.output, L".zmi"))
        throw UsageError(L"the output must come last and its name must end in .zmi, not \"" +
                         options.output.wstring() + L"\"");
    if (blank && (!options.inputs.empty() || options.each || options.ChangesPictures()))
        throw UsageError(L"--blank takes no input, and no option other than --title and --force");
    if (!blank && options.inputs.empty())
        throw UsageError(L"no input given for " + options.output.wstring());
    return options;
}

} // namespace vantrel::tools
