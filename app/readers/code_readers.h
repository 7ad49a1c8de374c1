// SPDX-License-Identifier: MIT
#pragma once

#include "app/readers/reader_settings.h"

#include <QObject>

#include <functional>

namespace harrowby::app {

/// The readers of this machine that are named by their device. Nothing is guessed: what such a reader sends is a code.
/// It goes where that of a reader that types goes: into an entry that takes text when that has the focus, to nobody
/// while a box is open, to the host otherwise.
class CodeReaders final : public QObject
{
    Q_OBJECT

public:
    enum class Refusal { BoxOpen, TooLong };
    Q_ENUM(Refusal)

    explicit CodeReaders(const QList<ReaderDevice> &devices, QObject *parent = nullptr);

Q_SIGNALS:
    void codeRead(const QString &code);
    void codeRefused(harrowby::app::CodeReaders::Refusal why);
    /// Told once, until the reader is found again. `text` is for a person.
    void readerLost(const QString &path, const QString &text);
    void readerFound(const QString &path, const QString &text);

private:
    void listen(const ReaderDevice &device);
    void take(const QString &code);
};

} // namespace harrowby::app
