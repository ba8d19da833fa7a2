// Part of every test program of a sanitized build. The platform plugin of Qt leaks its screen when
// the application ends and is unloaded then, so that a leak can't be told to be its own; therefore
// leaks are looked for while the application still lives, and not again at the exit.

#include <QCoreApplication>

#include <sanitizer/lsan_interface.h>

namespace {

void checkLeaks()
{
    __lsan_do_leak_check();
}

void checkLeaksAtTheEnd()
{
    qAddPostRoutine(checkLeaks);
}

} // namespace

// Fontconfig keeps one of its caches out of the leak checker's sight.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

extern "C" const char *__lsan_default_options()
{
    return "print_suppressions=0";
}

Q_COREAPP_STARTUP_FUNCTION(checkLeaksAtTheEnd)
