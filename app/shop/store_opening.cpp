// SPDX-License-Identifier: MIT
#include "app/shop/store_opening.h"

#include "app/shop/busy_wait.h"
#include "app/shop/opening_window.h"
#include "app/shop/store_open.h"
#include "app/shop/wait_times.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <future>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// The window that says what the opening waits for. Made only after `wait_times::quiet`, as most stores are open
/// before.
class OpeningSign : public QObject
{
public:
    explicit OpeningSign(const QString &path) :
        m_name(QFileInfo(path).fileName()), m_text(u"The store \"%1\" is being opened \u2026"_s.arg(m_name))
    {
        QTimer::singleShot(wait_times::quiet, this, &OpeningSign::show);
    }

    void sayLocked()
    {
        m_text = u"Another program keeps the store \"%1\" locked. Waiting for it \u2026"_s.arg(m_name);
        if (m_window)
            m_window->say(m_text);
    }

private:
    void show()
    {
        m_window = std::make_unique<OpeningWindow>(m_text);
        m_window->show();
    }

    QString m_name;
    QString m_text;
    std::unique_ptr<OpeningWindow> m_window;
};

} // namespace

Result<SqliteDatabase, StoreProblem> openStoreBeside(const QString &path, BusyWait &wait)
{
    OpeningSign sign(path);
    wait.setWatcher([&sign] { QMetaObject::invokeMethod(&sign, &OpeningSign::sayLocked); });
    std::packaged_task open([&] { return openStore(path, wait); });
    auto opened = open.get_future();
    QEventLoop loop;
    std::jthread opening([&] {
        open();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    opening.join();
    wait.setWatcher({});
    wait.refill();       // what comes next is another action
    return opened.get(); // throws what the thread has thrown
}

} // namespace harrowby::app
