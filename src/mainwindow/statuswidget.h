#pragma once

#include <QWidget>

#include <memory>

QT_BEGIN_NAMESPACE
class QFrame;
class QLabel;
class QListWidget;
class QPushButton;
QT_END_NAMESPACE

class QClickLabel;

namespace Ui {
class statusWidget;
}

/*!
 * The panel in the status bar: the monitor's list with its heading, the legend of the port colours,
 * the lock indicator and the count of bad checksums. MainWindow reaches its widgets directly.
 *
 * Made at its design size times ui_scale(); its children are scaled by the window that takes it.
 */
class statusWidget : public QWidget
{
    Q_OBJECT

public:
    statusWidget();
    ~statusWidget() override;

    /*! Shows or hides the lock indicator, red and "LOCK" or blue and "UNLOCK". */
    void setLockLabel(bool visible, bool locked);

    bool isBig() const { return big; }

    /*! To be called once, when the children have their final places. */
    void rememberDistances();

    /*! Leaves nothing but the legend, in a strip of \a stripHeight pixels. */
    void fold(int stripHeight);
    void unfold(int stripHeight);

    /*!
     * Gives the panel the size \a size of the status bar, and the contents too, at least as wide as
     * \a contentsWidth.
     */
    void layOut(QSize size, int contentsWidth);

    /*! Shows the contents from \a left on. */
    void scrollTo(int left);

    /*! Adds \a delta to the widths; a negative \a delta brings the former widths back. */
    void widen(int delta);

    QPushButton *pushButton_play = nullptr;
    QPushButton *pushButton_view_small = nullptr;
    QPushButton *pushButton_view_big = nullptr;
    QPushButton *pushButton_view_speed = nullptr;
    QLabel *label_receive_port = nullptr;
    QLabel *labelCrsErrorsCount = nullptr;
    QLabel *labelCrsLabel = nullptr;
    QListWidget *listWidget = nullptr;
    QClickLabel *label_lock = nullptr;

private:
    QList<QWidget *> legend() const;
    QList<QWidget *> monitorWidgets() const;

    std::unique_ptr<Ui::statusWidget> ui;
    bool big = true;

    int legend_to_bottom = 0; //!< from the top of the legend to the bottom of the panel
    int list_to_legend = 0;   //!< from the bottom of the list to the top of the legend

    int panel_width = 0; //!< the widths before the speed view
    int frame_width = 0;
    int line_width = 0;
    int list_width = 0;
};
