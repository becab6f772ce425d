#include "app/cli/DesktopProgram.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

constexpr const char *kDesktopProgramName = "horalo-desktop";

std::string RunningExecutableDirectory()
{
    char path[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0)
        return {};
    const std::string executable(path, static_cast<size_t>(length));
    const size_t slash = executable.rfind('/');
    return slash == std::string::npos ? std::string() : executable.substr(0, slash);
}

bool IsExecutableFile(const std::string &path)
{
    return ::access(path.c_str(), X_OK) == 0;
}

} // namespace

std::string DesktopProgramPath()
{
    const std::string dir = RunningExecutableDirectory();
    if (dir.empty())
        return {};
    for (const std::string &candidate :
         {dir + '/' + kDesktopProgramName,
          dir + '/' + HORALO_DESKTOP_DIR_FROM_BINDIR + '/' + kDesktopProgramName}) {
        if (IsExecutableFile(candidate))
            return candidate;
    }
    return {};
}

int ExecDesktopProgram(char *argv[])
{
    const std::string path = DesktopProgramPath();
    if (path.empty()) {
        std::fprintf(stderr, "horalo: the desktop program (%s) is not installed beside horalo\n",
                     kDesktopProgramName);
        return 127;
    }
    ::execv(path.c_str(), argv);
    std::fprintf(stderr, "horalo: cannot start %s: %s\n", path.c_str(), std::strerror(errno));
    return 126;
}
