// The settings file's XML reader: any bytes parse or are refused, in bounded time and memory,
// and whatever parses to a dictionary survives the store's write and read back.

#include "PropertyListRoundTrip.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    // Binary lists have a harness of their own; here every input goes to the XML reader.
    if (bytes.startsWith("bplist"))
        return -1;
    if (const std::optional<QVariant> root = ParsePropertyList(bytes))
        CheckStoreRoundTrip(*root);
    return 0;
}
