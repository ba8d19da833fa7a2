#pragma once

#include "firmwarebench.h"
#include "windowbench.h"

#include <QPushButton>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class servicedlg;

/*! The service against the simulated router, over the line and with its faults. */
class ServiceSimTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

protected:
    QPushButton *button(const QWidget &dialog, const char *name) const
    {
        return dialog.findChild<QPushButton *>(QString::fromLatin1(name));
    }
    /*! Connects and waits for the version, which comes behind the download. */
    bool connectToRouter();
    /*! Opens the service dialog and closes it behind \a use; false if it hasn't come. */
    bool inService(const std::function<void(servicedlg &)> &use)
    {
        return ::inService(m_bench->window, use);
    }
    /*! Loads \a image in the service dialog; false if the dialog has not closed by that. */
    bool startUpdate(const QByteArray &image);
    void verifyUpdateWorks(const QByteArray &image);

    std::unique_ptr<WindowBench> m_bench;
    std::unique_ptr<FileDialogAnswer> m_files;
    QTemporaryDir m_folder;
};
