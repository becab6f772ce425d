// The command line's TIME parser: any text is read or refused with a message, and every TIME it
// accepts can be shown by every built-in format, which is what its range promises.

#include "FuzzCheck.h"
#include "app/cli/TimeArgument.h"
#include "datetext/DateFormatCatalogue.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Arguments are short; long ones only slow the search down.
    if (size > 256)
        return -1;
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const std::optional<AbsoluteTime> time = ReadTimeArgument(text, error);
    if (!time) {
        FuzzCheck(!error.isEmpty(), "a refused TIME without a message");
        return 0;
    }
    FuzzCheck(error.isEmpty(), "an accepted TIME with a message");
    for (const CatalogueFormat &format : DateFormatCatalogue())
        FuzzCheck(!CatalogueFormatText(format, *time).isEmpty(), "an accepted TIME shows empty");
    return 0;
}
