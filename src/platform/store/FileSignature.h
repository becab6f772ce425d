#pragma once

#include <QByteArray>

#include <chrono>
#include <optional>
#include <sys/stat.h>

// What the file system tells about a file without reading it: which file it is (device and
// inode), its size, and its modification and change times to the nanosecond. Two equal
// signatures taken at different moments mean the file was not written in between, with one
// exception that trustedAt() guards against: a file system stamps times from a coarse clock (a
// few milliseconds, two seconds on FAT), so a write that lands in the same tick as an earlier
// one, and keeps the size, leaves every field as it was.
class FileSignature
{
public:
    // The signature of the file at path, following symbolic links; none when there is no file.
    static std::optional<FileSignature> ofPath(const QByteArray &nativePath);

    // Whether a later, equal signature proves the content unchanged: only once the file's last
    // change lies further in the past than the coarsest time stamps, so that any later write
    // must carry a later time. A change time in the future (a clock set back, a network file
    // system's own clock) is never trusted.
    bool trustedAt(std::chrono::system_clock::time_point now,
                   std::chrono::nanoseconds granularity = kTimestampGranularity) const;

    explicit FileSignature(const struct stat &info);

    bool operator==(const FileSignature &other) const = default;

    static constexpr std::chrono::nanoseconds kTimestampGranularity = std::chrono::seconds(2);

private:
    dev_t m_device = 0;
    ino_t m_inode = 0;
    off_t m_size = 0;
    mode_t m_mode = 0;
    long long m_modifiedNs = 0;
    long long m_changedNs = 0;
};
