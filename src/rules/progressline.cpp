#include "rules/progressline.h"

#include "platform/console.h"

#include <cstdio>

namespace {

void print(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

} // namespace

ProgressLine::ProgressLine()
    : m_isVisible(platform::isTerminal(platform::StandardStream::Error)) { }

ProgressLine::~ProgressLine()
{
    clear();
}

void ProgressLine::show(const QString &step, int percent)
{
    const QString text = QStringLiteral("%1 ... %2 %").arg(step).arg(percent);
    if (!m_isVisible || text == m_shown)
        return;
    // Blanks over what a longer line would leave: not every terminal knows how to erase.
    print(QLatin1Char('\r') + text.leftJustified(m_shown.size()));
    m_shown = text;
}

void ProgressLine::clear()
{
    if (m_shown.isEmpty())
        return;
    print(QLatin1Char('\r') + QString(m_shown.size(), QLatin1Char(' ')) + QLatin1Char('\r'));
    m_shown.clear();
}

void ProgressLine::say(const QString &text)
{
    clear();
    print(text + QLatin1Char('\n'));
}

void ProgressLine::ask(const QString &text)
{
    clear();
    print(text);
}
