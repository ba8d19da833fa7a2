#include "matrixcheck.h"

#include "likeness.h"
#include "tool.h"

#include <QVector>

#include <algorithm>
#include <array>
#include <cstdlib>

using namespace tk7sim;

namespace {

constexpr QColor underView(255, 95, 0);
constexpr QColor rs422(5, 0, 180);
constexpr QColor rs232(29, 177, 0);
constexpr QColor selected(85, 40, 245);
constexpr QColor smartYellow(255, 199, 1);
constexpr QColor atRest(255, 255, 255);

constexpr int firstRs232Input = 10;
constexpr int firstRs232Output = 8;
// View codes: an output port in the high nibble and its channel in the low one.
constexpr int nibble = 16;
constexpr int wholePort = 15; // in place of a channel
constexpr int firstInputView = 240;

// What a text leaves of its ground, and what counts as a whole ground.
constexpr double ground = 0.4;
constexpr double wholeGround = 0.95;

// The share of pixels in any shade of `color`: the style lays a gradient over a button's ground.
double shareOfHue(const QImage &image, const QColor &color)
{
    constexpr int hueTolerance = 6; // degrees
    constexpr int minSaturation = 100;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            count += pixel.hsvSaturation() >= minSaturation
                && std::abs(pixel.hsvHue() - color.hsvHue()) <= hueTolerance;
        }
    }
    return static_cast<double>(count) / (image.width() * image.height());
}

// Where a port's label lies: its home, or a cell of the table.
struct LabelPlace
{
    enum Kind { Home, Main, Reserve };
    Kind kind = Home;
    int channel = 0; // of a cell
};

// A port that stands in several channels has its label in the last of them.
LabelPlace labelPlace(const Output &output, int input)
{
    LabelPlace place;
    for (int i = 0; i < channelCount; ++i) {
        const Channel &channel = output.channels[size_t(i)];
        if (channel.mainInput == input) {
            place = {LabelPlace::Main, i};
        } else if (channel.reserveInput == input) {
            place = {LabelPlace::Reserve, i};
        }
    }
    return place;
}

class Viewer
{
public:
    Viewer(const Tool &tool, const RouterConfig &config, int output, int view)
        : m_map(tool.map()), m_config(config), m_output(output), m_view(view),
          m_window(tool.look(QRect(QPoint(), tool.mainWindow().place.size())))
    {
    }

    QString problem() const
    {
        using Check = QString (Viewer::*)() const;
        constexpr Check checks[] = {&Viewer::outputsProblem, &Viewer::channelButtonsProblem,
                                    &Viewer::labelsProblem, &Viewer::smartProblem,
                                    &Viewer::optionsProblem};
        for (const Check check : checks) {
            QString problem = (this->*check)();
            if (!problem.isEmpty())
                return problem;
        }
        return QString();
    }

private:
    QImage at(const QRect &place) const { return m_window.copy(place); }

    const Channel &channel(int number) const
    {
        return m_config.outputs[size_t(m_output)].channels[size_t(number)];
    }

    static bool isUsed(const Channel &channel)
    {
        return channel.mainInput != noPort || channel.reserveInput != noPort;
    }

    QString outputsProblem() const
    {
        QVector<Sight> speeds;
        for (int port = 0; port < portCount; ++port) {
            const bool isSelected =
                shareOf(at(m_map.outputRowGround(port)), selected) > wholeGround;
            if (isSelected != (port == m_output))
                return QStringLiteral("the row of output port %1 is in the wrong colour").arg(port);
            const QColor kind = port < firstRs232Output ? rs422 : rs232;
            const QColor color = m_view == port * nibble + wholePort ? underView : kind;
            if (shareOf(at(m_map.outputButton(port)), color) < ground) {
                return QStringLiteral("the button of output port %1 isn't %2")
                    .arg(port)
                    .arg(color.name());
            }
            speeds += {at(m_map.outputSpeedText(port)),
                       QByteArray::number(m_config.speeds[size_t(port)])};
        }
        return likenessProblem("the speeds", speeds);
    }

    QString channelButtonsProblem() const
    {
        for (int i = 0; i < channelCount; ++i) {
            const bool isViewed = m_view < firstInputView && m_view % nibble == i;
            const QColor color = isViewed ? underView : atRest;
            if (shareOf(at(m_map.channelButton(i)), color) < ground)
                return QStringLiteral("the button of channel %1 isn't %2").arg(i).arg(color.name());
        }
        return QString();
    }

    // The colour of the label in `frame`, or none.
    QColor labelColor(const QRect &frame) const
    {
        const QImage label = at(m_map.labelIn(frame));
        for (const QColor &color : {underView, rs422, rs232}) {
            if (shareOf(label, color) > ground)
                return color;
        }
        return QColor();
    }

    static QString frameProblem(const QString &frame, const QColor &seen, const QColor &due)
    {
        if (seen == due)
            return QString();
        const auto name = [](const QColor &color) {
            return color.isValid() ? QString(QStringLiteral("a label in ") + color.name())
                                   : QStringLiteral("no label");
        };
        return QStringLiteral("%1 shows %2 in place of %3").arg(frame, name(seen), name(due));
    }

    QString labelsProblem() const
    {
        std::array<QColor, portCount> homes;
        std::array<QColor, channelCount> mains;
        std::array<QColor, channelCount> reserves;
        for (int port = 0; port < portCount; ++port) {
            const QColor kind = port < firstRs232Input ? rs422 : rs232;
            const QColor color = m_view == firstInputView + port ? underView : kind;
            const LabelPlace place = labelPlace(m_config.outputs[size_t(m_output)], port);
            if (place.kind == LabelPlace::Home) {
                homes[size_t(port)] = color;
            } else if (place.kind == LabelPlace::Main) {
                mains[size_t(place.channel)] = color;
            } else {
                reserves[size_t(place.channel)] = color;
            }
        }
        for (int i = 0; i < portCount; ++i) {
            const QString problems[] = {
                frameProblem(QStringLiteral("the home of input port %1").arg(i),
                             labelColor(m_map.inputHome(i)), homes[size_t(i)]),
                frameProblem(QStringLiteral("the Main cell of channel %1").arg(i),
                             labelColor(m_map.mainCell(i)), mains[size_t(i)]),
                frameProblem(QStringLiteral("the Reserve cell of channel %1").arg(i),
                             labelColor(m_map.reserveCell(i)), reserves[size_t(i)])};
            for (const QString &problem : problems) {
                if (!problem.isEmpty())
                    return problem;
            }
        }
        return QString();
    }

    QString smartProblem() const
    {
        for (int i = 0; i < channelCount; ++i) {
            const bool isYellow = shareOfHue(at(m_map.smartButton(i)), smartYellow) > ground;
            if (isYellow != (isUsed(channel(i)) && channel(i).smart != 0)) {
                return QStringLiteral("the smart button of channel %1 is%2 yellow")
                    .arg(i)
                    .arg(isYellow ? QString() : QStringLiteral("n't"));
            }
        }
        return QString();
    }

    // A check box, with the word that stands for its state.
    Sight checkBox(const QRect &place, int number, bool isOn) const
    {
        if (!isUsed(channel(number)))
            return {at(place), "disabled"};
        return {at(place), isOn ? "checked" : "unchecked"};
    }

    QString optionsProblem() const
    {
        QVector<Sight> filters;
        QVector<Sight> sums;
        QVector<Sight> headerChecks;
        QVector<Sight> headers;
        for (int i = 0; i < channelCount; ++i) {
            const Channel &one = channel(i);
            filters += checkBox(m_map.filterCheck(i), i, one.filterEnabled);
            sums += checkBox(m_map.crsCheck(i), i, one.crsEnabled);
            headerChecks += checkBox(m_map.hdrCheck(i), i, one.hdrEnabled);
            const bool hasHeader = isUsed(one) && one.hdrEnabled;
            headers += {at(m_map.header(i)),
                        hasHeader ? QByteArray("header " + one.hdr) : QByteArray("no header")};
        }
        const QString problems[] = {likenessProblem("the filter boxes", filters),
                                    likenessProblem("the CRS boxes", sums),
                                    likenessProblem("the HDR boxes", headerChecks),
                                    likenessProblem("the headers", headers)};
        for (const QString &problem : problems) {
            if (!problem.isEmpty())
                return problem;
        }
        return QString();
    }

    const ScreenMap &m_map;
    const RouterConfig &m_config;
    const int m_output;
    const int m_view;
    const QImage m_window;
};

} // namespace

QString matrixProblem(const Tool &tool, const RouterConfig &config, int output, int view)
{
    return Viewer(tool, config, output, view).problem();
}
