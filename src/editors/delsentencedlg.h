#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class DelSentenceDlg;
}

/*! Asks whether to delete a sentence name that filters of other channels use, and names them. */
class DelSentenceDlg : public QDialog
{
    Q_OBJECT

public:
    explicit DelSentenceDlg(QWidget *parent = nullptr);
    ~DelSentenceDlg() override;

    /*! Shows \a list, one line for each filter. */
    void setList(const QStringList &list);

    /*! Asks about \a sentence. */
    void setSentence(const QString &sentence);

private:
    std::unique_ptr<Ui::DelSentenceDlg> ui;
};
