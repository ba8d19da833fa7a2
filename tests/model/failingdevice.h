#pragma once

#include <QByteArray>
#include <QIODevice>

#include <algorithm>

/*! A sequential device that works for so many bytes and fails from then on. */
class FailingDevice : public QIODevice
{
    Q_OBJECT

public:
    /*! What a write or read gets that the device can't carry out in full. */
    enum Failure {
        ShortCount, //!< the part that could be done
        Error       //!< -1, whatever part could be done
    };

    FailingDevice(qint64 goodBytes, Failure failure, const QByteArray &content = QByteArray())
        : m_left(goodBytes), m_failure(failure), m_content(content)
    {
        open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }

    /*! What has been written. */
    QByteArray written() const { return m_written; }

    /*! How often a write came after one that failed. */
    int writesAfterFailure() const { return m_writesAfterFailure; }

protected:
    qint64 writeData(const char *bytes, qint64 count) override
    {
        if (m_hasFailed)
            ++m_writesAfterFailure;
        const qint64 done = take(count);
        m_written.append(bytes, int(done));
        return result(done, count);
    }

    qint64 readData(char *bytes, qint64 count) override
    {
        const qint64 done = take(std::min(count, qint64(m_content.size())));
        std::copy_n(m_content.constData(), done, bytes);
        m_content.remove(0, int(done));
        return result(done, count);
    }

private:
    qint64 take(qint64 count)
    {
        const qint64 done = std::min(count, m_left);
        m_left -= done;
        return done;
    }

    qint64 result(qint64 done, qint64 count)
    {
        if (done == count)
            return done;
        m_hasFailed = true;
        return m_failure == Error ? -1 : done;
    }

    qint64 m_left;
    Failure m_failure;
    QByteArray m_content;
    QByteArray m_written;
    bool m_hasFailed = false;
    int m_writesAfterFailure = 0;
};
