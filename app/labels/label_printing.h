// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_paper.h"
#include "basic/result.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>

class QTemporaryFile;

namespace harrowby {
class HelperProcess;
} // namespace harrowby

namespace harrowby::app {

/// Hands labels to the print service, in the background and with a deadline: a service that is dead or hangs holds
/// nobody.
class LabelPrinting final : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds usualDeadline{60'000}; ///< many pages take the service a while

    explicit LabelPrinting(QObject *parent = nullptr, std::chrono::milliseconds deadline = usualDeadline);
    /// Kills what still runs; the labels are not printed then.
    ~LabelPrinting() override;

    /// Asks for the printers, once. `found` gets their names, when the service has answered.
    void findPrinters(std::function<void(const QStringList &)> found);

    /// `done` gets the reason when the service has not taken them. Not while another one runs.
    void print(const QString &printer, const LabelPaper &paper, const QByteArray &pdf,
               std::function<void(const Result<void, QString> &)> done);
    [[nodiscard]] bool isRunning() const { return m_handOver != nullptr; }

private:
    std::chrono::milliseconds m_deadline;
    HelperProcess *m_query = nullptr;
    HelperProcess *m_handOver = nullptr;
    std::unique_ptr<QTemporaryFile> m_file; ///< that the service reads
};

} // namespace harrowby::app
