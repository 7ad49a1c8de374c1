// SPDX-License-Identifier: MIT
#include "wait_sign.h"

#include "sheet/look.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize signSize(460, 96);
constexpr int gap = 12;
constexpr int headingPoints = 14;
constexpr int textPoints = 11;

/// Paints itself whole, whatever style sheet its window has.
class Sign : public QWidget
{
public:
    Sign(QWidget &window, QString heading, QString text) :
        QWidget(&window), m_heading(std::move(heading)), m_text(std::move(text))
    {
        setObjectName(u"waitSign"_s);
        setAccessibleName(m_heading);
        setAccessibleDescription(m_text);
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(signSize.boundedTo(window.size()));
        move((window.width() - width()) / 2, std::min(gap, window.height() - height())); // clear of cart and total
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const sheet::Look look{QApplication::palette()};
        QPainter painter(this);
        painter.fillRect(rect(), look.onAccent);
        painter.fillRect(rect().adjusted(2, 2, -2, -2), look.accent);
        painter.setPen(look.onAccent);
        QFont font = this->font();
        font.setPointSizeF(headingPoints);
        font.setBold(true);
        painter.setFont(font);
        const int half = height() / 2;
        painter.drawText(QRect(0, 0, width(), half).adjusted(12, 8, -12, 0), Qt::AlignCenter, m_heading);
        font.setPointSizeF(textPoints);
        font.setBold(false);
        painter.setFont(font);
        painter.drawText(QRect(0, half, width(), height() - half).adjusted(12, 0, -12, -8),
                         Qt::AlignCenter | Qt::TextWordWrap, m_text);
    }

private:
    QString m_heading;
    QString m_text;
};

bool canBear(const QWidget *window)
{
    return window != nullptr && window->isVisible() && !window->isMinimized();
}

/// The window that the person looks at; null when there is none.
QWidget *windowInFront()
{
    for (QWidget *window : {QApplication::activeModalWidget(), QApplication::activeWindow()}) {
        if (canBear(window))
            return window;
    }
    // Another program has the focus: the largest one, which is no notice.
    const QWidgetList windows = QApplication::topLevelWidgets();
    QWidget *largest = nullptr;
    for (QWidget *window : windows) {
        const bool real = window->windowType() == Qt::Window || window->windowType() == Qt::Dialog;
        if (real && canBear(window) && (largest == nullptr || window->width() > largest->width()))
            largest = window;
    }
    return largest;
}

} // namespace

WaitSign::WaitSign(QString heading, QString text) : m_heading(std::move(heading)), m_text(std::move(text)) {}

WaitSign::~WaitSign()
{
    delete m_sign;
}

void WaitSign::show()
{
    QWidget *window = windowInFront();
    if (window == nullptr || (m_sign && m_sign->isVisible()))
        return;
    delete m_sign;
    m_sign = new Sign(*window, m_heading, m_text);
    m_sign->show();
    m_sign->raise();
    m_sign->repaint();
    QMetaObject::invokeMethod(m_sign, &QWidget::hide, Qt::QueuedConnection); // also in the loop of a box
}

} // namespace harrowby::app
