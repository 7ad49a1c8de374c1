// SPDX-License-Identifier: MIT
#pragma once

#include "app/readers/reader_settings.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <utility>

namespace harrowby::app {

/// The readers of this machine that are named by their device. Nothing is guessed: what such a reader sends is a code.
/// It goes where that of a reader that types goes: into an entry that takes text when that has the focus, to nobody
/// while a box is open, to the host otherwise.
class CodeReaders final : public QObject
{
    Q_OBJECT

public:
    enum class Refusal { BoxOpen, TooLong, Waiting };
    Q_ENUM(Refusal)

    /// Whether the window took no input at this moment of the steady clock.
    using WasWaiting = std::function<bool(std::chrono::milliseconds)>;

    explicit CodeReaders(const QList<ReaderDevice> &devices, QObject *parent = nullptr);

    /// What is scanned while the window waits is refused, as it would be sold when nobody expects it any more.
    void refuseWhere(WasWaiting wasWaiting) { m_wasWaiting = std::move(wasWaiting); }

Q_SIGNALS:
    void codeRead(const QString &code);
    void codeRefused(harrowby::app::CodeReaders::Refusal why);
    /// Told once, until the reader is found again. `text` is for a person.
    void readerLost(const QString &path, const QString &text);
    void readerFound(const QString &path, const QString &text);

private:
    void listen(const ReaderDevice &device);
    void take(const QString &code, std::chrono::milliseconds at);

    WasWaiting m_wasWaiting;
};

} // namespace harrowby::app
