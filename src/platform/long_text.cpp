// SPDX-License-Identifier: MIT
#include "platform/long_text.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QScroller>

#include <algorithm>
#include <memory>

namespace harrowby {
namespace {

constexpr int widestText = 520;

/// The largest size that a text may take on the label's screen, with room for icon, buttons and frame.
QSize room(const QLabel &label)
{
    const QScreen *const screen = label.screen();
    const QSize size = screen ? screen->availableSize() : QSize(1024, 768);
    return {std::min(widestText, size.width() * 3 / 5), size.height() / 2};
}

QSize wrappedSize(const QLabel &label, int width)
{
    constexpr int endless = 1 << 22;
    return label.fontMetrics().boundingRect(QRect(0, 0, width, endless), Qt::TextWordWrap, label.text()).size();
}

std::unique_ptr<QPlainTextEdit> makeView(const QLabel &label, QSize size)
{
    auto view = std::make_unique<QPlainTextEdit>(label.text());
    view->setReadOnly(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setTabChangesFocus(true);
    view->setAccessibleName(QCoreApplication::translate("harrowby", "Message"));
    view->viewport()->setAutoFillBackground(false);
    QScroller::grabGesture(view->viewport(), QScroller::TouchGesture);
    view->setMinimumSize(size.width() + view->verticalScrollBar()->sizeHint().width(), size.height());
    return view;
}

} // namespace

void scrollLongText(QLabel &label)
{
    label.ensurePolished();
    const QSize limit = room(label);
    const QSize needed = wrappedSize(label, limit.width());
    if (needed.width() <= limit.width() && needed.height() <= limit.height()) {
        if (label.fontMetrics().size(0, label.text()).width() > limit.width()) {
            label.setWordWrap(true);
            label.setMinimumWidth(limit.width());
        }
        return;
    }
    QLayout *const layout = label.parentWidget() ? label.parentWidget()->layout() : nullptr;
    if (!layout)
        return;
    auto view = makeView(label, {limit.width(), limit.height()});
    const std::unique_ptr<QLayoutItem> replaced(layout->replaceWidget(&label, view.get()));
    if (replaced)
        static_cast<void>(view.release()); // now a child of the dialog
    label.hide();
}

} // namespace harrowby
