#include "fuzzmutator.h"

#include "support/checkedline.h"

#include <QList>

namespace {

constexpr int maxNoise = 300;
constexpr int maxSentences = 12;
constexpr int maxMutations = 4;

const char *const oddNumbers[] = {"12", "99",  "255", "256",        "4294967295",
                                  "-1", "",    "6",   "4294967296", "11",
                                  "0",  "abc", " 3 ", "0x7f",       "65536"};
constexpr char oddBytes[] = {'$',  '!', '*', ',',    '\r',   '\n',
                             '\0', '.', ' ', '\x7f', '\xff', '\xc3'};

template <typename T, int count> constexpr int countOf(const T (&)[count])
{
    return count;
}

} // namespace

void FuzzMutator::addSentences(const QByteArray &sentences)
{
    for (const QByteArray &sentence : sentences.split('\n')) {
        if (sentence.size() > 1)
            m_sentences.append(sentence + '\n');
    }
}

QByteArray FuzzMutator::nextInput()
{
    QByteArray input(1, char(m_random.bounded(256)));
    if (m_sentences.isEmpty() || m_random.bounded(4) == 0)
        return input + noise(m_random.bounded(maxNoise));
    const int count = 1 + m_random.bounded(maxSentences);
    for (int i = 0; i < count; ++i) {
        input += mutatedSentence();
        if (m_random.bounded(8) == 0)
            input += noise(m_random.bounded(10));
    }
    return input;
}

QByteArray FuzzMutator::noise(int size)
{
    QByteArray bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(m_random.bounded(256));
    return bytes;
}

QByteArray FuzzMutator::mutatedSentence()
{
    const QByteArray sentence = m_sentences.at(m_random.bounded(m_sentences.size()));
    const int star = int(sentence.indexOf('*'));
    if (star < 0 || m_random.bounded(4) == 0) {
        QByteArray whole = sentence;
        mutate(whole);
        return whole;
    }
    QByteArray body = sentence.left(star);
    mutate(body);
    return checkedLine(body);
}

void FuzzMutator::mutate(QByteArray &body)
{
    for (int left = m_random.bounded(maxMutations); left > 0; --left) {
        const int at = position(body);
        const int length = m_random.bounded(12);
        switch (m_random.bounded(7)) {
        case 0: // one byte becomes another
            if (at < body.size())
                body[at] = char(m_random.bounded(256));
            break;
        case 1: // a byte that means something stands where it shouldn't
            body.insert(at, oddBytes[m_random.bounded(countOf(oddBytes))]);
            break;
        case 2: // a part is missing
            body.remove(at, length);
            break;
        case 3: // a part stands twice
            body.insert(at, body.mid(at, length));
            break;
        case 4: { // another number stands in a field
            const int field = int(body.indexOf(',', at));
            if (field < 0)
                break;
            const int end = int(body.indexOf(',', field + 1));
            body.replace(field + 1, end < 0 ? body.size() : end - field - 1,
                         oddNumbers[m_random.bounded(countOf(oddNumbers))]);
            break;
        }
        case 5: // torn off
            body.truncate(at);
            break;
        default: // goes on as another sentence does
            body = body.left(at) + m_sentences.at(m_random.bounded(m_sentences.size())).mid(at);
            break;
        }
    }
}

int FuzzMutator::position(const QByteArray &text)
{
    return int(m_random.bounded(text.size() + 1));
}
