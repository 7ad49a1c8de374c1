// SPDX-License-Identifier: MIT
#include "app/shop/opening_window.h"

#include "theme/dialogs.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int openingWidth = 460;

} // namespace

OpeningWindow::OpeningWindow(const QString &text) : QDialog(nullptr, Qt::CustomizeWindowHint | Qt::WindowTitleHint)
{
    setWindowTitle(u"Harrowby Inventory"_s);
    setObjectName(u"openingWindow"_s);
    setMinimumWidth(openingWidth);
    enlargeFont(*this);
    m_text = new QLabel(text, this);
    m_text->setObjectName(u"openingText"_s);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    auto *moving = new QProgressBar(this);
    moving->setRange(0, 0);
    moving->setTextVisible(false);
    moving->setAccessibleName(u"Opening the store"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 20, 24, 20);
    rows->setSpacing(16);
    rows->addWidget(m_text);
    rows->addWidget(moving);
    dressDialog(*this);
}

void OpeningWindow::say(const QString &text)
{
    m_text->setText(text);
}

void OpeningWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

} // namespace harrowby::app
