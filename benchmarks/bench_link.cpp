#include "link/nmeaserialport.h"
#include "support/checkedline.h"
#include "support/ptypair.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <cstdio>

/*!
 * How many sentences a second go through line assembly and dispatch, and how evenly an upload
 * leaves the port.
 */

namespace {

// The port is read in pieces of this size.
constexpr int blockSize = 95;
constexpr qint64 measuredMs = 700;
constexpr int rounds = 3;
constexpr double aim = 500000; // sentences a second
constexpr int uploadSentences = 80;

struct Mix
{
    const char *name;
    QByteArray bytes;
    int sentences = 0;

    void add(const QByteArray &sentence)
    {
        bytes += sentence;
        ++sentences;
    }
};

Mix plainLines()
{
    Mix mix{"plain NMEA lines", {}};
    mix.add(checkedLine("$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"));
    mix.add(checkedLine("$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W"));
    mix.add(checkedLine("$HEHDT,123.4,T"));
    mix.add(checkedLine("$SDDPT,2.4,0.5"));
    mix.add(checkedLine("!AIVDM,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0"));
    mix.add(checkedLine("$WIMWV,214.8,R,10.4,N,A"));
    return mix;
}

// What the router sends after a request for all of its configuration.
Mix download()
{
    Mix mix{"download of a configuration", {}};
    for (int port = 0; port < 12; ++port) {
        const QByteArray number = QByteArray::number(port);
        mix.add(checkedLine("$VRSPD," + number + ",38400"));
        mix.add(checkedLine("$VRRUL," + number
                            + ",0,"
                              "1F040F0034005F0FFF00FF00FF00FF00FF00FF00FF00FF00"));
        mix.add(checkedLine("$VRFLT," + number
                            + ",0,0,FFFFFFFF00000001800000000000FFFF12345678A5A5C3C3"));
        mix.add(checkedLine("$VRFLT," + number
                            + ",0,6,FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"));
        mix.add(checkedLine("$VRHDC," + number + ",0,GP,,HE,II,,,,,,,,AI"));
    }
    for (int first = 0; first < 32; first += 8)
        mix.add(checkedLine("$VRFLS," + QByteArray::number(first)
                            + ",RMC,GGA,VTG,HDT,VDM,VDO,DPT,MWV"));
    for (const char *half : {"I,0", "I,6", "O,0", "O,6"})
        mix.add(checkedLine(QByteArray("$VRPNM,") + half + ",GPS 1,GPS 2,Gyro,AIS,Echo sounder,"));
    mix.add(checkedLine("$VRVER,3.5"));
    mix.add(checkedLine("$VRMOD,Normal"));
    mix.add(checkedLine("$VRERR,0000,00"));
    mix.add(checkedLine("$VRFBK,0"));
    mix.add(checkedLine("$VRLCK,0,5"));
    mix.add("$VRWBL\r\n");
    return mix;
}

// A port under view during an AIS test: ordinary lines, the router's wrappers, a sign of life.
Mix monitor()
{
    Mix mix{"monitor and AIS test", plainLines().bytes, plainLines().sentences};
    mix.add(checkedLine("$VRAIM,3,1,1,,B,177KQJ5000G?tO`K>RA1wUbN0TKH,0"));
    mix.add(checkedLine("$VRAIO,3,1,1,,,13u?etPv2;0n:dDPwUM1U1Cb069D,0"));
    mix.add(checkedLine("$VRAIP,5,A,5957.9700,N,03019.1100,E"));
    mix.add("$VRVVW,243\r\n");
    return mix;
}

void connectReceivers(NmeaSerialPort &link, qint64 &heard)
{
    using Link = NmeaSerialPort;
    const auto count = [&heard] { ++heard; };
    QObject::connect(&link, &Link::signalVRNMEA_receive, &link, &Link::slot_VRNMEA);
    QObject::connect(&link, &Link::signalNMEA_receive, &link, count);
    QObject::connect(&link, &Link::signalVRNewRule, &link, count);
    QObject::connect(&link, &Link::signalVRNewFilterMask, &link, count);
    QObject::connect(&link, &Link::signalVRNewHdr, &link, count);
    QObject::connect(&link, &Link::signalVRNewFilterStr, &link, count);
    QObject::connect(&link, &Link::signalVRNewPortSpeed, &link, count);
    QObject::connect(&link, &Link::signalVRNewPortName, &link, count);
    QObject::connect(&link, &Link::signalVRUpdateVRData, &link, count);
    QObject::connect(&link, &Link::signalVRPortView, &link, count);
    QObject::connect(&link, &Link::signalVRVersion, &link, count);
    QObject::connect(&link, &Link::signalVRAISMessage, &link, count);
    QObject::connect(&link, &Link::signalVRAISPosition, &link, count);
}

struct Rate
{
    double sentences = 0;     // a second
    double megabytes = 0;     // a second
    double signalsRaised = 0; // a sentence
};

Rate measure(const Mix &mix)
{
    NmeaSerialPort link;
    qint64 heard = 0;
    qint64 passes = 0;
    connectReceivers(link, heard);
    QElapsedTimer clock;
    clock.start();
    do {
        for (int from = 0; from < mix.bytes.size(); from += blockSize) {
            const int size = int(qMin(blockSize, mix.bytes.size() - from));
            link.receiveBytes(mix.bytes.constData() + from, size);
        }
        ++passes;
    } while (clock.elapsed() < measuredMs);
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    const double sentences = double(passes) * mix.sentences;
    return {sentences / seconds, double(passes) * double(mix.bytes.size()) / seconds / 1e6,
            double(heard) / sentences};
}

void printThroughput()
{
    std::printf("Line assembly and dispatch, blocks of %d bytes, best of %d rounds\n\n", blockSize,
                rounds);
    std::printf("%-30s %14s %10s %18s %8s\n", "mix", "sentences/s", "MB/s", "signals/sentence",
                "aim");
    for (const Mix &mix : {plainLines(), download(), monitor()}) {
        Rate best;
        for (int round = 0; round < rounds; ++round) {
            const Rate rate = measure(mix);
            if (rate.sentences > best.sentences)
                best = rate;
        }
        std::printf("%-30s %14.0f %10.1f %18.1f %8s\n", mix.name, best.sentences, best.megabytes,
                    best.signalsRaised, best.sentences >= aim ? "met" : "missed");
    }
}

// Sends an upload's worth of sentences through a pseudo-terminal; the gaps in ms.
QVector<double> uploadGaps()
{
    PtyPair pty;
    NmeaSerialPort link;
    QEventLoop loop;
    int before = 0;
    QObject::connect(&pty, &PtyPair::lineReceived, &pty, [&](const QByteArray &line) {
        if (line == "$VRCNT\r\n")
            pty.write(checkedLine("$VRCNU,3"));
        if (before > 0 && pty.lines().size() == before + uploadSentences)
            loop.quit();
    });
    QObject::connect(&link, &NmeaSerialPort::signalVRConnect, &pty, [&] {
        before = int(pty.lines().size());
        for (int i = 0; i < uploadSentences; ++i)
            link.sendSentence(QString::fromLatin1(
                checkedLine("$VRHDC," + QByteArray::number(i) + ",0,GP,,HE,II,,,,,,,,AI")));
    });
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    link.openPort(pty.slavePath());
    loop.exec();
    link.closePort();

    QVector<double> gaps;
    for (int i = before + 1; before > 0 && i < pty.lines().size(); ++i)
        gaps.append(double(pty.lines().at(i).micros - pty.lines().at(i - 1).micros) / 1000);
    return gaps;
}

bool printPace()
{
    QVector<double> gaps = uploadGaps();
    if (gaps.size() != uploadSentences - 1) {
        std::printf("\nThe upload did not come through.\n");
        return false;
    }
    std::sort(gaps.begin(), gaps.end());
    double sum = 0;
    for (const double gap : gaps)
        sum += gap;
    const double mean = sum / double(gaps.size());
    double squares = 0;
    for (const double gap : gaps)
        squares += (gap - mean) * (gap - mean);
    const double deviation = std::sqrt(squares / double(gaps.size()));
    const double p99 = gaps.at(int(std::ceil(0.99 * double(gaps.size()))) - 1);
    std::printf("\nPace of an upload of %d sentences over a pseudo-terminal, gaps in ms\n\n",
                uploadSentences);
    std::printf("%8s %10s %8s %8s %8s %10s\n", "mean", "deviation", "min", "p99", "max", "total");
    std::printf("%8.3f %10.3f %8.3f %8.3f %8.3f %10.1f\n", mean, deviation, gaps.first(), p99,
                gaps.last(), sum);
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    printThroughput();
    return printPace() ? 0 : 1;
}
