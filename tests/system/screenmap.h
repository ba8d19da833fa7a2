#pragma once

#include <QRect>

/*!
 * Where everything in the tool's window is, in pixels of its contents.
 *
 * It is drawn after the window's description, in design pixels, and multiplied by the screen's
 * scale. Ports and channels are numbered 0 to 11.
 */
class ScreenMap
{
public:
    explicit ScreenMap(double scale) : m_scale(scale) { }

    // The top bar
    QRect portList() const;
    QRect connectButton() const;
    QRect saveInRouter() const;
    QRect saveToFile() const;
    QRect loadFromFile() const;
    //! The maker's logo, behind which the service functions are.
    QRect logo() const;

    // The column of the output ports
    QRect outputButton(int port) const;
    QRect outputSpeed(int port) const;
    //! The text of the speed, without the frame of the box round it.
    QRect outputSpeedText(int port) const;
    //! A bare spot of the port's row, which shows whether the port is selected.
    QRect outputRowGround(int port) const;
    //! What is known of the connection.
    QRect connectionLabels() const;

    // The table of the channels
    QRect channelButton(int channel) const;
    QRect mainCell(int channel) const;
    QRect reserveCell(int channel) const;
    QRect filterCheck(int channel) const;
    QRect filterSet(int channel) const;
    QRect crsCheck(int channel) const;
    QRect hdrCheck(int channel) const;
    QRect header(int channel) const;
    QRect smartButton(int channel) const;

    //! The bar between the table and the input ports, which takes all inputs back.
    QRect returnInputs() const;

    // The column of the input ports
    QRect inputHome(int port) const;
    QRect inputSpeed(int port) const; //!< while the window is widened

    // The panel at the bottom
    QRect monitorTitle() const;
    QRect monitorList() const;
    //! The left end of its lines, no wider than the head of a sentence, and a bit above and below.
    QRect monitorHeads() const;
    //! The number of sentences with a wrong checksum; empty if there is none.
    QRect checksumErrors() const;
    QRect playButton() const;
    //! Folds the panel; at the same place of the folded one is the button that unfolds it.
    QRect foldButton() const;
    QRect speedViewButton() const;
    QRect lockLabel() const;

    //! The window's height with the panel folded.
    int foldedHeight() const;
    //! How much wider the speeds make the window.
    int speedViewWidth() const;

    //! The window's width.
    int width() const;
    //! A length in design pixels on this screen.
    int scaled(int length) const { return static_cast<int>(length * m_scale); }
    //! The label in \a frame, which is a cell of the table or an input port's home.
    QRect labelIn(const QRect &frame) const;

private:
    QRect at(int x, int y, int width, int height) const;

    double m_scale;
};
