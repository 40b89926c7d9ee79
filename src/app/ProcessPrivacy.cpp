#include "ProcessPrivacy.h"

#include <sys/resource.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <cstring>

QString ProcessPrivacy::takeFromEnvironment(const char *name)
{
    char *const value = std::getenv(name);
    if (value == nullptr)
        return {};
    QString text = QString::fromLocal8Bit(value);
    // Where the system shows the start of the process, removing the variable would leave its value.
    std::fill_n(static_cast<volatile char *>(value), std::strlen(value), '\0');
    qunsetenv(name);
    return text;
}

void ProcessPrivacy::forbidDumps()
{
#ifdef NDEBUG
    if (qEnvironmentVariableIntValue("FERROW_RCON_DUMPS") == 1)
        return;
    rlimit size{};
    if (::getrlimit(RLIMIT_CORE, &size) == 0) {
        size.rlim_cur = 0; // a program that is started from here may still ask for more
        static_cast<void>(::setrlimit(RLIMIT_CORE, &size));
    }
#ifdef Q_OS_LINUX
    static_cast<void>(::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0));
#endif
#endif
}
