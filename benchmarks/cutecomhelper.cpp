// Preloaded into cutecom, to run it without hands on a pseudo-terminal: it clicks Open, and it
// answers for the modem lines, which a pseudo-terminal hasn't got and without which cutecom closes
// the port again. Once the port is open nothing of it runs any more.
//
// Ends cutecom as its user would when the standard input ends.

#include <QAbstractButton>
#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int clickDelay = 500; // ms for the window to stand

bool asksForModemLines(unsigned long request)
{
    return request == TIOCMGET || request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC;
}

void clickOpen()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (auto *button = window->findChild<QAbstractButton *>(QStringLiteral("m_bt_open"))) {
            button->click();
            return;
        }
    }
}

void endWithInput()
{
    char ignored = 0;
    if (::read(STDIN_FILENO, &ignored, sizeof ignored) <= 0)
        QApplication::closeAllWindows();
}

void begin()
{
    auto *input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, qApp);
    QObject::connect(input, &QSocketNotifier::activated, qApp, endWithInput);
    QTimer::singleShot(clickDelay, qApp, clickOpen);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(begin)

// The name and the shape are the C library's.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);

    using Ioctl = int (*)(int, unsigned long, void *);
    static const auto original = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
    const int result = original(descriptor, request, argument);
    if (result == 0 || errno != ENOTTY || !asksForModemLines(request))
        return result;
    if (request == TIOCMGET)
        *static_cast<int *>(argument) = 0;
    return 0;
}
