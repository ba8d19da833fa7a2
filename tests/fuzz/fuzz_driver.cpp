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

bool feedCorpus(const QString &folder, FuzzMutator &mutator, int &files)
{
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &entry : entries) {
        QFile file(entry.filePath());
        if (!file.open(QIODevice::ReadOnly))
            return false;
        const QByteArray input = file.readAll();
        feed(input);
        mutator.addSentences(input.mid(1));
        ++files;
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
    parser.addOptions({seedOption, bytesOption});
    parser.addPositionalArgument("corpus", "Folders of input files.", "[corpus...]");
    parser.process(app);

    const quint32 seed = parser.value(seedOption).toUInt();
    const qint64 wanted = parser.value(bytesOption).toLongLong();
    std::printf("seed %u\n", seed);
    std::fflush(stdout);

    FuzzMutator mutator(seed);
    int files = 0;
    for (const QString &folder : parser.positionalArguments()) {
        if (!feedCorpus(folder, mutator, files)) {
            std::fprintf(stderr, "No corpus in %s\n", qPrintable(folder));
            return 1;
        }
    }

    QElapsedTimer clock;
    clock.start();
    qint64 fed = 0;
    qint64 inputs = 0;
    while (fed < wanted) {
        const QByteArray input = mutator.nextInput();
        feed(input);
        fed += input.size();
        ++inputs;
    }
    std::printf("%d corpus files, %lld random bytes in %lld inputs, %lld ms, no fault\n", files,
                static_cast<long long>(fed), static_cast<long long>(inputs),
                static_cast<long long>(clock.elapsed()));
    return 0;
}
