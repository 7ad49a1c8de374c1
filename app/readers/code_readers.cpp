// SPDX-License-Identifier: MIT
#include "app/readers/code_readers.h"

#include "app/readers/device_reader.h"
#include "input/code_place.h"

#include <QApplication>
#include <QFileInfo>
#include <QInputMethodEvent>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString nameOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

} // namespace

CodeReaders::CodeReaders(const QList<ReaderDevice> &devices, QObject *parent) : QObject(parent)
{
    for (const ReaderDevice &device : devices)
        listen(device);
}

void CodeReaders::listen(const ReaderDevice &device)
{
    auto *reader = new DeviceReader(device, this);
    const QString path = device.path;
    connect(reader, &DeviceReader::codeRead, this, &CodeReaders::take);
    connect(reader, &DeviceReader::tooLong, this, [this] { Q_EMIT codeRefused(Refusal::TooLong); });
    connect(reader, &DeviceReader::lost, this, [this, path](const QString &why) {
        Q_EMIT readerLost(path, u"The code reader \"%1\" is not there: %2."_s.arg(nameOf(path), why));
    });
    connect(reader, &DeviceReader::found, this,
            [this, path] { Q_EMIT readerFound(path, u"The code reader \"%1\" is there again."_s.arg(nameOf(path))); });
}

void CodeReaders::take(const QString &code, std::chrono::milliseconds at)
{
    if (m_wasWaiting && m_wasWaiting(at)) {
        Q_EMIT codeRefused(Refusal::Waiting);
        return;
    }
    if (QApplication::activeModalWidget() != nullptr) {
        Q_EMIT codeRefused(Refusal::BoxOpen);
        return;
    }
    QObject *entry = QGuiApplication::focusObject();
    if (codePlaceOf(entry) != CodePlace::Entry) {
        Q_EMIT codeRead(code);
        return;
    }
    QInputMethodEvent typed;
    typed.setCommitString(code);
    QCoreApplication::sendEvent(entry, &typed);
}

} // namespace harrowby::app
