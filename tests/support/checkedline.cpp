#include "support/checkedline.h"

namespace {

QByteArray lineWithSum(const QByteArray &body, int sum)
{
    static const char digits[] = "0123456789ABCDEF";
    QByteArray text = body;
    text.append('*');
    text.append(digits[(sum >> 4) & 0xf]);
    text.append(digits[sum & 0xf]);
    text.append("\r\n");
    return text;
}

} // namespace

quint8 xorSum(const QByteArray &body)
{
    quint8 sum = 0;
    for (int i = 1; i < body.size(); ++i)
        sum = quint8(sum ^ quint8(body.at(i)));
    return sum;
}

QByteArray checkedLine(const QByteArray &body)
{
    return lineWithSum(body, xorSum(body));
}

QByteArray wronglyCheckedLine(const QByteArray &body)
{
    return lineWithSum(body, xorSum(body) ^ 1);
}
