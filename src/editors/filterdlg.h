#pragma once

#include <QDialog>
#include <QStringList>

#include <memory>

struct SentenceList;

namespace Ui {
class FilterDlg;
}

/*!
 * Edits a channel's filter, and the list of sentence names that all channels share.
 *
 * The list is a working copy of the caller's, which the dialog changes at once, also when it is
 * rejected later. Mask and type of the channel are to be read after it was accepted.
 */
class FilterDlg : public QDialog
{
    Q_OBJECT

public:
    explicit FilterDlg(QWidget *parent);
    ~FilterDlg() override;

    /*!
     * Shows the names of \a list, which must outlive the dialog. Those of the slots in \a mask are
     * checked; \a blackList chooses the type.
     */
    void setFilter(SentenceList *list, bool blackList, quint32 mask);

    /*! Adds a row at its alphabetical place. The list is not changed. */
    void addRow(const QString &name, bool checked);

    /*! Bit i: slot i of the list belongs to the channel's filter. */
    quint32 filterMask() const { return filter_mask; }

    /*! True for a black list, false for a white list. */
    bool filterType() const { return filter_type; }

    /*! Whether a name has been added or deleted since the dialog was made. */
    bool listChanged() const { return list_changed; }

    /*! Answers signal_reqest_list: one line for each channel that uses the sentence. */
    void setUsedList(const QStringList &used);

signals:
    /*!
     * Asks who uses the sentence of the one slot in \a mask. The answer is expected through
     * setUsedList() while the signal is being emitted.
     */
    void signal_reqest_list(uint mask);

public slots:
    void slotButOkClicked();
    void slotButAddClicked();
    void slotButDelClicked();

private:
    QString nameInRow(int row) const;
    void selectName(const QString &name);
    bool askDelete(const QString &name);

    std::unique_ptr<Ui::FilterDlg> ui;
    SentenceList *sentences = nullptr; //!< the caller's working copy
    quint32 filter_mask = 0;
    bool filter_type = false;
    bool list_changed = false;
    QStringList used_list;
};
