#include "codec/FileSource.h"

namespace vantrel {

std::uint64_t FileSource::Size() {
    const auto size = static_cast<std::uint32_t>(FileObject::fileSizeByName(name_));
    return size != 0 && file_.open(name_, 0, 0, FILE_SHARE_READ | FILE_SHARE_WRITE) ? size : 0;
}

bool FileSource::ReadAt(std::int64_t offset, void* buffer, std::uint32_t count) {
    return file_.seek(FILE_BEGIN, offset) && file_.read(count, buffer);
}

} // namespace vantrel
