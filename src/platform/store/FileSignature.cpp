#include "platform/store/FileSignature.h"

#include <algorithm>

namespace {

long long Nanoseconds(const struct timespec &time)
{
    return static_cast<long long>(time.tv_sec) * 1'000'000'000LL + time.tv_nsec;
}

} // namespace

FileSignature::FileSignature(const struct stat &info)
    : m_device(info.st_dev), m_inode(info.st_ino), m_size(info.st_size), m_mode(info.st_mode),
      m_modifiedNs(Nanoseconds(info.st_mtim)), m_changedNs(Nanoseconds(info.st_ctim))
{}

std::optional<FileSignature> FileSignature::ofPath(const QByteArray &nativePath)
{
    struct stat info = {};
    if (::stat(nativePath.constData(), &info) != 0)
        return std::nullopt;
    return FileSignature(info);
}

bool FileSignature::trustedAt(std::chrono::system_clock::time_point now,
                              std::chrono::nanoseconds granularity) const
{
    const long long nowNs =
        std::chrono::duration_cast<std::chrono::nanoseconds>(now.time_since_epoch()).count();
    // Both times: touch(1) and utimensat() can set the modification time back, never the
    // change time; and a file system without change times reports the modification time.
    const long long latest = std::max(m_modifiedNs, m_changedNs);
    return latest + granularity.count() < nowNs;
}
