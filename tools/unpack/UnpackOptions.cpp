#include "tools/unpack/UnpackOptions.h"

namespace vantrel::tools {

const std::wstring_view unpackHelp =
    LR"(zmi-unpack: unpacks ZMI files into PNG files, or into an animated GIF.

  zmi-unpack [options] FILE|PATTERN|FOLDER...

A pattern such as step*.zmi stands for the files that match it, a folder for the
.zmi files in it. NAME.zmi becomes NAME.png, or NAME-001.png and so on when it
has several frames. Each has its frame's size, and the transparent colour is
transparent. If a file's frames share so many pixels that they would become more
than 1 GiB and 16 times the file, --frames must say which ones are wanted.

  --out FOLDER    where the PNG files go (default: the current folder)
  --frames LIST   only these frames, counted from 1: 1,3,5-8
  --gif FILE      these frames as one animation, with 256 colours and at most
                  67,108,864 pixels each; PNG files are then written only with
                  --out
  --delay MS      how long the GIF shows each frame, 10 to 60000 (default 100)
  --info          writes no pictures, but says what the files contain, what is
                  wrong with them, and at which offset
  --json          one JSON document on stdout instead of lines
  --force         replaces existing files. Without it, FILE of --gif may be
                  replaced if it is a GIF file, and NAME.png only by the same
                  bytes. An input is never replaced.
  --help, --version
  --              only files follow, even if their names start with a dash

  zmi-unpack lake.zmi
  zmi-unpack --frames 1-3 --out steps walk.zmi
  zmi-unpack --gif walk.gif --delay 40 walk.zmi
  zmi-unpack --info broken.zmi

Exit code: 0 done, 1 a file, a frame or an output failed, 2 wrong usage or an
output that may not be replaced, 130 ended by Ctrl+C.)";

UnpackOptions ParseUnpackOptions(const Arguments& arguments) {
    UnpackOptions options;
    options.inputs = TakeOptions(
        arguments,
        {{L"--out", &options.out},
         {L"--frames", [&](const std::wstring& list) { options.frames = FrameList(list); }},
         {L"--gif", &options.gif},
         {L"--delay",
          [&](const std::wstring& text) { options.delay = ParseNumber(L"--delay", text, 10, 60000); }},
         {L"--info", &options.info},
         {L"--json"},
         {L"--force", &options.force}});
    if (options.inputs.empty())
        throw UsageError(L"no file given");
    if (options.info && (options.out || options.gif))
        throw UsageError(L"--info writes no pictures");
    if (options.delay && !options.gif)
        throw UsageError(L"--delay needs --gif");
    return options;
}

} // namespace vantrel::tools
