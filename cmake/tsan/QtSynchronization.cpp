// Qt is not compiled with the thread sanitizer, which therefore sees neither how a thread pool hands work to a thread
// nor how a lock that was fought for changes hands, and would call all that follows a race. Only this is told here, and
// what the start of another program is.
#include <QMutex>
#include <QThreadPool>

#include <cstdarg>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>
#include <sched.h>

namespace
{

/// The function of that name in Qt, which the one of this file hides.
template <typename Function>
Function hidden(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

class HandedOver final : public QRunnable
{
public:
    explicit HandedOver(QRunnable *work) : m_work(work) { __tsan_release(this); }
    void run() override
    {
        __tsan_acquire(this);
        const bool isOwned = m_work->autoDelete();
        m_work->run();
        if (isOwned)
            delete m_work;
    }

private:
    QRunnable *m_work;
};

} // namespace

/// Leaves out what Qt's libraries read and write by functions of the C library: their reference counts alone would give
/// hundreds of false reports. The price: what our own code does by those functions (memcpy, recv) is not watched
/// either.
extern "C" const char *__tsan_default_options()
{
    return "ignore_noninstrumented_modules=1";
}

/// The sanitizer takes every clone() for a fork and what comes after it for unsafe: it ends the process at the next new
/// thread. What QProcess makes shares the memory and does nothing but start the program, while its maker waits for it.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...)
{
    using Clone = int (*)(int (*)(void *), void *, int, void *, ...);
    static void *const library = ::dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD);
    static const auto unwatched = reinterpret_cast<Clone>(::dlsym(library, "clone"));
    static const auto watched = hidden<Clone>("clone");
    std::va_list rest;
    va_start(rest, argument);
    void *const parentId = va_arg(rest, void *);
    void *const tls = va_arg(rest, void *);
    void *const childId = va_arg(rest, void *);
    va_end(rest);
    const bool isProgramStart = (flags & CLONE_VM) != 0 && (flags & CLONE_VFORK) != 0;
    return (isProgramStart ? unwatched : watched)(function, stack, flags, argument, parentId, tls, childId);
}

void QThreadPool::start(QRunnable *runnable, int priority)
{
    using Start = void (*)(QThreadPool *, QRunnable *, int);
    static const auto start = hidden<Start>("_ZN11QThreadPool5startEP9QRunnablei");
    start(this, new HandedOver(runnable), priority);
}

void QBasicMutex::lockInternal() QT_MUTEX_LOCK_NOEXCEPT
{
    static const auto lock = hidden<void (*)(QBasicMutex *)>("_ZN11QBasicMutex12lockInternalEv");
    lock(this);
    __tsan_acquire(this);
}

void QBasicMutex::unlockInternal() noexcept
{
    static const auto unlock = hidden<void (*)(QBasicMutex *)>("_ZN11QBasicMutex14unlockInternalEv");
    __tsan_release(this);
    unlock(this);
}
