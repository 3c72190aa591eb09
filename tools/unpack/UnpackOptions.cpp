#include "tools/unpack/UnpackOptions.h"

namespace vantrel::tools {

const std::wstring_view unpackHelp = LR"(zmi-unpack: unpacks ZMI files into PNG files.

  zmi-unpack [options] FILE.zmi...

NAME.zmi becomes NAME.png, or NAME-001.png and so on when it has several frames.
Each is as large as its frame; pixels of the transparent colour are transparent.

  --out FOLDER    where the PNG files go (default: the current folder)
  --frames LIST   only these frames, counted from 1: 1,3,5-8
  --info          writes no pictures, but says what the files hold, and what is
                  wrong with them and at which offset
  --json          one JSON document on stdout instead of lines
  --force         replaces existing files that are not PNG files
  --help, --version

  zmi-unpack lake.zmi
  zmi-unpack --frames 1-3 --out steps walk.zmi
  zmi-unpack --info broken.zmi

Exit code: 0 done, 1 a file, a frame or an output failed, 2 wrong usage.)";

UnpackOptions ParseUnpackOptions(CommandLine& line) {
    UnpackOptions options;
    while (const auto argument = line.Next()) {
        if (!line.IsOption())
            options.inputs.push_back(*argument);
        else if (*argument == L"--out")
            options.out = line.Value();
        else if (*argument == L"--frames")
            options.frames = FrameList(line.Value());
        else if (*argument == L"--info")
            options.info = true;
        else if (*argument == L"--force")
            options.force = true;
        else if (*argument != L"--json")
            throw UsageError(L"unknown option " + *argument);
    }
    if (options.inputs.empty())
        throw UsageError(L"no file given");
    if (options.info && options.out)
        throw UsageError(L"--info writes no pictures");
    return options;
}

} // namespace vantrel::tools
