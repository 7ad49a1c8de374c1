// SPDX-License-Identifier: MIT
#include "store_opening.h"

#include "busy_wait.h"
#include "dialog_style.h"
#include "sheet/look.h"
#include "store_open.h"

#include <QCloseEvent>
#include <QDialog>
#include <QEventLoop>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QVBoxLayout>

#include <exception>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int usualWidth = 460;

/// Opening ends by itself, so there is nothing to press.
class OpeningWindow : public QDialog
{
public:
    explicit OpeningWindow(const QString &path) : QDialog(nullptr, Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    {
        setWindowTitle(u"Harrowby Inventory"_s);
        setObjectName(u"openingWindow"_s);
        setMinimumWidth(usualWidth);
        enlargeFont(*this);
        m_text = new QLabel(this);
        m_text->setObjectName(u"openingText"_s);
        m_text->setTextFormat(Qt::PlainText);
        m_text->setWordWrap(true);
        say(u"The store \"%1\" is being opened \u2026"_s.arg(QFileInfo(path).fileName()));
        auto *moving = new QProgressBar(this);
        moving->setRange(0, 0);
        moving->setTextVisible(false);
        moving->setAccessibleName(u"Opening the store"_s);
        auto *rows = new QVBoxLayout(this);
        rows->setContentsMargins(24, 20, 24, 20);
        rows->setSpacing(16);
        rows->addWidget(m_text);
        rows->addWidget(moving);
        sheet::dress(*this);
    }

    void say(const QString &text) { m_text->setText(text); }
    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override { event->ignore(); }

private:
    QLabel *m_text = nullptr;
};

} // namespace

std::optional<StoreProblem> openStoreBeside(const QString &path, BusyWait &wait, Database &database)
{
    OpeningWindow window(path);
    wait.setWatcher([&window, path] {
        QMetaObject::invokeMethod(&window, [&window, path] {
            window.say(u"Another program keeps the store \"%1\" locked. Waiting for it \u2026"_s.arg(
                QFileInfo(path).fileName()));
        });
    });
    QTimer::singleShot(BusyWait::quietTime, &window, &QWidget::show);
    std::optional<StoreProblem> problem;
    std::exception_ptr failure;
    QEventLoop loop;
    std::thread opening([&] {
        try {
            problem = openStore(path, wait, database);
        } catch (...) {
            failure = std::current_exception();
        }
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    opening.join();
    wait.setWatcher({});
    if (failure)
        std::rethrow_exception(failure);
    return problem;
}

} // namespace harrowby::app
