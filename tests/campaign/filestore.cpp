#include "filestore.h"

#include "../model/randommodel.h"
#include "model/rulefile.h"

#include <QBuffer>
#include <QDir>
#include <QFile>

FileStore::FileStore()
{
    if (!m_folder.isValid())
        qFatal("no folder for files: %s", qPrintable(m_folder.errorString()));
    QDir(m_folder.path()).mkdir(QStringLiteral("folder.vrr"));
}

QString FileStore::write(const QString &name, const QByteArray &content) const
{
    QString path = m_folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return path;
}

QString FileStore::targetForRules(Dice &dice) const
{
    constexpr int names = 4;
    const int choice = dice.below(20);
    if (choice == 0)
        return QStringLiteral("/nowhere/rules.vrr");
    if (choice == 1)
        return m_folder.filePath(QStringLiteral("rules.txt"));
    if (choice == 2) // the disk is full
        return QStringLiteral("/dev/full");
    return m_folder.filePath(QStringLiteral("saved%1.vrr").arg(dice.below(names)));
}

QByteArray FileStore::goodRules(Dice &dice) const
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    RuleFile::write(buffer, randomModel(dice.number()));
    return buffer.data();
}

QString FileStore::ruleFile(Dice &dice)
{
    QByteArray content = goodRules(dice);
    const int choice = dice.below(10);
    m_kind = Kind::Good;
    if (choice < 6)
        return write(QStringLiteral("good.vrr"), content);
    m_kind = Kind::Torn;
    if (choice == 6)
        return write(QStringLiteral("torn.vrr"), content.left(dice.below(int(content.size()))));
    m_kind = Kind::Hostile;
    if (choice == 7)
        return write(QStringLiteral("noise.vrr"), "VRR" + dice.bytes(dice.below(4000)));
    if (choice == 8) {
        for (int i = dice.between(1, 20); i > 0; --i)
            content[dice.below(int(content.size()))] = char(dice.below(256));
        return write(QStringLiteral("spoilt.vrr"), content);
    }
    return m_folder.filePath(QStringLiteral("missing.vrr"));
}

QString FileStore::firmware(Dice &dice)
{
    constexpr int headerSize = 18;
    constexpr int largestSmall = 700;
    // The magic, eight bytes of the router's own, the version, no mode.
    const QByteArray version = {"\x04\x00", 2};
    QByteArray image = "fwVR48" + dice.bytes(8) + version + QByteArray(2, '\0');
    image += dice.bytes(dice.between(headerSize, largestSmall));
    switch (dice.below(12)) {
    case 0:
        return write(QStringLiteral("empty.efw"), QByteArray());
    case 1:
        return write(QStringLiteral("noise.efw"), dice.bytes(dice.below(100)));
    case 2:
        return write(QStringLiteral("big.efw"), QByteArray(1000001, 'x'));
    case 3:
        return m_folder.filePath(QStringLiteral("missing.efw"));
    case 4:
        return write(QStringLiteral("short.efw"), image.left(dice.below(headerSize)));
    default:
        return write(QStringLiteral("new.efw"), image);
    }
}
