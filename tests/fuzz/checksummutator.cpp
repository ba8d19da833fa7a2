#include "support/checkedline.h"

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>

/*!
 * Most of what libFuzzer makes of a checked sentence would end at the test of its checksum, and the
 * parsers behind it would see little. So three of four inputs get the sums that fit.
 */

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize,
                                          unsigned int seed);

namespace {

constexpr unsigned int oneInSoManyKeepsItsSums = 4;
constexpr int checksumDigits = 2;

// Sums what stands between the first '$' of a line and its star.
void repairLine(char *begin, char *end)
{
    constexpr char digits[] = "0123456789ABCDEF";
    char *const start = std::find(begin, end, '$');
    char *const star = std::find(start, end, '*');
    if (end - star <= checksumDigits)
        return;
    const quint8 sum = xorSum(QByteArray(start, int(star - start)));
    star[1] = digits[sum >> 4];
    star[2] = digits[sum & 0x0f];
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize,
                                          unsigned int seed)
{
    const size_t newSize = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % oneInSoManyKeepsItsSums == 0)
        return newSize;
    char *from = reinterpret_cast<char *>(data);
    char *const end = from + newSize;
    while (from != end) {
        char *const lineEnd = std::find(from, end, '\n');
        repairLine(from, lineEnd);
        from = lineEnd == end ? end : lineEnd + 1;
    }
    return newSize;
}
