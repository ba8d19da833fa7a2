#include "filemutator.h"
#include "fuzzmutator.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstddef>
#include <cstdint>
#include <cstdio>

/*!
 * Runs a fuzz target without libFuzzer: every file of the corpus as it is, then seeded random
 * inputs until so many bytes have gone through. Any fault ends the program; the seed printed first
 * brings it back.
 */

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

void feed(const QByteArray &input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.constData()),
                           size_t(input.size()));
}

bool feedCorpus(const QString &folder, QVector<QByteArray> &corpus)
{
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &entry : entries) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray input = file.readAll();
        feed(input);
        corpus.append(input);
    }
    return !entries.isEmpty();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Feeds a corpus and seeded random bytes to a fuzz target.");
    parser.addHelpOption();
    const QCommandLineOption seedOption("seed", "Seed of the random bytes.", "number", "70001");
    const QCommandLineOption bytesOption("bytes", "Random bytes to feed.", "number", "1000000");
    const QCommandLineOption filesOption(
        "files", "Makes inputs from whole files; without it, from the sentences in them.");
    parser.addOptions({seedOption, bytesOption, filesOption});
    parser.addPositionalArgument("corpus", "Folders of input files.", "[corpus...]");
    parser.process(app);

    const quint32 seed = parser.value(seedOption).toUInt();
    const qint64 wanted = parser.value(bytesOption).toLongLong();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);

    QVector<QByteArray> corpus;
    for (const QString &folder : parser.positionalArguments()) {
        if (!feedCorpus(folder, corpus)) {
            std::fprintf(stderr, "No corpus in %s\n", qPrintable(folder));
            return 1;
        }
    }

    const bool useFiles = parser.isSet(filesOption);
    FuzzMutator sentenceMutator(seed);
    FileMutator fileMutator(seed);
    for (const QByteArray &input : qAsConst(corpus)) {
        sentenceMutator.addSentences(input.mid(1));
        fileMutator.addFile(input);
    }

    QElapsedTimer clock;
    clock.start();
    qint64 fed = 0;
    qint64 inputs = 0;
    while (fed < wanted) {
        const QByteArray input = useFiles ? fileMutator.nextInput() : sentenceMutator.nextInput();
        feed(input);
        fed += input.size();
        ++inputs;
    }
    std::printf("%d corpus files, %lld random bytes in %lld inputs, %lld ms, no fault\n",
                int(corpus.size()), static_cast<long long>(fed), static_cast<long long>(inputs),
                static_cast<long long>(clock.elapsed()));
    return 0;
}
