#pragma once

#include "scriptedbench.h"
#include "support/filedialoganswer.h"

#include <QProgressDialog>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

/*! A firmware file of \a size bytes, by a seed: version 3.6, no mode, random from offset 18 on. */
QByteArray firmwareImage(int size, quint32 seed = 1);

/*! Packet \a number, from 1 on, of \a image as a whole sentence. */
QByteArray packetSentence(const QByteArray &image, int number);

/*! The number of packet \a sentence; 0 if it is another sentence. */
int packetNumber(const QByteArray &sentence);

/*! A router that takes a firmware if it is told to. */
class FirmwareBench : public ScriptedBench
{
public:
    explicit FirmwareBench(const QByteArray &version = QByteArrayLiteral("3.5"));

    std::unique_ptr<FileDialogAnswer> files = std::make_unique<FileDialogAnswer>();
    QTemporaryDir folder;

    /*! What takeFirmware() has got so far. */
    QByteArray taken;
    bool isFinished = false; //!< $VRFWF has come

    /*! Answers every step of an update from now on; those behind packet \a last with silence. */
    void takeFirmware(int last = -1);
    /*! Answers nothing from now on. */
    void keepSilent() { onLine = nullptr; }

    QString writeFile(const QByteArray &content, const QString &name = QStringLiteral("new.efw"));

    /*! The dialog that asks for a file, answered by \a fileName. */
    static FileDialogAnswer::Dialog chooser(const QString &fileName);
    /*! The question before an update to \a version. */
    static BoxAnswer::Box question(const QString &version, QMessageBox::StandardButton click);
    /*! The box that ends an update without success. */
    static BoxAnswer::Box failure(const QString &text);
    /*! The box that ends an update with success. */
    static BoxAnswer::Box successBox();
    /*!
     * The same in the tool of this bench, which is closed behind \a whileOpen, or when the last
     * sentence of the update has been heard.
     */
    BoxAnswer::Box success(const std::function<void()> &whileOpen = nullptr);

    /*!
     * Loads \a image in the service dialog and starts the update; false if the dialog has not
     * closed by that.
     */
    bool startUpdate(const QByteArray &image);

    QProgressDialog *progress() const { return window.findChild<QProgressDialog *>(); }
    /*! Presses the button of progress(). */
    void pressCancel();
    /*! Whether an update is under way. */
    bool isUpdating() const { return progress() && progress()->isVisible(); }

    /*! The timer that ends an update of which nothing is heard any more. */
    static constexpr int watchdogMs = 6000;
    QTimer *watchdog() const;

    /*!
     * Presses the button of \a dialog that loads a file, with the answers that files and boxes
     * have been told; they must all have been asked.
     */
    void load(servicedlg &dialog);
    /*! The box of a file that can't be loaded. */
    static BoxAnswer::Box loadError(const QString &text);

    /*! Runs a whole update at once, without a new connection. */
    void verifyUpdateWorks();
    /*! No update, and nothing left of one: the image is forgotten, so that none can start. */
    void verifyNoUpdate();
    /*! The same, and the connection stands. */
    void verifyIdle();

    /*! The sentences of an update among heard(). */
    QList<QByteArray> firmwareHeard() const;
};
