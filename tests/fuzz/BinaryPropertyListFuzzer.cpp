// The bounded binary property-list reader: any bytes read or are refused without a crash, a
// deep recursion or an unbounded allocation, and a dictionary read survives the store's write
// and read back. The magic is supplied so that every input reaches the reader.

#include "PropertyListRoundTrip.h"
#include "platform/store/BinaryPropertyListReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    if (!bytes.startsWith("bplist00"))
        bytes.prepend("bplist00");
    if (const std::optional<QVariant> root = BinaryPropertyListReader(bytes).read())
        CheckStoreRoundTrip(*root);
    return 0;
}
