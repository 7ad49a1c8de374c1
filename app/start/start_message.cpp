// SPDX-License-Identifier: MIT
#include "app/start/start_message.h"

#include "app/start/display.h"
#include "theme/dialogs.h"

#include <QMessageBox>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

void showBox(QMessageBox::Icon icon, const QString &text)
{
    if (!canShowBoxes())
        return;
    QMessageBox box(icon, u"Harrowby Inventory"_s, text, QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    dressBox(box);
    box.exec();
}

} // namespace

void printOut(const QString &text)
{
    print(stdout, text);
}

void printError(const QString &text)
{
    print(stderr, text);
}

void tellProblem(const QString &text)
{
    printError(u"harrowby: "_s + text + u'\n');
    showBox(QMessageBox::Critical, text);
}

void showMessage(const QString &text)
{
    showBox(QMessageBox::Information, text);
}

} // namespace harrowby::app
