// SPDX-License-Identifier: MIT
#pragma once

#include "app/readers/reader_settings.h"

#include <QList>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace harrowby::app {

/// Reads one named reader, on a thread of its own: the kernel keeps less than one long code of an input device, and
/// drops it when the window is busy for a moment. The signals come through the event loop of the object's thread.
///
/// The device is held for this program alone. Without it, or once it is gone, it is looked for each second.
class DeviceReader final : public QObject
{
    Q_OBJECT

public:
    /// Holds an opened device for this program alone; false, with errno set, where it cannot. A test, which has no
    /// input device, hands in its own.
    using Hold = std::function<bool(int descriptor)>;

    explicit DeviceReader(const ReaderDevice &device, QObject *parent = nullptr);
    DeviceReader(const ReaderDevice &device, Hold hold, QObject *parent = nullptr);
    /// Lets go of the device.
    ~DeviceReader() override;
    Q_DISABLE_COPY_MOVE(DeviceReader)

    [[nodiscard]] const ReaderDevice &device() const { return m_device; }

Q_SIGNALS:
    /// `at`: when it was complete, on the steady clock.
    void codeRead(const QString &code, std::chrono::milliseconds at);
    void tooLong();
    /// Once, until it is found again; also when it is not there from the start.
    void lost(const QString &why);
    /// After lost().
    void found();

private:
    class Work;

    ReaderDevice m_device;
    int m_wake = -1; ///< an eventfd that ends the thread's wait
    std::jthread m_thread;
};

/// The speeds that a serial device can have, in baud.
[[nodiscard]] QList<int> readerSpeeds();

} // namespace harrowby::app
