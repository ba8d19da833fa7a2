#include "screenmap.h"

namespace {

constexpr int windowWidth = 853;

// The columns' origins and the pitches of their rows.
constexpr QPoint outputRows(6, 80);
constexpr int outputPitch = 38;
constexpr QPoint channelTable(252, 102);
constexpr int channelPitch = 40;
constexpr QPoint inputColumn(735, 90);
constexpr QPoint panel(0, 600);

constexpr QSize dragFrame(95, 31);
constexpr QRect labelInFrame(4, 4, 88, 24);

} // namespace

QRect ScreenMap::at(int x, int y, int width, int height) const
{
    return QRect(scaled(x), scaled(y), scaled(width), scaled(height));
}

int ScreenMap::width() const
{
    return scaled(windowWidth);
}

QRect ScreenMap::labelIn(const QRect &frame) const
{
    return at(labelInFrame.x(), labelInFrame.y(), labelInFrame.width(), labelInFrame.height())
        .translated(frame.topLeft());
}

QRect ScreenMap::portList() const
{
    return at(84, 6, 90, 35);
}

QRect ScreenMap::connectButton() const
{
    return at(284, 6, 90, 35);
}

QRect ScreenMap::saveInRouter() const
{
    return at(414, 6, 90, 35);
}

QRect ScreenMap::saveToFile() const
{
    return at(514, 6, 90, 35);
}

QRect ScreenMap::loadFromFile() const
{
    return at(614, 6, 90, 35);
}

QRect ScreenMap::logo() const
{
    return at(744, 6, 90, 35);
}

QRect ScreenMap::returnInputs() const
{
    return at(720, 49, 12, 547);
}

QRect ScreenMap::outputButton(int port) const
{
    return at(outputRows.x() + 7, outputRows.y() + 4 + outputPitch * port, 93, 25);
}

QRect ScreenMap::outputSpeed(int port) const
{
    return at(outputRows.x() + 125, outputRows.y() + 4 + outputPitch * port, 87, 25);
}

QRect ScreenMap::outputSpeedText(int port) const
{
    return at(outputRows.x() + 130, outputRows.y() + 9 + outputPitch * port, 50, 15);
}

QRect ScreenMap::outputRowGround(int port) const
{
    return at(outputRows.x() + 104, outputRows.y() + 6 + outputPitch * port, 16, 20);
}

QRect ScreenMap::connectionLabels() const
{
    return at(6, 545, 230, 42);
}

QRect ScreenMap::channelButton(int channel) const
{
    return at(channelTable.x() + 8, channelTable.y() + 7 + channelPitch * channel, 27, 27);
}

QRect ScreenMap::mainCell(int channel) const
{
    return at(channelTable.x() + 45, channelTable.y() + 5 + channelPitch * channel,
              dragFrame.width(), dragFrame.height());
}

QRect ScreenMap::reserveCell(int channel) const
{
    return at(channelTable.x() + 151, channelTable.y() + 5 + channelPitch * channel,
              dragFrame.width(), dragFrame.height());
}

QRect ScreenMap::filterCheck(int channel) const
{
    return at(channelTable.x() + 254, channelTable.y() + 2 + channelPitch * channel, 50, 16);
}

QRect ScreenMap::filterSet(int channel) const
{
    return at(channelTable.x() + 256, channelTable.y() + 20 + channelPitch * channel, 46, 18);
}

QRect ScreenMap::crsCheck(int channel) const
{
    return at(channelTable.x() + 312, channelTable.y() + 2 + channelPitch * channel, 50, 16);
}

QRect ScreenMap::hdrCheck(int channel) const
{
    return at(channelTable.x() + 372, channelTable.y() + 2 + channelPitch * channel, 50, 16);
}

QRect ScreenMap::header(int channel) const
{
    return at(channelTable.x() + 374, channelTable.y() + 21 + channelPitch * channel, 28, 16);
}

QRect ScreenMap::smartButton(int channel) const
{
    return at(channelTable.x() + 313, channelTable.y() + 20 + channelPitch * channel, 50, 18);
}

QRect ScreenMap::inputHome(int port) const
{
    return at(inputColumn.x() + 2, inputColumn.y() + 2 + channelPitch * port, dragFrame.width(),
              dragFrame.height());
}

QRect ScreenMap::inputSpeed(int port) const
{
    return at(inputColumn.x() + 98, inputColumn.y() + 2 + channelPitch * port, 47, 31);
}

QRect ScreenMap::monitorTitle() const
{
    return at(panel.x() + 140, panel.y() + 6, 245, 16);
}

QRect ScreenMap::monitorList() const
{
    return at(panel.x() + 8, panel.y() + 36, 800, 120);
}

QRect ScreenMap::monitorHeads() const
{
    return at(panel.x() + 7, panel.y() + 26, 34, 152);
}

QRect ScreenMap::checksumErrors() const
{
    return at(panel.x() + 510, panel.y() + 6, 141, 18);
}

QRect ScreenMap::playButton() const
{
    return at(panel.x() + 6, panel.y() + 3, 33, 25);
}

QRect ScreenMap::foldButton() const
{
    return at(panel.x() + 770, panel.y() + 3, 33, 25);
}

QRect ScreenMap::speedViewButton() const
{
    return at(panel.x() + 810, panel.y() + 3, 33, 25);
}

QRect ScreenMap::lockLabel() const
{
    return at(panel.x() + 200, panel.y() + 172, 56, 20);
}

int ScreenMap::foldedHeight() const
{
    return scaled(panel.y()) + scaled(30);
}

int ScreenMap::speedViewWidth() const
{
    return scaled(50);
}
